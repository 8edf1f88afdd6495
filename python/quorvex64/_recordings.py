"""Questions about recordings, and their conversion."""

from __future__ import annotations

import errno
import operator
import os
import re
import stat
import struct
from dataclasses import dataclass
from datetime import datetime, timedelta
from pathlib import Path
from typing import Callable, Optional, Union

from ._formats import RECORD_TYPES
from ._layouts import RecordType
from ._library import LAST_RECORD, QuorvexError, StrPath, library, path_bytes
from ._scratch import scratch_for
from ._shapes import Shape, shape_of

_FIELD = re.compile(r" '([^']*)'| ([^ ]+)")
_TIME = re.compile(r"(\d\d)\.(\w{3})\.(\d{4}) (\d\d):(\d\d):(\d\d)\.(\d{3})")
_MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()
_INTERVAL = re.compile(r"(?:(\d+) Min)? ?(?:(\d+) s)?")

# A record's number; or first and last, the last record that there is where that is None.
Records = Union[int, tuple[int, Optional[int]]]


class ConversionError(QuorvexError):
    """A recording gives no document; the text says why."""


class Cancelled(QuorvexError):
    """The progress callback stopped a conversion."""


@dataclass(frozen=True)
class RecordInfo:
    """What a recording is, as far as its head tells."""

    file: Path
    type: int
    name: str  # of the record type, in words
    version: int  # of the file format
    size: int  # in bytes
    start: Optional[datetime]
    end: Optional[datetime]
    end_from: Optional[str]  # "records", "settings", or "estimate" where neither tells it
    interval: Optional[timedelta]
    records: Optional[int]  # whole ones; None where they differ in length or have no layout
    line: str  # the information line as the library gives it
    fields: dict[str, str]  # the other texts of that line


def _type_in(header: bytes) -> int:
    return int(struct.unpack("<II", header)[1]) if len(header) == 8 else 0


def type_of(recording: Path) -> int:
    status = os.stat(recording)
    if stat.S_ISDIR(status.st_mode):
        raise ConversionError(f"{recording}: is a folder")
    if not stat.S_ISREG(status.st_mode):
        raise ConversionError(f"{recording}: is no regular file")
    with open(recording, "rb") as file:
        header = file.read(8)
    if len(header) < 8:
        raise ConversionError(f"{recording}: ends inside its head ({len(header)} of 8 bytes)")
    kind = _type_in(header)
    if kind not in RECORD_TYPES:
        raise ConversionError(f"{recording}: is of the unknown record type {kind}")
    return kind


def _time(text: Optional[str]) -> Optional[datetime]:
    match = _TIME.fullmatch(text or "")
    if match is None or match[2] not in _MONTHS:
        return None
    day, year, hour, minute, second, milliseconds = map(int, match.group(1, 3, 4, 5, 6, 7))
    month = _MONTHS.index(match[2]) + 1
    try:
        return datetime(year, month, day, hour, minute, second, milliseconds * 1000)
    except ValueError:  # never set, or damaged
        return None


def _interval(text: Optional[str]) -> Optional[timedelta]:
    match = _INTERVAL.fullmatch((text or "").strip())
    if match is None or match.lastindex is None:
        return None
    return timedelta(minutes=int(match[1] or 0), seconds=int(match[2] or 0))


def _end(told: Optional[datetime], kind: int, shape: Shape) -> tuple[Optional[datetime], str]:
    """The end of a recording, and what tells it. The line's is wrong for most layouts of periodic
    recordings as long as there is no setting file, and of a copied card that file is missing."""
    end_from = RECORD_TYPES[kind].end_from
    if end_from != "periods":
        return told, end_from
    if shape.end is not None:
        return shape.end, "records"
    return told, "settings" if shape.setting_file else "estimate"


def info(recording: StrPath) -> RecordInfo:
    """Says what a recording is.

    Times, interval and fields come from the library's information line, which it has for some
    record types and for names that end in ".REC". The end of general and voltage quality recordings
    is the last whole record's own.
    """
    path = Path(recording)
    kind = type_of(path)
    encoded = path_bytes(path)
    shape = shape_of(path, RECORD_TYPES[kind])
    line = library().record_line(encoded)
    texts = [quoted or bare for quoted, bare in _FIELD.findall(line)]
    fields = dict(zip(RECORD_TYPES[kind].line, texts))
    start = fields.pop("start", None) or fields.pop("time", None)
    end, end_from = _end(_time(fields.pop("end", None)), kind, shape)
    return RecordInfo(
        file=path,
        type=kind,
        name=RECORD_TYPES[kind].name,
        version=library().file_version(encoded),
        size=path.stat().st_size,
        start=_time(start),
        end=end,
        end_from=None if end is None else end_from,
        interval=_interval(fields.pop("interval", None)),
        records=shape.records,
        line=line,
        fields=fields,
    )


class _Reporter:
    """A progress callback as the library calls it. What it raises waits for the end of the call."""

    def __init__(self, progress: Callable[[float], object]) -> None:
        self._progress = progress
        self.raised: Optional[BaseException] = None

    def __call__(self, fraction: float) -> int:
        try:
            # It may pass 1 for a file that is cut short, or be no number.
            if self._progress(min(fraction, 1.0) if fraction > 0 else 0.0) is False:
                raise Cancelled("the progress callback stopped the conversion")
        except BaseException as error:
            self.raised = error
            return -1
        return 0


def span_of(records: Records, most: int) -> tuple[int, int]:
    """First and last record, `most` being the highest number that there can be."""
    first, last = (records, records) if isinstance(records, int) else records
    first, last = operator.index(first), operator.index(most if last is None else last)
    if not 1 <= first <= last <= most:
        raise ValueError(f"records: {first} to {last} is no range")
    return first, last


def _range(records: Records, source: Path, kind: RecordType, shape: Shape) -> tuple[int, int]:
    if not kind.ranges:
        raise ValueError(f"records: {source} holds {kind.name}, which are converted whole")
    first, last = span_of(records, LAST_RECORD)
    if shape.records is None:
        raise ValueError(f"records: {source} is of a profile without records that can be read")
    if first > shape.records:
        raise ValueError(f"records: {source} has {shape.records} records, none of number {first}")
    # The library keeps the distance to a record in 32 bits.
    if (first - 1) * shape.record_size > 0xFFFFFFFF:
        raise ValueError(f"records: {first} of {source} lies beyond 4 GiB, where no range starts")
    return first, last


def default_document(source: Path) -> Path:
    dot = source.name.rfind(".")
    return source.with_name((source.name[:dot] if dot > 0 else source.name) + ".xml")


def is_recording(path: StrPath) -> bool:
    with open(path, "rb") as file:
        return _type_in(file.read(8)) in RECORD_TYPES


def _refuse(document: Path, target: Path, source: Path, overwrite: bool) -> None:
    """Raises where no document may be written. `target` is where `document` leads to."""
    there = os.path.lexists(target)
    if there and target.samefile(source):
        raise ConversionError(f"{document}: is the recording itself; it is not overwritten")
    if any(path.name.upper().endswith(".REC") for path in (document, target)):
        raise ConversionError(f"{document}: has a recording's name; no document is written there")
    if not there:
        return
    if target.is_dir():
        raise ConversionError(f"{document}: is a folder")
    if not target.is_file():
        raise ConversionError(f"{document}: is no regular file")
    if is_recording(target):
        raise ConversionError(f"{document}: is another recording; it is not overwritten")
    if not overwrite:
        raise FileExistsError(errno.EEXIST, os.strerror(errno.EEXIST), str(document))


def convert(
    recording: StrPath,
    document: Optional[StrPath] = None,
    progress: Optional[Callable[[float], object]] = None,
    records: Optional[Records] = None,
    *,
    overwrite: bool = False,
    sync: bool = False,
) -> Path:
    """Converts a recording into an XML document and returns the document's path.

      document   where it goes; by default beside the recording, with the extension ".xml"
      progress   called with the fraction done after each record, for the record types that report
                 it; False, or an exception, cancels the conversion
      records    of a general recording: first and last record, counted from 1, None for the last
                 that there is; or the number of a single record
      overwrite  replaces an existing document, which raises FileExistsError otherwise; a recording
                 is never replaced
      sync       waits for the disk before the document gets its name

    The document appears under its name when it is complete, and not at all where this raises. An
    exception of the callback comes through.
    """
    source = Path(recording)
    kind = RECORD_TYPES[type_of(source)]
    encoded = path_bytes(source)
    shape = shape_of(source, kind)
    span = (1, LAST_RECORD) if records is None else _range(records, source, kind, shape)
    named = default_document(source) if document is None else Path(document)
    target = Path(os.path.realpath(named))
    _refuse(named, target, source, overwrite)
    # Of a profile without a layout there is nothing to convert, but for a callback the library
    # counts through all record numbers.
    reporter = _Reporter(progress) if progress is not None and shape.has_layout else None
    with scratch_for(named, target) as scratch:
        library().convert(encoded, path_bytes(scratch.path), span, reporter)
        if reporter is not None and reporter.raised is not None:
            raise reporter.raised
        if scratch.size() == 0:
            source.stat()  # raises where it has vanished
            raise ConversionError(f"{source}: cannot be converted")
        _refuse(named, target, source, overwrite)  # it may be there by now
        scratch.become(named, target, overwrite, sync)
    return named
