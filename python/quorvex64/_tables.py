"""Recordings as tables, without documents in between: through the second library, which hands them
out as the Arrow C data interface has them."""

from __future__ import annotations

import ctypes
import difflib
import errno
import os
import re
import stat
import sys
import threading
import weakref
from datetime import timedelta
from pathlib import Path
from typing import TYPE_CHECKING, Any, Iterable, Iterator, Mapping, NamedTuple, Optional, Union

from ._library import Exports, QuorvexError, StrPath, library, path_bytes
from ._recordings import Records, span_of

if TYPE_CHECKING:
    import pandas

    from ._arrays import Arrays

_ERROR_ROOM = 1024
_MOST_RECORDS = (1 << 64) - 1
_OFFSET = re.compile(r"([+-])(\d\d):([0-5]\d)")
_MINUTE, _DAY = timedelta(minutes=1), timedelta(days=1)

_Release = ctypes.CFUNCTYPE(None, ctypes.c_void_p)
_GetNext = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)
_GetText = ctypes.CFUNCTYPE(ctypes.c_char_p, ctypes.c_void_p)


class ArrowSchema(ctypes.Structure):
    _fields_ = [
        ("format", ctypes.c_char_p),
        ("name", ctypes.c_char_p),
        ("metadata", ctypes.c_void_p),
        ("flags", ctypes.c_int64),
        ("n_children", ctypes.c_int64),
        ("children", ctypes.POINTER(ctypes.c_void_p)),
        ("dictionary", ctypes.c_void_p),
        ("release", _Release),
        ("private_data", ctypes.c_void_p),
    ]


class ArrowArray(ctypes.Structure):
    _fields_ = [
        ("length", ctypes.c_int64),
        ("null_count", ctypes.c_int64),
        ("offset", ctypes.c_int64),
        ("n_buffers", ctypes.c_int64),
        ("n_children", ctypes.c_int64),
        ("buffers", ctypes.POINTER(ctypes.c_void_p)),
        ("children", ctypes.POINTER(ctypes.c_void_p)),
        ("dictionary", ctypes.c_void_p),
        ("release", _Release),
        ("private_data", ctypes.c_void_p),
    ]


class _ArrowStream(ctypes.Structure):
    _fields_ = [
        ("get_schema", _GetNext),
        ("get_next", _GetNext),
        ("get_last_error", _GetText),
        ("release", _Release),
        ("private_data", ctypes.c_void_p),
    ]


class _Column(ctypes.Structure):
    _fields_ = [
        (name, ctypes.c_char_p) for name in ("name", "path", "type", "format", "unit", "meaning")
    ]


class _Range(ctypes.Structure):
    _fields_ = [
        ("first", ctypes.c_uint64),
        ("last", ctypes.c_uint64),
        ("to_utc", ctypes.c_int32),
        ("utc_offset_minutes", ctypes.c_int32),
    ]


_Error = [ctypes.c_char_p, ctypes.c_uint32]

_EXPORTS: Exports = {
    "QuorvexTablesGetVersion": (ctypes.c_int32, []),
    "QuorvexTablesOpen": (ctypes.c_void_p, [ctypes.c_char_p, *_Error]),
    "QuorvexTablesClose": (None, [ctypes.c_void_p]),
    "QuorvexTablesCount": (ctypes.c_int32, [ctypes.c_void_p]),
    "QuorvexTablesName": (ctypes.c_char_p, [ctypes.c_void_p, ctypes.c_int32]),
    "QuorvexTablesMeaning": (ctypes.c_char_p, [ctypes.c_void_p, ctypes.c_int32]),
    "QuorvexTablesColumnCount": (ctypes.c_int32, [ctypes.c_void_p, ctypes.c_int32]),
    "QuorvexTablesGetColumn": (
        ctypes.c_int32,
        [ctypes.c_void_p, ctypes.c_int32, ctypes.c_int32, ctypes.POINTER(_Column)],
    ),
    "QuorvexTablesRead": (
        ctypes.c_int32,
        [
            ctypes.c_void_p,
            ctypes.c_char_p,
            ctypes.POINTER(ctypes.c_char_p),
            ctypes.c_int32,
            ctypes.POINTER(_Range),
            ctypes.POINTER(_ArrowStream),
            *_Error,
        ],
    ),
}


class TableError(QuorvexError):
    """A recording gives no table, or not to its end; the text says why."""


class NoSuchName(TableError, KeyError):
    """A recording has no such table, or a table no such column."""

    __str__ = Exception.__str__  # a KeyError's would put the text between quotes


class Column(NamedTuple):
    """A column of a table, as far as it is known without reading any record."""

    name: str  # "VOLTAGES/U[u1]/rms/max"
    path: str  # of the element inside the record; empty for what is none, as "record"
    type: str  # "int32", "int64", "float" (32 bits), "double", "text" or "time"
    unit: str  # "V"; empty where there is none or it is not known
    meaning: str  # in words; may be empty


def _lasting(path: Path) -> bytes:
    """A path that is good in other folders too, unless only the relative one is short enough."""
    try:
        return path_bytes(Path(os.path.abspath(path)))
    except OSError:
        return path_bytes(path)


class _Recording:
    """An open recording, which belongs to one thread at a time."""

    def __init__(self, path: Path) -> None:
        self.path = path
        if not stat.S_ISREG(os.stat(path).st_mode):
            raise TableError(f"{path}: is no regular file")
        with open(path, "rb"):
            pass  # what cannot be opened raises as Python's own functions do
        self.lock = threading.Lock()
        self.calls = library().tables(_EXPORTS)
        error = ctypes.create_string_buffer(_ERROR_ROOM)
        self.handle = self.calls.QuorvexTablesOpen(_lasting(path), error, _ERROR_ROOM)
        if self.handle is None:
            raise TableError(f"{path}: {error.value.decode('utf-8', 'replace')}")
        weakref.finalize(self, self.calls.QuorvexTablesClose, self.handle)
        count = self.calls.QuorvexTablesCount(self.handle)
        self.tables = [self._text(self.calls.QuorvexTablesName, i) for i in range(count)]

    def _text(self, export: Any, number: int) -> str:
        return str(export(self.handle, number).decode())

    def meaning(self, table: str) -> str:
        with self.lock:
            return self._text(self.calls.QuorvexTablesMeaning, self.tables.index(table))

    def columns(self, table: str) -> list[Column]:
        number, column, found = self.tables.index(table), _Column(), []
        with self.lock:
            for i in range(self.calls.QuorvexTablesColumnCount(self.handle, number)):
                self.calls.QuorvexTablesGetColumn(self.handle, number, i, column)
                texts = (column.name, column.path, column.type, column.unit, column.meaning)
                found.append(Column(*(text.decode() for text in texts)))
        return found

    def read(self, table: str, columns: Optional[list[str]], part: _Range) -> _ArrowStream:
        names, count = None, 0
        if columns is not None:
            count = len(columns)
            names = (ctypes.c_char_p * count)(*(name.encode() for name in columns))
        stream, error = _ArrowStream(), ctypes.create_string_buffer(_ERROR_ROOM)
        with self.lock:
            failed = self.calls.QuorvexTablesRead(
                self.handle, table.encode(), names, count, part, stream, error, _ERROR_ROOM
            )
        if failed:
            raise TableError(f"{self.path}: {error.value.decode('utf-8', 'replace')}")
        return stream


def release(struct: Union[ArrowSchema, ArrowArray, _ArrowStream]) -> None:
    """Gives back what the library handed out, once; whoever took it over has left none."""
    if struct.release:
        struct.release(ctypes.addressof(struct))


_CAPSULE_NAME = b"arrow_array_stream"
_new_capsule = ctypes.PYFUNCTYPE(
    ctypes.py_object, ctypes.c_void_p, ctypes.c_char_p, ctypes.c_void_p
)(("PyCapsule_New", ctypes.pythonapi))

# Streams by their addresses, with the capsules around them. A capsule has no destructor here: one
# in Python would crash where a capsule goes while an exception is on its way. So the capsules are
# kept here, and what nobody else holds any more is released at the next opportunity.
_handed_out: dict[int, tuple[object, _ArrowStream]] = {}


def _holders(entry: tuple[object, Any]) -> int:
    return sys.getrefcount(entry[0])


_ALONE = _holders((object(), None))


def _sweep() -> None:
    for address, entry in _handed_out.copy().items():
        if _holders(entry) == _ALONE and _handed_out.pop(address, None) is not None:
            release(entry[1])  # nothing where a consumer took the stream over


class Table:
    """A table of a recording. It reads nothing but when it is asked for values, and then anew."""

    def __init__(
        self, recording: _Recording, name: str, columns: Optional[list[str]], part: _Range
    ) -> None:
        self.name = name
        self._recording = recording
        self._chosen = columns
        self._part = part
        if columns is not None:
            self._check(columns)
        weakref.finalize(self, _sweep)

    def __repr__(self) -> str:
        return f"<quorvex64.Table {self.name} of {self._recording.path}>"

    def _check(self, columns: list[str]) -> None:
        if len(set(columns)) < len(columns):
            raise ValueError("columns: one of them is named twice")
        try:
            release(self._stream())
        except TableError:
            known = [column.name for column in self._recording.columns(self.name)]
            for name in columns:
                if name not in known:
                    near = difflib.get_close_matches(name, known, 3) or known[:3]
                    raise NoSuchName(
                        f"{self._recording.path}: {self.name} has no column {name!r}, "
                        f"but {len(known)} others, as {', '.join(map(repr, near))}"
                    ) from None
            raise

    def _stream(self) -> _ArrowStream:
        return self._recording.read(self.name, self._chosen, self._part)

    @property
    def meaning(self) -> str:
        """What the table holds, in words."""
        return self._recording.meaning(self.name)

    @property
    def columns(self) -> list[Column]:
        """The columns with their types, units and meanings."""
        columns = self._recording.columns(self.name)
        if self._chosen is None:
            return columns
        by_name = {column.name: column for column in columns}
        return [by_name[name] for name in self._chosen]

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        """A new stream in a capsule at each call, for whatever takes Arrow's PyCapsule interface.
        Columns have the types they have, whatever is requested."""
        _sweep()
        stream = self._stream()
        address = ctypes.addressof(stream)
        capsule: object = _new_capsule(address, _CAPSULE_NAME, None)
        _handed_out[address] = capsule, stream
        return capsule

    def _batches(self, schema: ArrowSchema, batches: list[ArrowArray]) -> None:
        """Reads the table. What it appends is the caller's to release, also where it raises."""
        stream = self._stream()
        at = ctypes.addressof(stream)
        try:
            failed = stream.get_schema(at, ctypes.addressof(schema))
            while not failed:
                batch = ArrowArray()
                failed = stream.get_next(at, ctypes.addressof(batch))
                if not batch.release:
                    break
                batches.append(batch)
            if failed == errno.ENOMEM:
                raise MemoryError(f"{self._recording.path}: not enough memory for {self.name}")
            if failed:
                text = (stream.get_last_error(at) or b"cannot be read").decode("utf-8", "replace")
                raise TableError(f"{self._recording.path}: {text}")
        finally:
            release(stream)

    def to_numpy(self) -> Arrays:
        """Reads the table: a mapping from names to NumPy arrays, each made when it is asked for.

        Times are datetime64[us]. What is missing is NaN or NaT, and None among texts; integers are
        a masked array where some are missing, and an array else.
        """
        try:
            from ._arrays import Arrays
        except ImportError as error:
            raise ImportError("to_numpy() needs NumPy, which is not installed") from error
        return Arrays(self._batches)

    def to_pandas(self) -> pandas.DataFrame:
        """Reads the table into a DataFrame.

        What is missing is NaN or NaT, and None among texts; integers are Int32 or Int64 where some
        are missing. Times that were shifted to UTC say so.
        """
        try:
            import pandas
        except ImportError as error:
            raise ImportError("to_pandas() needs pandas, which is not installed") from error
        arrays = self.to_numpy()
        columns: dict[str, Any] = {}
        for name, values in arrays.items():
            if self._part.to_utc and values.dtype.kind == "M":
                columns[name] = pandas.DatetimeIndex(values).tz_localize("UTC").array
            elif hasattr(values, "mask"):
                columns[name] = pandas.arrays.IntegerArray(values.data, values.mask)
            else:
                columns[name] = values
        return pandas.DataFrame(columns)


class _Tables(Mapping[str, Table]):
    def __init__(self, recording: _Recording, part: _Range) -> None:
        self._recording = recording
        self._part = part

    def __iter__(self) -> Iterator[str]:
        return iter(self._recording.tables)

    def __len__(self) -> int:
        return len(self._recording.tables)

    def __getitem__(self, name: str) -> Table:
        return self.choose(name, None)

    def __repr__(self) -> str:
        return f"<quorvex64.tables of {self._recording.path}: {', '.join(self)}>"

    def choose(self, name: str, columns: Optional[list[str]]) -> Table:
        if name not in self._recording.tables:
            known = ", ".join(map(repr, self))
            raise NoSuchName(f"{self._recording.path}: no table {name!r}, but {known}")
        return Table(self._recording, name, columns, self._part)


def _minutes(utc_offset: Union[timedelta, str]) -> int:
    if isinstance(utc_offset, str):
        match = _OFFSET.fullmatch(utc_offset)
        if match is None:
            raise ValueError(f"utc_offset: {utc_offset!r} is not of the form '+01:00'")
        offset = timedelta(hours=int(match[2]), minutes=int(match[3]))
        utc_offset = -offset if match[1] == "-" else offset
    if utc_offset % _MINUTE or not -_DAY < utc_offset < _DAY:
        raise ValueError(f"utc_offset: {utc_offset} is no whole minutes, or a day and more")
    return utc_offset // _MINUTE


def tables(
    recording: StrPath,
    *,
    records: Optional[Records] = None,
    utc_offset: Optional[Union[timedelta, str]] = None,
) -> Mapping[str, Table]:
    """The tables of a recording by their names: `file`, `settings`, `records`, and one for each
    kind of list. No record is read for that; see table()."""
    first, last = (0, 0) if records is None else span_of(records, _MOST_RECORDS)
    minutes = 0 if utc_offset is None else _minutes(utc_offset)
    return _Tables(
        _Recording(Path(recording)), _Range(first, last, utc_offset is not None, minutes)
    )


def table(
    recording: StrPath,
    name: str = "records",
    columns: Optional[Iterable[str]] = None,
    *,
    records: Optional[Records] = None,
    utc_offset: Optional[Union[timedelta, str]] = None,
) -> Table:
    """A table of a recording, straight from the recording.

      columns     names of those wanted, in that order; what is not asked for is not decoded
      records     first and last record, counted from 1, None for the last that there is; or the
                  number of a single record. Behind the last there is nothing, which is no error
      utc_offset  by which the instrument's clock is ahead of UTC: "+01:00" or a timedelta. Times
                  are shifted to UTC then; otherwise they are the instrument's
    """
    found = tables(recording, records=records, utc_offset=utc_offset)
    assert isinstance(found, _Tables)
    chosen = [columns] if isinstance(columns, str) else columns
    return found.choose(name, None if chosen is None else list(chosen))
