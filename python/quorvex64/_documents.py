"""Reading documents: records as plain structures, and as tables."""

from __future__ import annotations

import base64
import math
import re
import struct
from datetime import datetime
from typing import TYPE_CHECKING, Any, Iterator, Optional
from xml.etree import ElementTree

from ._library import QuorvexError, StrPath
from ._recordings import is_recording
from ._tables import table

if TYPE_CHECKING:
    import pandas

Record = dict[str, Any]

# What stands around the records, and the elements that hold them. A record without such an element
# around it stands in the root.
_HEADS = ("FILE_HEADER", "UIF_PARAMS", "INFORMATION")
_LISTS = ("RECORDS", "TRANSITIONS")

# As many as the recording says, so lists even where there is one: elements by their names, and
# everything inside some.
_REPEATED = {"ELEMENT", "SETTINGS", "Vrms12", "v"}
_REPEATED_INSIDE = re.compile(r"END_TIMES|U\d+_SIG\d|flags|freqs")

# Texts as the library writes numbers. Where a free text reads the same, nothing of it is lost.
_NUMBER = re.compile(r"(-?(?:0|[1-9]\d*))|(-?\d\.\d{6}E[+-]\d\d+)|(-|-?INF|-?NAN)")
_INTEGER, _FLOAT, _MISSING = 1, 2, 3

_TIME_PARTS = ["year", "month", "day", "hour", "min", "sec"]
_LONGEST_INTEGER = 11


class DocumentError(QuorvexError):
    """A file that is no document of this library, or a damaged one."""


def _leaf(text: str) -> Any:
    match = _NUMBER.fullmatch(text)
    if match is None:
        return text
    if match.lastindex == _MISSING:
        return None
    return int(text) if match.lastindex == _INTEGER else float(text)


def _floats(text: str) -> list[Optional[float]]:
    """The floats of a spectrum, which stands in the document as base64 of their bytes."""
    try:
        data = base64.b64decode(text, validate=True)
        values = struct.unpack(f"<{len(data) // 4}f", data)
    except (ValueError, struct.error) as error:
        raise DocumentError(f"no floats in base64: {text[:20]}") from error
    return [value if math.isfinite(value) else None for value in values]


def _time(parts: ElementTree.Element) -> Optional[datetime]:
    """A date-time, None where it was never set or is damaged."""
    try:
        *whole, seconds = (part.text or "" for part in parts)
        year, month, day, hour, minute = map(int, whole)
        second, _, fraction = seconds.partition(".")
        microseconds = int(fraction.ljust(6, "0")) if fraction else 0
        return datetime(year, month, day, hour, minute, int(second), microseconds)
    except ValueError:
        return None


def _value(element: ElementTree.Element) -> Any:
    text = element.text or ""
    if len(element) == 0:
        if not text.startswith("\n"):
            return _leaf(text)
        # On a line of its own: a group without elements, a word of flags, or a spectrum.
        text = text.strip()
        if not text:
            return {}
        return _leaf(text) if len(text) <= _LONGEST_INTEGER else _floats(text)
    if element[0].tag == "year" and [part.tag for part in element] == _TIME_PARTS:
        return _time(element)
    return _group(element)


def _group(element: ElementTree.Element) -> Record:
    values: dict[str, list[Any]] = {}
    for child in element:
        phase = child.get("phase")
        name = child.tag if phase is None else f"{child.tag}[{phase}]"
        values.setdefault(name, []).append(_value(child))
    if _REPEATED_INSIDE.fullmatch(element.tag):
        return values
    return {
        name: found if len(found) > 1 or name in _REPEATED else found[0]
        for name, found in values.items()
    }


def _elements(document: StrPath) -> Iterator[ElementTree.Element]:
    """The heads and the records in turn, of which memory holds one at a time."""
    parents: list[ElementTree.Element] = []
    with open(document, "rb") as file:
        try:
            for event, element in ElementTree.iterparse(file, ("start", "end")):
                if event == "start":
                    if not parents and element.tag != "Project":
                        raise DocumentError(f"{document}: is no document of a recording")
                    parents.append(element)
                    continue
                parents.pop()
                if len(parents) == 1 and element.tag not in _LISTS:
                    yield element
                elif len(parents) == 2 and parents[1].tag in _LISTS:
                    yield element
                else:
                    continue
                parents[-1].clear()
        except ElementTree.ParseError as error:
            raise DocumentError(f"{document}: is damaged: {error}") from error


def head(document: StrPath) -> Record:
    """What stands in front of the records: file header, settings, information of the recording."""
    group: Record = {}
    for element in _elements(document):
        if element.tag not in _HEADS:
            break
        group[element.tag] = _value(element)
    return group


def records(document: StrPath) -> Iterator[Record]:
    """The records of a document, one after the other, each a dict of names and values.

    The key "record" holds the name of the record's element. A group is a dict again, an element
    that repeats a list; an element with a phase has it in its name: "U[u1]". Date-times are
    datetime objects, spectra lists of floats. None is a missing value: what the document shows as
    "-", infinities, date-times that were never set.
    """
    for element in _elements(document):
        if element.tag not in _HEADS:
            yield {"record": element.tag, **_group(element)}


def read(document: StrPath) -> list[Record]:
    """All records of a document; see records()."""
    return list(records(document))


def _row(value: Any, name: str, row: Record) -> Record:
    """Adds what lies in `value` to a row, as columns whose names start with `name`."""
    if isinstance(value, dict):
        for key, item in value.items():
            _row(item, f"{name}/{key}" if name else key, row)
    elif not isinstance(value, list):
        row[name] = math.nan if value is None else value
    elif any(isinstance(item, dict) for item in value):
        items = [_row(item, name, {}) for item in value]
        for column in dict.fromkeys(column for item in items for column in item):
            row[column] = [item.get(column, math.nan) for item in items]
    else:
        row[name] = [math.nan if item is None else item for item in value]
    return row


def frame(document: StrPath) -> pandas.DataFrame:
    """The records of a document or of a recording as a pandas table, a row a record.

    Columns are named by the way through the groups: "VOLTAGES/U[u1]/rms/max". Missing values are
    NaN. What repeats in a record of a document is a list in its cell, so that the columns do not
    depend on how often; a repeated group has a list in the column of each of its values. Of a
    recording, which need not be converted, it is the table `records`, and what repeats has tables
    of its own; see table().
    """
    try:
        import pandas
    except ImportError as error:
        raise ImportError("quorvex64.frame() needs pandas, which is not installed") from error
    if is_recording(document):
        return table(document).to_pandas()
    return pandas.DataFrame([_row(record, "", {}) for record in records(document)])
