"""Questions about recordings, and their conversion."""

from __future__ import annotations

import math
import os
import re
import stat
import struct
import tempfile
from dataclasses import dataclass
from datetime import datetime, timedelta
from functools import partial
from pathlib import Path
from typing import Callable, Optional

from ._library import LAST_RECORD, QuorvexError, StrPath, library, path_bytes

# The record types, and what the texts of their information line are.
_TYPES: dict[int, tuple[str, tuple[str, ...]]] = {
    1: ("general records", ("start", "end", "interval")),
    2: (
        "snapshots",
        ("start", "end", "trigger", "level", "slope", "duration", "pretrigger"),
    ),
    3: ("channel readings", ()),
    4: ("settings", ()),
    5: (
        "waveform capture",
        ("start", "end", "trigger")
        + ("voltage level", "voltage envelope", "neutral level", "neutral envelope")
        + ("current level", "current envelope", "neutral I level", "neutral I envelope"),
    ),
    6: ("live results", ("time",)),
    7: ("alarms", ()),
    8: ("voltage events", ()),
    9: ("signalling", ()),
    10: ("rapid voltage changes", ()),
    11: ("averages", ()),
    12: ("transients", ()),
    13: ("inrush currents", ()),
    14: (
        "channel readings (second list)",
        ("start", "end", "level", "slope", "duration", "pretrigger", "mark"),
    ),
    15: ("sessions", ()),
    16: ("voltage quality", ("start", "end", "interval")),
    17: ("waveform series", ("start", "end", "trigger", "level", "duration", "pretrigger")),
    18: ("energy meter tests", ("start", "end")),
}
_GENERAL = 1

_FIELD = re.compile(r" '([^']*)'| ([^ ]+)")
_TIME = re.compile(r"(\d\d)\.(\w{3})\.(\d{4}) (\d\d):(\d\d):(\d\d)\.(\d{3})")
_MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()
_INTERVAL = re.compile(r"(?:(\d+) Min)? ?(?:(\d+) s)?")


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
    end: Optional[datetime]  # of general recordings an estimate, until a setting file tells it
    interval: Optional[timedelta]
    records: Optional[int]  # of general recordings, as if all were of the full profile
    line: str  # the information line as the library gives it
    fields: dict[str, str]  # the other texts of that line


def _type_of(recording: Path) -> int:
    status = os.stat(recording)
    if stat.S_ISDIR(status.st_mode):
        raise ConversionError(f"{recording}: is a folder")
    if not stat.S_ISREG(status.st_mode):
        raise ConversionError(f"{recording}: is no regular file")
    with open(recording, "rb") as file:
        header = file.read(8)
    if len(header) < 8:
        raise ConversionError(f"{recording}: ends inside its head ({len(header)} of 8 bytes)")
    kind = int(struct.unpack("<II", header)[1])
    if kind not in _TYPES:
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


def info(recording: StrPath) -> RecordInfo:
    """Says what a recording is.

    Times, interval and fields come from the library's information line, which it has for some
    record types and for names that end in ".REC".
    """
    path = Path(recording)
    kind = _type_of(path)
    name, labels = _TYPES[kind]
    encoded = path_bytes(path)
    line = library().record_line(encoded)
    texts = [quoted or bare for quoted, bare in _FIELD.findall(line)]
    fields = dict(zip(labels, texts))
    start = fields.pop("start", None) or fields.pop("time", None)
    return RecordInfo(
        file=path,
        type=kind,
        name=name,
        version=library().file_version(encoded),
        size=path.stat().st_size,
        start=_time(start),
        end=_time(fields.pop("end", None)),
        interval=_interval(fields.pop("interval", None)),
        records=max(0, library().number_of_records(encoded)) if kind == _GENERAL else None,
        line=line,
        fields=fields,
    )


class _Reporter:
    """A progress callback as the library calls it. What it raises waits for the end of the call."""

    def __init__(self, progress: Callable[[float], object]) -> None:
        self._progress = progress
        self.raised: Optional[BaseException] = None
        self.endless = False

    def __call__(self, fraction: float) -> int:
        try:
            # Of an unknown profile there is nothing to convert, but the library would count through
            # all record numbers, only to call here.
            if math.isinf(fraction):
                self.endless = True
                return -1
            # It may pass 1 for a file that is cut short, or be no number.
            if self._progress(min(fraction, 1.0) if fraction > 0 else 0.0) is False:
                raise Cancelled("the progress callback stopped the conversion")
        except BaseException as error:
            self.raised = error
            return -1
        return 0


def convert(
    recording: StrPath,
    document: Optional[StrPath] = None,
    progress: Optional[Callable[[float], object]] = None,
    records: Optional[tuple[int, int]] = None,
) -> Path:
    """Converts a recording into an XML document and returns the document's path.

      document  where it goes; by default beside the recording, with the extension ".xml"
      progress  called with the fraction done after each record, for the record types that report
                it; False, or an exception, cancels the conversion
      records   first and last record of a general recording, counted from 1; other recordings are
                converted whole

    The document appears under its name when it is complete, and not at all where this raises. An
    exception of the callback comes through.
    """
    source = Path(recording)
    _type_of(source)
    first, last = (1, LAST_RECORD) if records is None else records
    if not 1 <= first <= last <= LAST_RECORD:
        raise ValueError(f"records: {first} to {last} is no range")
    named = source.with_suffix(".xml") if document is None else Path(document)
    target = Path(os.path.realpath(named))
    if target.exists():
        if target.samefile(source):
            raise ConversionError(f"{named}: is the recording itself; it is not overwritten")
        if not target.is_file():
            raise ConversionError(f"{named}: is no regular file")
    reporter = None if progress is None else _Reporter(progress)
    with tempfile.TemporaryDirectory(prefix=".quorvex64-", dir=target.parent) as folder:
        fresh = Path(folder, "document.xml")
        call = partial(library().convert, path_bytes(source), path_bytes(fresh), (first, last))
        call(reporter)
        if reporter is not None and reporter.raised is not None:
            raise reporter.raised
        if reporter is not None and reporter.endless:
            call(None)
        if not fresh.exists():
            raise ConversionError(f"{source}: cannot be converted")
        os.replace(fresh, target)
    return named
