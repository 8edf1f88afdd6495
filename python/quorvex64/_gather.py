"""Finds the recordings below paths, and where each belongs in a mirrored tree."""

from __future__ import annotations

import errno
import os
from collections import Counter, deque
from pathlib import Path
from typing import Iterable, Iterator, NamedTuple, Optional, Union

from ._library import StrPath

Paths = Union[StrPath, Iterable[StrPath]]

_Identity = tuple[int, int]
_EMPTY = "holds no recordings"


class Folder(NamedTuple):
    """Recordings of one folder, or why there are none."""

    path: str  # as given, with what is below it
    place: str  # the same place below an output folder
    names: list[str]
    problem: Optional[str] = None


def strings(paths: Paths) -> list[str]:
    """One path or several."""
    if isinstance(paths, (str, os.PathLike)):
        paths = [paths]
    return [os.fspath(path) for path in paths]


def size_of(path: str) -> Optional[int]:
    try:
        return os.stat(path).st_size
    except (OSError, ValueError):
        return None


def problem_of(error: Exception, path: str) -> str:
    """What an exception says of a path, without the path."""
    if not isinstance(error, OSError) or error.strerror is None:
        return str(error).removeprefix(f"{path}: ")
    about = error.filename
    return error.strerror if about in (None, path) else f"{about}: {error.strerror}"


def _is_recording_name(name: str) -> bool:
    return name[-4:].upper() == ".REC"


def _identity(path: str) -> Optional[_Identity]:
    try:
        status = os.stat(path)
    except (OSError, ValueError):
        return None
    return status.st_dev, status.st_ino


def _key(way: tuple[str, ...]) -> tuple[bytes, ...]:
    """Equal for names that a file system may take for the same, which differ by case."""
    return tuple(os.fsencode(part).lower() for part in way)


def _places(folders: list[str]) -> dict[str, str]:
    """Where folders are mirrored: one in the output folder itself, several under their own names,
    with as many of its parents' in front as tell each from all others. Where one would lie in
    another, all have as many as the longest."""
    if len(folders) < 2:
        return dict.fromkeys(folders, "")
    ways = [Path(os.path.abspath(folder)).parts[1:] for folder in folders]
    taken: dict[int, int] = {}
    for count in range(1, max(map(len, ways)) + 1):
        keys = [_key(way[-count:]) for way in ways]
        times = Counter(keys)
        for i, key in enumerate(keys):
            if times[key] == 1:
                taken.setdefault(i, count)
    ends = [way[-taken.get(i, len(way)) :] for i, way in enumerate(ways)]
    known = set(map(_key, ends))
    if any(end[:count] in known for end in known for count in range(1, len(end))):
        longest = max(map(len, ends))
        ends = [way[-longest:] for way in ways]
    return {folder: os.path.join("", *end) for folder, end in zip(folders, ends)}


def _names_in(folder: str) -> tuple[list[str], list[str], list[str]]:
    """Recordings, folders, and links to folders, sorted."""
    recordings, folders, links = [], [], []
    with os.scandir(folder) as entries:
        for entry in entries:
            # A link that leads nowhere, or in a circle, is no folder, and raises nothing here.
            if entry.is_symlink() and os.path.isdir(entry.path):
                links.append(entry.name)
            elif entry.is_dir(follow_symlinks=False):
                folders.append(entry.name)
            elif _is_recording_name(entry.name):
                recordings.append(entry.name)
    return sorted(recordings), sorted(folders), sorted(links)


class _Walk:
    def __init__(self) -> None:
        self._walked: set[_Identity] = set()
        self._named: set[tuple[Union[_Identity, str], str]] = set()
        # Folders that a link leads to come last: by then those are known that have a place of their
        # own, which is where their documents stay when the link goes elsewhere.
        self._links: deque[tuple[str, str]] = deque()

    def folder(self, root: str, root_place: str) -> Iterator[Folder]:
        """A folder and all below it. None is walked twice, whatever links lead to it."""
        waiting, explained = [(root, root_place)], _identity(root) in self._walked
        while waiting:
            path, place = waiting.pop()
            identity = _identity(path)
            if identity in self._walked:
                continue
            try:
                recordings, folders, links = _names_in(path)
            except OSError as error:
                explained = True
                yield Folder(path, place, [], f"cannot be read: {error.strerror}")
                continue
            if identity is not None:
                self._walked.add(identity)
            new = [name for name in recordings if (identity or path, name) not in self._named]
            explained = explained or bool(recordings) or bool(links)
            self._links.extend((os.path.join(path, n), os.path.join(place, n)) for n in links)
            if new:
                yield Folder(path, place, new)
            inside = [(os.path.join(path, name), os.path.join(place, name)) for name in folders]
            waiting += reversed(inside)
        if not explained:
            yield Folder(root, root_place, [], _EMPTY)

    def links(self) -> Iterator[Folder]:
        while self._links:
            found = list(self.folder(*self._links.popleft()))
            yield from (folder for folder in found if folder.problem != _EMPTY)

    def file(self, path: str) -> Iterator[Folder]:
        folder, name = os.path.split(path)
        identity = _identity(folder or os.curdir)
        known = identity in self._walked and _is_recording_name(name)
        if known or (identity or folder, name) in self._named:
            return
        if name:
            self._named.add((identity or folder, name))
            yield Folder(folder, "", [name])
        else:  # "none/"
            yield Folder(path, "", [], os.strerror(errno.ENOENT))


def walk(paths: list[str]) -> Iterator[Folder]:
    """The recordings that the paths lead to, each once: files as they are named, and below folders
    what ends in ".REC", in any case. Little is kept of what was there before, so that there may be
    millions."""
    roots: dict[Optional[_Identity], str] = {}
    missing: list[str] = []
    for path in paths:
        # What is not there may be a card that is not in its place, which leaves the others in theirs.
        if os.path.isdir(path):
            roots.setdefault(_identity(path), path)
        elif not os.path.lexists(path) and not _is_recording_name(path):
            missing.append(path)
    places = _places([*roots.values(), *missing])
    taken = _Walk()
    for path in paths:
        if os.path.isdir(path):
            yield from taken.folder(path, places.get(path, ""))
        else:
            yield from taken.file(path)
    yield from taken.links()
