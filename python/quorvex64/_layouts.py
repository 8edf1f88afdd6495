"""What is known of a record type; _formats.py, made from the library's tables, fills it in."""

from __future__ import annotations

from typing import NamedTuple, Optional


class Layout(NamedTuple):
    """A layout of records. Sizes go by the case: the connection code, and eight more for reduced
    lists. Fewer than sixteen repeat."""

    sizes: tuple[int, ...]  # bytes of a record; none where records differ
    per_count: tuple[int, ...] = (0,)  # more of them for each of what the settings count
    count_at: Optional[int] = None  # the word of the settings that counts
    start_at: Optional[int] = None  # times of the record
    end_at: Optional[int] = None


class RecordType(NamedTuple):
    name: str
    line: tuple[str, ...]  # what the texts of its information line are; none where it has no line
    end_from: str  # whose word its end is: "settings", "records", or "periods", counted ones
    records_at: int
    settings_at: Optional[int]
    companion: bool  # a setting file beside the recording replaces its settings
    ranges: bool  # a part can be converted
    progress: bool  # a conversion reports its progress
    once: bool  # one record a file
    chosen_by: Optional[int]  # the word of the settings that chooses the layout
    layouts: dict[Optional[int], Layout]  # by that word; None: by every other value
