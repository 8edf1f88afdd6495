"""Recordings of a power-quality analyser: read as tables, converted into XML documents, and read
from them."""

from ._checks import CheckResult, Finding, check
from ._documents import DocumentError, frame, head, read, records
from ._library import LibraryError, QuorvexError, __version__, load
from ._recordings import Cancelled, ConversionError, RecordInfo, convert, info
from ._tables import Column, NoSuchName, Table, TableError, table, tables

__all__ = [
    "Cancelled",
    "CheckResult",
    "Column",
    "ConversionError",
    "DocumentError",
    "Finding",
    "LibraryError",
    "NoSuchName",
    "QuorvexError",
    "RecordInfo",
    "Table",
    "TableError",
    "__version__",
    "check",
    "convert",
    "frame",
    "head",
    "info",
    "load",
    "read",
    "records",
    "table",
    "tables",
]
