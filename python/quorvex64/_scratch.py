"""Documents under way. A scratch file in the document's folder gets the document's name when it is
complete. It is locked meanwhile, so that what a killed process left can be told and removed."""

from __future__ import annotations

import ctypes
import errno
import itertools
import os
import re
import socket
import sys
import threading
from contextlib import contextmanager, suppress
from pathlib import Path
from typing import Iterator

from ._library import MOST_PATH_BYTES, StrPath, path_bytes

if sys.platform != "win32":
    import fcntl

# Locks are known on the own host for certain, so only its leftovers are removed.
_HOST = re.sub(r"[^A-Za-z0-9_.]", "_", socket.gethostname())[:40]
_LEFTOVER = re.compile(rf"\.quorvex-{re.escape(_HOST)}-([0-9]+)-[0-9]+~")

_numbers = itertools.count(1)
_swept: set[str] = set()
_sweeping = threading.Lock()


@contextmanager
def _speaking_of(document: Path) -> Iterator[None]:
    """What fails on the way fails for the document: the scratch file is nobody's concern."""
    try:
        yield
    except OSError as error:
        raise OSError(error.errno, error.strerror, str(document)) from None


def _is_still(descriptor: int, path: str) -> bool:
    try:
        return os.path.samestat(os.fstat(descriptor), os.lstat(path))
    except FileNotFoundError:
        return False


def _hold(descriptor: int, path: str) -> bool:
    """Locks a new file. False where a sweep in another process had it first, and removes it."""
    if sys.platform != "win32":  # where being open is the lock
        try:
            fcntl.flock(descriptor, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            return False
        except OSError:
            return True  # a file system without locks, so without sweeps
        return _is_still(descriptor, path)
    return True


if sys.platform == "win32":

    def _remove_leftover(path: str, process: int) -> None:
        """Removes the file of a process that is gone. That Windows refuses to remove an open file
        is not enough: a scratch file is not open from its first moment to its last."""
        synchronize, invalid_parameter = 0x00100000, 87
        kernel = ctypes.WinDLL("kernel32", use_last_error=True)
        kernel.OpenProcess.restype = ctypes.c_void_p
        handle = ctypes.c_void_p(kernel.OpenProcess(synchronize, False, ctypes.c_uint32(process)))
        if handle:
            gone = kernel.WaitForSingleObject(handle, 0) == 0
            kernel.CloseHandle(handle)
        else:
            gone = ctypes.get_last_error() == invalid_parameter
        if gone:
            os.remove(path)

else:

    def _remove_leftover(path: str, process: int) -> None:
        """Removes a file that no process has locked."""
        descriptor = os.open(path, os.O_RDWR | os.O_NOFOLLOW | os.O_NONBLOCK)
        try:
            fcntl.flock(descriptor, fcntl.LOCK_EX | fcntl.LOCK_NB)
            if _is_still(descriptor, path):
                os.remove(path)
        finally:
            os.close(descriptor)


def sweep(folder: StrPath) -> None:
    """Removes leftovers."""
    with suppress(OSError), os.scandir(folder) as entries:
        for entry in entries:
            leftover = _LEFTOVER.fullmatch(entry.name)
            if leftover and entry.is_file(follow_symlinks=False):
                with suppress(OSError):
                    _remove_leftover(entry.path, int(leftover[1]))


def _sweep_once(folder: Path) -> None:
    with _sweeping:
        if str(folder) not in _swept:
            sweep(folder)
            _swept.add(str(folder))


class Scratch:
    """A fresh locked file in a folder."""

    def __init__(self, folder: Path) -> None:
        while True:
            name = f".quorvex-{_HOST}-{os.getpid()}-{next(_numbers)}~"
            self.path = folder / name
            if len(path_bytes(folder)) + len(name) + 1 > MOST_PATH_BYTES:
                problem = f"leaves no room for a scratch file beside it in {MOST_PATH_BYTES} bytes"
                raise OSError(errno.ENAMETOOLONG, problem)
            try:
                self._descriptor = os.open(self.path, os.O_RDWR | os.O_CREAT | os.O_EXCL, 0o666)
            except FileExistsError:
                continue
            self._open = True
            if _hold(self._descriptor, str(self.path)):
                return
            self.close()

    def size(self) -> int:
        return os.fstat(self._descriptor).st_size

    def close(self) -> None:
        if self._open:
            os.close(self._descriptor)
            self._open = False

    def _rename(self, target: Path, overwrite: bool) -> None:
        if sys.platform == "win32":
            self.close()  # an open file keeps its name
            if overwrite:
                os.replace(self.path, target)
            else:
                os.rename(self.path, target)  # refused where there is one
        elif overwrite:
            os.replace(self.path, target)
        else:
            try:
                os.link(self.path, target)
            except FileExistsError:
                raise
            except OSError:  # a file system without hard links
                if os.path.lexists(target):
                    raise FileExistsError(errno.EEXIST, os.strerror(errno.EEXIST)) from None
                os.rename(self.path, target)

    def become(self, document: Path, target: Path, overwrite: bool, sync: bool) -> None:
        with _speaking_of(document):
            if sync:
                os.fsync(self._descriptor)
            self._rename(target, overwrite)


@contextmanager
def scratch_for(document: Path, target: Path) -> Iterator[Scratch]:
    """A scratch file where `target` shall be, which the user knows as `document`."""
    _sweep_once(target.parent)
    with _speaking_of(document):
        scratch = Scratch(target.parent)
    try:
        yield scratch
    finally:
        scratch.close()
        with suppress(OSError):
            os.remove(scratch.path)  # gone where it became the document
