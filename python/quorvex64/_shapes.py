"""How the records of a recording lie in its file."""

from __future__ import annotations

import os
import re
import struct
import sys
from dataclasses import dataclass
from datetime import datetime, timedelta
from pathlib import Path
from typing import BinaryIO, Optional

from ._formats import CONNECTION_AT, INTERVAL_AT, REDUCED_LISTS_AT, SETTINGS_SIZE
from ._layouts import Layout, RecordType
from ._library import MOST_PATH_BYTES, path_bytes

_HEADER_SIZE = 8
_DATE_TIME = struct.Struct("<HBBBBxxd")

# In front of the number, the number, what the kind of file replaces, the extensions.
_RECORDING_NAME = re.compile(rb"((?:.*[/\\])?[^.0-9]*)([0-9]*)[^.]*(.*)", re.DOTALL)


@dataclass(frozen=True)
class Shape:
    """The records of a file, by the settings in force."""

    has_layout: bool
    records: Optional[int]  # whole ones; None where they differ in length or have no layout
    record_size: int  # 0 where there is no such size
    setting_file: bool  # whether the settings in force are those of a setting file
    end: Optional[datetime]  # of the last whole record


def setting_file_of(recording: Path) -> Optional[str]:
    """The setting file beside a recording: R0012PAR.REC for R0012GEN.REC and for R12-2.REC."""
    match = _RECORDING_NAME.fullmatch(path_bytes(recording))
    assert match is not None
    name = match[1] + match[2].lstrip(b"0").rjust(4, b"0") + b"PAR" + match[3]
    path = name.decode("mbcs") if sys.platform == "win32" else os.fsdecode(name)
    return path if len(name) <= MOST_PATH_BYTES and os.path.isfile(path) else None


def _settings(file: BinaryIO, kind: RecordType, recording: Path) -> tuple[bytes, bool]:
    """The settings in force, and whether a setting file is there for them."""
    data = b""
    if kind.settings_at is not None:
        file.seek(kind.settings_at)
        data = file.read(SETTINGS_SIZE)
    beside = setting_file_of(recording) if kind.companion else None
    if beside is not None:
        try:
            with open(beside, "rb") as other:
                fresh = other.read(_HEADER_SIZE + SETTINGS_SIZE)[_HEADER_SIZE:]
            data = fresh + data[len(fresh) :]  # of a short one the rest stays
        except OSError:
            beside = None
    return data.ljust(SETTINGS_SIZE, b"\0"), beside is not None


def _word(settings: bytes, at: int) -> int:
    return int.from_bytes(settings[at : at + 4], "little")


def _size(layout: Layout, settings: bytes) -> int:
    if not layout.sizes:
        return 0
    connection = settings[CONNECTION_AT]
    case = (connection if connection < 8 else 0) + (8 if settings[REDUCED_LISTS_AT] else 0)
    count = 0 if layout.count_at is None else _word(settings, layout.count_at)
    if count >= 1 << 31:  # below 0
        count = 0
    each = layout.per_count[case % len(layout.per_count)]
    return layout.sizes[case % len(layout.sizes)] + count * each


def _date_time(data: bytes) -> Optional[datetime]:
    """A point in time as records store it, None where it is none."""
    try:
        *whole, seconds = _DATE_TIME.unpack(data)
        moment = datetime(*whole)
    except (ValueError, struct.error):
        return None
    if not (1970 <= moment.year < 2200 and 0 <= seconds < 60):
        return None
    return moment + timedelta(microseconds=int(seconds * 1e6))


def _end(file: BinaryIO, place: int, layout: Layout, settings: bytes) -> Optional[datetime]:
    """When the record at this place ends: its own word, or else an interval after its start."""
    at, seconds = layout.end_at, 0
    if at is None:
        at, seconds = layout.start_at, _word(settings, INTERVAL_AT)
    if at is None:
        return None
    file.seek(place + at)
    moment = _date_time(file.read(_DATE_TIME.size))
    try:
        return None if moment is None else moment + timedelta(seconds=seconds)
    except OverflowError:
        return None


def shape_of(recording: Path, kind: RecordType) -> Shape:
    with open(recording, "rb") as file:
        settings, beside = _settings(file, kind, recording)
        if not kind.layouts:
            return Shape(False, 0, 0, beside, None)
        chosen = None if kind.chosen_by is None else _word(settings, kind.chosen_by)
        layout = kind.layouts.get(chosen) or kind.layouts.get(None)
        size = 0 if layout is None else _size(layout, settings)
        if layout is None or size == 0:
            return Shape(layout is not None, None, 0, beside, None)
        records = max(0, os.fstat(file.fileno()).st_size - kind.records_at) // size
        if kind.once:
            records = min(records, 1)
        last = kind.records_at + (records - 1) * size
        end = _end(file, last, layout, settings) if records else None
    return Shape(True, records, size, beside, end)
