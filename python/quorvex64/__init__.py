"""Recordings of a power-quality analyser: converted into XML documents, and read from them."""

from ._documents import DocumentError, frame, head, read, records
from ._library import LibraryError, QuorvexError, __version__, load
from ._recordings import Cancelled, ConversionError, RecordInfo, convert, info

__all__ = [
    "Cancelled",
    "ConversionError",
    "DocumentError",
    "LibraryError",
    "QuorvexError",
    "RecordInfo",
    "__version__",
    "convert",
    "frame",
    "head",
    "info",
    "load",
    "read",
    "records",
]
