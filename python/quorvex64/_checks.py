"""Whether recordings are sound, as the command line tells it."""

from __future__ import annotations

import json
import os
import subprocess
import sys
from dataclasses import dataclass, fields
from pathlib import Path
from typing import Any, Iterable, Iterator, Optional, Union

from ._library import LibraryError, QuorvexError, StrPath, library

_PROGRAM = "quorvex.exe" if sys.platform == "win32" else "quorvex"
_MOST_ARGUMENTS = 16_000  # characters; Windows takes 32,767 with everything


@dataclass(frozen=True)
class Finding:
    """One thing that a check has to say."""

    severity: str  # "note", "warning" or "error"
    kind: str  # "head", "setting file", "size", "count", "time" or "text"
    offset: Optional[int]  # byte of the file, or of the setting file where the text names it
    record: Optional[int]  # from 1
    element: Optional[str]  # path of element names inside the record
    text: str


_KEYS = [field.name for field in fields(Finding)]


@dataclass(frozen=True)
class CheckResult:
    """What a check found in a recording."""

    file: Path
    type: Optional[int]  # None where the head gives none
    worst: Optional[str]  # severity; None without findings
    findings: list[Finding]  # of each kind the first 20
    unlisted: dict[str, int]  # how many more there are, by kind


def command_line() -> str:
    path = Path(library().path)
    folders = [path.parent] if path.is_absolute() else []  # otherwise the system found it
    for folder in list(path.parents)[:2]:  # PREFIX/lib, or PREFIX/lib/x86_64-linux-gnu
        if folder.name in ("lib", "lib64"):
            folders.append(folder.parent / "bin")
    for folder in folders + [Path(name) for name in os.get_exec_path() if name]:
        program = folder / _PROGRAM
        if program.is_file() and os.access(program, os.X_OK):
            return os.path.abspath(program)
    raise LibraryError(
        f"no program {_PROGRAM}, of the command line: not with {path}, nor on PATH"
    )


def told_by(program: str, options: list[str], paths: list[str], folder: StrPath = ".") -> Any:
    """What the program prints as JSON, run in a folder."""
    # Behind "--" a path is no option, whatever it starts with; "-" would be the standard input.
    sayable = [os.path.join(".", path) if path == "-" else path for path in paths]
    window = 0
    if sys.platform == "win32":
        window = subprocess.CREATE_NO_WINDOW
    done = subprocess.run(
        [program, *options, "--", *sayable],
        stdin=subprocess.DEVNULL,
        capture_output=True,
        creationflags=window,
        cwd=folder,
    )
    try:
        return json.loads(done.stdout)
    except ValueError:
        said = done.stderr.decode("utf-8", "replace").strip()
        raise QuorvexError(f"{program} ended with code {done.returncode}: {said}") from None


def _run(program: str, paths: list[str]) -> list[dict[str, Any]]:
    found: list[dict[str, Any]] = told_by(program, ["check", "--json"], paths)
    # It prints names as UTF-8, in which not every name can be said.
    if not any(map(os.path.isdir, paths)):
        for entry, path in zip(found, paths):
            entry["file"] = path
    return found


def _portions(paths: list[str]) -> Iterator[list[str]]:
    """As many at a time as a command takes."""
    portion: list[str] = []
    length = 0
    for path in paths:
        length += len(path) + 3
        if portion and length > _MOST_ARGUMENTS:
            yield portion
            portion, length = [], len(path) + 3
        portion.append(path)
    if portion:
        yield portion


def check(recordings: Union[StrPath, Iterable[StrPath]]) -> list[CheckResult]:
    """Says whether recordings are sound: what the command line's check finds, in its order.

    Takes one path or several; of a folder every file below it whose name ends in ".REC", in any
    case. A file that cannot be read has a finding that says so. Runs the program quorvex, which
    lies with the library or on PATH.
    """
    if isinstance(recordings, (str, os.PathLike)):
        recordings = [recordings]
    paths = [os.fspath(path) for path in recordings]
    program = command_line()
    return [
        CheckResult(
            file=Path(entry["file"]),
            type=entry["type"],
            worst=entry["worst"],
            findings=[Finding(*map(finding.get, _KEYS)) for finding in entry["findings"]],
            unlisted=entry["unlisted"],
        )
        for portion in _portions(paths)
        for entry in _run(program, portion)
    ]
