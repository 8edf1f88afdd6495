"""The shared library: where it is, and the exports that this package calls."""

from __future__ import annotations

import ctypes
import ctypes.util
import errno
import os
import sys
import sysconfig
from pathlib import Path
from typing import Any, Callable, Iterator, Optional, Union

StrPath = Union[str, "os.PathLike[str]"]

# Of the library that this package goes with: release 3.7.44 calls itself 3744.
__version__ = "3.7.44"
VERSION = int(__version__.replace(".", ""))

FILE_NAME = "Quorvex64.dll" if sys.platform == "win32" else "libQuorvex64.so"
_NAME, _TABLES_NAME = "Quorvex64", "QuorvexTables"
VARIABLE = "QUORVEX64_LIBRARY"
LAST_RECORD = 0xFFFFFFFF
MOST_PATH_BYTES = 511  # the library takes a longer path for a file that cannot be opened
_LINE_ROOM = 512

# Both platforms use the C calling convention. ctypes gives the GIL free during a call and takes it
# again for a callback, so conversions run side by side.
_Progress = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_float)
_NO_PROGRESS = ctypes.cast(0, _Progress)

Exports = dict[str, tuple[Any, list[Any]]]  # what each gives and takes

_EXPORTS: Exports = {
    "QuorvexGetVersion": (ctypes.c_int32, []),
    "QuorvexGetFileVersion": (ctypes.c_int32, [ctypes.c_char_p]),
    "QuorvexGetNumberOfRecords": (ctypes.c_int32, [ctypes.c_char_p]),
    "QuorvexGetRecordInfo": (None, [ctypes.c_char_p, ctypes.c_char_p]),
    "QuorvexConvertPerPartes": (
        None,
        [ctypes.c_char_p, ctypes.c_char_p, ctypes.c_uint32, ctypes.c_uint32, _Progress],
    ),
}


class QuorvexError(Exception):
    """What this package raises beyond Python's own exceptions."""


class LibraryError(QuorvexError):
    """The shared library is not there, or is another one."""


def _load(path: str, exports: Exports, version_export: str) -> ctypes.CDLL:
    try:
        calls = ctypes.CDLL(path)
    except OSError as error:
        raise LibraryError(f"{path} cannot be loaded: {error}") from error
    for name, (result, arguments) in exports.items():
        try:
            export = getattr(calls, name)
        except AttributeError as error:
            raise LibraryError(f"{path} has no {name}: it is another library") from error
        export.restype = result
        export.argtypes = arguments
    version = getattr(calls, version_export)()
    if version != VERSION:
        raise LibraryError(f"{path} is version {version}; this package needs {VERSION}")
    return calls


class Library:
    """A loaded library. Its functions take paths as path_bytes() gives them."""

    def __init__(self, path: str) -> None:
        self.path = path
        self._calls = _load(path, _EXPORTS, "QuorvexGetVersion")
        self._tables: Optional[ctypes.CDLL] = None

    def tables(self, exports: Exports) -> ctypes.CDLL:
        """The second library, which lies beside this one and has the same ending."""
        if self._tables is None:
            folder, name = os.path.split(self.path)
            path = os.path.join(folder, name.replace(_NAME, _TABLES_NAME))
            if _NAME not in name:
                path = os.path.join(folder, FILE_NAME.replace(_NAME, _TABLES_NAME))
            self._tables = _load(path, exports, "QuorvexTablesGetVersion")
        return self._tables

    def file_version(self, path: bytes) -> int:
        return int(self._calls.QuorvexGetFileVersion(path))

    def number_of_records(self, path: bytes) -> int:
        return int(self._calls.QuorvexGetNumberOfRecords(path))

    def record_line(self, path: bytes) -> str:
        text = ctypes.create_string_buffer(_LINE_ROOM)
        self._calls.QuorvexGetRecordInfo(path, text)
        return text.value.decode("ascii", "replace")

    def convert(
        self,
        path: bytes,
        document: bytes,
        records: tuple[int, int],
        progress: Optional[Callable[[float], int]],
    ) -> None:
        callback = _Progress(progress) if progress is not None else _NO_PROGRESS
        self._calls.QuorvexConvertPerPartes(path, document, *records, callback)


def path_bytes(path: Path) -> bytes:
    """A path as the library reads it."""
    text = str(path)
    if sys.platform == "win32":
        try:
            encoded = text.encode("mbcs")
        except UnicodeEncodeError as error:
            problem = "has characters outside the system's code page"
            raise OSError(errno.EINVAL, problem, text) from error
    else:
        encoded = os.fsencode(text)
    if len(encoded) > MOST_PATH_BYTES:
        problem = f"is longer than {MOST_PATH_BYTES} bytes"
        raise OSError(errno.ENAMETOOLONG, problem, text)
    return encoded


def _places() -> Iterator[Path]:
    """Where the library may be, the nearest first."""
    package = Path(__file__).resolve().parent
    yield package
    yield package.parent
    if sys.platform == "win32":
        yield package.parent.parent / "bin"  # the unpacked zip: python\\quorvex64 and bin
    prefixes = [Path(sys.prefix)]
    if package.parent.name in ("dist-packages", "site-packages"):
        # PREFIX/lib/python3/dist-packages/quorvex64, PREFIX\Lib\site-packages\quorvex64
        levels = 2 if sys.platform == "win32" else 3
        prefixes = list(package.parents)[levels : levels + 1] + prefixes
    for prefix in prefixes:
        if sys.platform == "win32":
            yield prefix / "bin"
        else:
            yield prefix / "lib" / (sysconfig.get_config_var("MULTIARCH") or "")
            yield prefix / "lib"


def _find() -> str:
    named = os.environ.get(VARIABLE)
    if named:
        return os.path.abspath(named)
    tried = [place / FILE_NAME for place in _places()]
    for path in tried:
        if path.is_file():
            return str(path)
    found = ctypes.util.find_library("Quorvex64")
    if found:
        return found
    looked = ", ".join(dict.fromkeys(map(str, tried)))
    raise LibraryError(f"no {FILE_NAME}: {VARIABLE} is not set, and it is not at {looked}")


_loaded: Optional[Library] = None


def load(path: Optional[StrPath] = None) -> None:
    """Loads the library, in place of one loaded before.

    Without a path: the one that the environment variable QUORVEX64_LIBRARY names, else the one
    beside this package, else the installed one. The other functions do this at their first call.
    """
    global _loaded
    _loaded = Library(_find() if path is None else os.path.abspath(path))


def library() -> Library:
    if _loaded is None:
        load()
    assert _loaded is not None
    return _loaded
