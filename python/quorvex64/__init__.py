"""Recordings of a power-quality analyser: converted into XML documents, and read from them."""

from ._checks import CheckResult, Finding, check
from ._documents import DocumentError, frame, head, read, records
from ._library import LibraryError, QuorvexError, __version__, load
from ._recordings import Cancelled, ConversionError, RecordInfo, convert, info

__all__ = [
    "Cancelled",
    "CheckResult",
    "ConversionError",
    "DocumentError",
    "Finding",
    "LibraryError",
    "QuorvexError",
    "RecordInfo",
    "__version__",
    "check",
    "convert",
    "frame",
    "head",
    "info",
    "load",
    "read",
    "records",
]
