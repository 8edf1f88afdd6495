"""Batches in memory as NumPy arrays."""

from __future__ import annotations

import ctypes
import weakref
from typing import Any, Callable, Iterator, Mapping, Optional

import numpy

from ._tables import ArrowArray, ArrowSchema, release

_DTYPES = {b"i": "int32", b"l": "int64", b"f": "float32", b"g": "float64"}
_VALID, _VALUES, _TEXT = range(3)  # buffers
_masked: Callable[..., "numpy.ndarray[Any, Any]"] = numpy.ma.MaskedArray  # untyped there


def _release_all(schema: ArrowSchema, batches: list[ArrowArray]) -> None:
    release(schema)
    for batch in batches:
        release(batch)


class Arrays(Mapping[str, "numpy.ndarray[Any, Any]"]):
    """Arrays by the names of their columns. An array is made at its first use, and stays."""

    def __init__(self, read: Callable[[ArrowSchema, list[ArrowArray]], None]) -> None:
        schema = ArrowSchema()
        self._batches: list[ArrowArray] = []
        weakref.finalize(self, _release_all, schema, self._batches)
        read(schema, self._batches)
        self._made: dict[str, numpy.ndarray[Any, Any]] = {}
        self._columns: dict[str, tuple[int, bytes]] = {}
        for i in range(schema.n_children):
            child = ArrowSchema.from_address(schema.children[i])
            self._columns[child.name.decode()] = i, child.format

    def __iter__(self) -> Iterator[str]:
        return iter(self._columns)

    def __len__(self) -> int:
        return len(self._columns)

    def __getitem__(self, name: str) -> numpy.ndarray[Any, Any]:
        made = self._made.get(name)
        if made is None:
            made = self._made[name] = self._make(*self._columns[name])
        return made

    def _make(self, number: int, form: bytes) -> numpy.ndarray[Any, Any]:
        parts = [ArrowArray.from_address(batch.children[number]) for batch in self._batches]
        if form == b"u":
            return self._texts(parts)
        dtype = numpy.dtype(_DTYPES.get(form, "datetime64[us]"))
        values = numpy.empty(sum(part.length for part in parts), dtype)
        to = values.ctypes.data
        for part in parts:
            size = part.length * dtype.itemsize
            ctypes.memmove(to, part.buffers[_VALUES], size)
            to += size
        if dtype.kind != "f" and any(part.null_count for part in parts):
            missing = ~self._valid(parts)
            if dtype.kind == "i":
                return _masked(values, missing)
            values[missing] = numpy.datetime64("NaT")
        return values

    def _valid(self, parts: list[ArrowArray]) -> numpy.ndarray[Any, Any]:
        """Where there is a value: a bit a row, and no bits where all have one."""
        found = []
        for part in parts:
            bits = part.buffers[_VALID]
            if bits is None:
                found.append(numpy.ones(part.length, bool))
                continue
            data = numpy.frombuffer(ctypes.string_at(bits, (part.length + 7) // 8), numpy.uint8)
            found.append(numpy.unpackbits(data, count=part.length, bitorder="little").view(bool))
        return numpy.concatenate(found)

    def _texts(self, parts: list[ArrowArray]) -> numpy.ndarray[Any, Any]:
        texts: list[Optional[str]] = []
        for part in parts:
            starts = (ctypes.c_int32 * (part.length + 1)).from_address(part.buffers[_VALUES])
            data = ctypes.string_at(part.buffers[_TEXT] or 0, starts[-1])
            valid = self._valid([part])
            for start, end, there in zip(starts, starts[1:], valid):
                texts.append(data[start:end].decode() if there else None)
        values = numpy.empty(len(texts), object)
        values[:] = texts
        return values
