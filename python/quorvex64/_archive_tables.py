"""Tables of many recordings as Dask frames."""

from __future__ import annotations

import os
import warnings
from datetime import timedelta
from functools import partial
from pathlib import Path
from typing import TYPE_CHECKING, Any, Iterable, Iterator, NamedTuple, Optional, Union

from ._batches import GONE, Known, run
from ._formats import RECORD_TYPES
from ._gather import Paths, problem_of, strings, walk
from ._library import LibraryError, QuorvexError
from ._recordings import type_of
from ._tables import Column, NoSuchName, table
from ._tables import tables as tables_of

if TYPE_CHECKING:
    import pandas


class _Source(NamedTuple):
    """A recording of which a table may be."""

    recording: str
    path: str
    size: int = 0  # heads alone are read


class _Head(NamedTuple):
    source: _Source
    type: Optional[int]
    columns: Optional[tuple[Column, ...]]  # None where there is no such table
    problem: Optional[str] = None


def _head(source: _Source, name: str) -> _Head:
    try:
        found = tables_of(source.path)
        columns = tuple(found[name].columns) if name in found else None
        return _Head(source, type_of(Path(source.path)), columns)
    except LibraryError:
        raise
    except (OSError, QuorvexError, ValueError) as error:
        return _Head(source, None, None, problem_of(error, source.path))


def _head_batch(sources: list[_Source], name: str) -> list[_Head]:
    # Recordings of a type have mostly the same columns: one object is sent once.
    known: dict[Any, Any] = {}
    heads = [_head(source, name) for source in sources]
    return [head._replace(columns=known.setdefault(head.columns, head.columns)) for head in heads]


def _sources(paths: list[str]) -> Iterator[Union[_Source, Known[_Head]]]:
    base = os.getcwd()
    for folder in walk(paths):
        if folder.problem is not None:
            yield Known(_Head(_Source(folder.path, ""), None, None, folder.problem))
        for name in folder.names:
            recording = os.path.join(folder.path, name)
            yield _Source(recording, str(Path(base, recording)))


def _common(types: set[str]) -> str:
    """The type that can say what the others say."""
    if len(types) == 1:
        return next(iter(types))
    if types == {"int32", "int64"}:
        return "int64"
    return "double" if types <= {"int32", "int64", "float", "double"} else "text"


def _dtype(type: str, utc_offset: object) -> Any:
    import pandas

    if type == "time":  # nanoseconds until pandas 2, microseconds since
        times = pandas.DatetimeIndex(pandas.Series([], dtype="datetime64[us]"))
        return (times if utc_offset is None else times.tz_localize("UTC")).dtype
    return {"int32": "Int32", "int64": "Int64", "float": "float32", "double": "float64"}.get(
        type, "object"
    )


class _Partition:
    """Reads the table of one recording: what Dask calls for a partition. It knows which columns are
    asked for, so that a sum over one column decodes no other."""

    def __init__(
        self, name: str, dtypes: dict[str, Any], utc_offset: Optional[Union[timedelta, str]]
    ) -> None:
        self._name = name
        self._dtypes = dtypes
        self._utc_offset = utc_offset

    @property
    def columns(self) -> list[str]:
        return list(self._dtypes)

    def project_columns(self, columns: list[str]) -> _Partition:
        dtypes = {name: self._dtypes[name] for name in columns}
        return _Partition(self._name, dtypes, self._utc_offset)

    def __call__(self, source: _Source) -> pandas.DataFrame:
        import pandas

        recording, path, _ = source
        there = [c.name for c in tables_of(path)[self._name].columns]
        wanted = [name for name in there if name in self._dtypes] or there[:1]
        read = table(path, self._name, wanted, utc_offset=self._utc_offset).to_pandas()
        found = {
            # One value, too, is as many as there are rows: none is of the type asked for.
            name: read[name].astype(dtype, copy=False)
            if name in read
            else pandas.Series(recording if name == "recording" else None, read.index, dtype)
            for name, dtype in self._dtypes.items()
        }
        return pandas.DataFrame(found, index=read.index)


def _one_type(heads: list[_Head], name: str, type: Optional[int]) -> list[_Head]:
    """Those with the table, which are of one type of recordings."""
    chosen = [head for head in heads if head.columns and type in (None, head.type)]
    if not chosen:
        of_type = "" if type is None else f" of type {type}"
        raise NoSuchName(f"none of {len(heads)} recordings is one{of_type} with a table {name!r}")
    types = sorted({head.type or 0 for head in chosen})
    if len(types) > 1:
        named = ", ".join(f"{number} ({RECORD_TYPES[number].name})" for number in types)
        raise ValueError(f"type: recordings of several types have a table {name!r}: {named}")
    return chosen


def tables(
    paths: Paths,
    name: str = "records",
    client: Optional[Any] = None,
    *,
    type: Optional[int] = None,
    columns: Optional[Iterable[str]] = None,
    utc_offset: Optional[Union[timedelta, str]] = None,
) -> Any:
    """A table of many recordings of one type as a Dask frame: a partition a recording.

      paths       files and folders, as of convert()
      name        of the table, as table() has it
      client      of a Dask cluster, which reads the heads; otherwise threads of this process do
      type        the number of the record type, as RecordInfo has it; needed where recordings of
                  several types have such a table
      columns     those wanted, as of table()
      utc_offset  as of table()

    The columns are `recording`, which is the path, and all that any of the recordings has; they are
    null for one that has them not. Integers are Int32 or Int64. Heads are read at once, records
    when they are needed. What cannot be read is left out, with a warning that names it.
    """
    try:
        import dask.dataframe
        import pandas
    except ImportError as error:
        problem = "archive.tables() needs Dask's frames and pandas, which are not installed"
        raise ImportError(problem) from error
    heads: list[_Head] = []
    layouts: dict[Any, Any] = {}
    for head in run(
        partial(_head_batch, name=name),
        lambda source: _Head(source, None, None, GONE),
        _sources(strings(paths)),
        client,
    ):
        heads.append(head._replace(columns=layouts.setdefault(head.columns, head.columns)))
    heads.sort(key=lambda head: head.source.recording)
    lost = [f"{head.source.recording}: {head.problem}" for head in heads if head.problem]
    if lost:
        more = f"; and {len(lost) - 5} more" if len(lost) > 5 else ""
        warnings.warn(f"left out: {'; '.join(lost[:5])}{more}", stacklevel=2)
    chosen = _one_type(heads, name, type)
    types: dict[str, set[str]] = {}
    for layout in dict.fromkeys(head.columns for head in chosen):
        for column in layout or ():
            types.setdefault(column.name, set()).add(column.type)
    for wanted in types if columns is None else (columns := list(columns)):
        if wanted not in types:
            raise NoSuchName(f"no recording has a column {wanted!r} in {name}")
    dtypes = {"recording": _dtype("text", utc_offset)}
    for column_name in types if columns is None else columns:
        dtypes[column_name] = _dtype(_common(types[column_name]), utc_offset)
    return dask.dataframe.from_map(
        _Partition(name, dtypes, utc_offset),
        [head.source for head in chosen],
        meta=pandas.DataFrame({key: pandas.Series(dtype=kind) for key, kind in dtypes.items()}),
        enforce_metadata=False,
    )
