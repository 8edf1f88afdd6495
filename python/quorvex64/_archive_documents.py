"""Documents of archives."""

from __future__ import annotations

import hashlib
import os
from contextlib import suppress
from dataclasses import dataclass, replace
from functools import partial
from pathlib import Path
from typing import Any, Iterator, NamedTuple, Optional, Union

from ._batches import GONE, Known, run, sweep_everywhere
from ._checks import Finding, check
from ._gather import Folder, Paths, problem_of, size_of, strings, walk
from ._library import LibraryError, QuorvexError, StrPath
from ._recordings import convert as convert_one
from ._recordings import default_document, info
from ._shapes import setting_file_of

_SLACK = 2.0  # seconds; a clock of a file system may count no finer


@dataclass(frozen=True)
class Row:
    """What became of a recording, or why a folder gave none. What was skipped was not read."""

    recording: str  # its path as it was given, with what is below a folder
    document: Optional[str] = None  # None where it failed
    type: Optional[int] = None
    size: Optional[int] = None  # bytes
    records: Optional[int] = None  # whole ones; None where they differ in length, too
    findings: Optional[tuple[Finding, ...]] = None  # of what was written, where they are asked for
    outcome: str = "failed"  # or "written" or "skipped"
    problem: Optional[str] = None  # why it failed
    sha256: Optional[str] = None  # of the document that was written


class _Job(NamedTuple):
    """A conversion. Workers have a folder of their own, so they get absolute paths."""

    row: Row
    source: str
    target: str
    size: int


def _sha256(path: str) -> str:
    digest = hashlib.sha256()
    with open(path, "rb", buffering=0) as file:
        while piece := file.read(1 << 20):
            digest.update(piece)
    return digest.hexdigest()


def _failed(row: Row, problem: str) -> Row:
    return replace(row, document=None, problem=problem)


def _converted(job: _Job, sync: bool) -> Row:
    row = replace(job.row, size=None)  # known with its head, as the rest
    try:
        told = info(job.source)
        row = replace(row, type=told.type, size=told.size, records=told.records)
        os.makedirs(os.path.dirname(job.target), exist_ok=True)
        # Whether it may be written was decided before the job was sent: what is there now is of a
        # worker that had the job before and was killed.
        convert_one(job.source, job.target, overwrite=True, sync=sync)
        return replace(row, outcome="written", sha256=_sha256(job.target))
    except LibraryError:
        raise  # no recording can be converted
    except (OSError, QuorvexError, ValueError) as error:
        shown = row.document or job.target
        return _failed(row, problem_of(error, job.source).replace(job.target, shown))


def _convert_batch(jobs: list[_Job], sync: bool, findings: bool) -> list[Row]:
    rows = [_converted(job, sync) for job in jobs]
    written = [job.source for job, row in zip(jobs, rows) if row.outcome == "written"]
    if findings and written:
        try:
            found = {str(result.file): tuple(result.findings) for result in check(written)}
        except LibraryError:
            raise
        except QuorvexError:
            return rows  # the check came to no end
        rows = [replace(row, findings=found.get(job.source)) for row, job in zip(rows, jobs)]
    return rows


def _is_newer(document: str, recording: str) -> bool:
    """Whether a document is younger than its recording and the setting file beside it."""
    with suppress(OSError, ValueError):
        sources = [recording, setting_file_of(Path(recording)) or recording]
        youngest = max(os.stat(source).st_mtime for source in sources)
        return os.stat(document).st_mtime > youngest + _SLACK
    return False


class _Planned:
    """Decides where documents go and which are written, before anything is sent to a worker."""

    def __init__(self, paths: list[str], out: str, overwrite: bool, newer: bool) -> None:
        self._paths = paths
        self._out = out
        self._overwrite = overwrite
        self._newer = newer
        self._alone = len(paths) == 1
        self._base = os.getcwd()
        self._taken: dict[str, str] = {}
        self.folders: set[str] = set()  # of documents, where links in their paths lead

    def jobs(self) -> Iterator[Union[_Job, Known[Row]]]:
        """Conversions, and rows of what is not to be converted."""
        for folder in walk(self._paths):
            if folder.problem is not None:
                yield Known(Row(folder.path, problem=folder.problem))
            if folder.names:
                yield from self._inside(folder)

    def _inside(self, folder: Folder) -> Iterator[Union[_Job, Known[Row]]]:
        into = os.path.join(self._out, folder.place)
        target = os.path.realpath(os.path.join(self._base, into))
        # Below a single folder no two share a folder of documents, unless a link joins them, and
        # what is taken in it need not be kept.
        joined = self._alone and target in self.folders
        self.folders.add(target)
        if self._alone:
            self._taken.clear()
        for name in folder.names:
            recording = os.path.join(folder.path, name)
            document = default_document(Path(name)).name
            source = str(Path(self._base, recording))
            row = Row(recording, os.path.join(into, document), size=size_of(source))
            job = _Job(row, source, os.path.join(target, document), row.size or 0)
            first = self._taken.setdefault(os.path.normcase(job.target), recording)
            if joined:
                yield Known(_failed(row, f"documents of another folder go to {into} already"))
            elif first is not recording:
                shared = f"its document {row.document} is the one of {first} already"
                yield Known(_failed(row, shared))
            elif self._stays(job):
                yield Known(replace(row, outcome="skipped"))
            else:
                yield job

    def _stays(self, job: _Job) -> bool:
        if not os.path.isfile(job.target):
            return False
        return _is_newer(job.target, job.source) if self._newer else not self._overwrite


def convert(
    paths: Paths,
    out: StrPath,
    client: Optional[Any] = None,
    *,
    overwrite: bool = False,
    newer: bool = False,
    sync: bool = True,
    findings: bool = False,
) -> Iterator[Row]:
    """Converts recordings into documents in a folder, and says of each what became of it.

      paths      files, and folders with all below them whose names end in ".REC". Below `out` a
                 folder is mirrored; of several each has its own name there
      client     of a Dask cluster, which does the work; otherwise threads of this process do it
      overwrite  replaces documents that exist, which are left and skipped otherwise
      newer      replaces those that are not younger than their recordings and setting files by more
                 than two seconds, and skips the others
      sync       waits for the disk before a document gets its name
      findings   tells what a check finds too, which reads each recording once more

    This is an iterator: the conversions go on as rows are taken from it, which come in the order in
    which they are ready. What cannot be converted is a row too.
    """
    if overwrite and newer:
        raise ValueError("overwrite and newer exclude each other")
    plan = _Planned(strings(paths), os.fspath(out), overwrite, newer)
    return _convert(plan, client, partial(_convert_batch, sync=sync, findings=findings))


def _convert(plan: _Planned, client: Optional[Any], work: Any) -> Iterator[Row]:
    yield from run(
        work,
        lambda job: _failed(job.row, GONE),
        plan.jobs(),
        client,
    )
    sweep_everywhere(plan.folders, client)
