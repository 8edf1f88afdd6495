"""Reports of the cards of an archive, and what they say of one index."""

from __future__ import annotations

import os
from dataclasses import dataclass, replace
from datetime import datetime
from functools import partial
from itertools import groupby
from typing import Any, Iterator, NamedTuple, Optional, Union

from ._batches import GONE, Known, run
from ._checks import command_line, told_by
from ._gather import Paths, problem_of, size_of, strings, walk
from ._library import QuorvexError, StrPath


@dataclass(frozen=True)
class Card:
    """What the report of a card says of one index."""

    site: str  # the card's folder, below the one that was given
    recordings: int = 0
    left_out: int = 0  # of these, which cannot be read or have no place in a report
    index: str = "voltage"
    verdict: Optional[str] = None  # the worst of all weeks and channels; None where there is none
    share: Optional[float] = None  # the smallest of all weeks and channels; below it, of that one
    needed: Optional[float] = None
    limit: Optional[str] = None
    channel: Optional[str] = None
    start: Optional[datetime] = None
    end: Optional[datetime] = None
    outside: tuple[str, ...] = ()  # all indices that are outside of their limits
    problem: Optional[str] = None  # why there is no report


class _Reported(NamedTuple):
    card: Card
    folder: str
    names: list[str]
    size: int


_VERDICTS = ["outside", "not a full week", "within", "not measured"]  # the worst first


def _card(job: _Reported, options: list[str]) -> Card:
    card = job.card
    program = command_line()
    try:
        told = told_by(program, ["report", "--json", *options], job.names, job.folder)
    except (OSError, QuorvexError, ValueError) as error:
        return replace(card, problem=problem_of(error, job.folder))
    rows = [row for row in told["assessment"] if row["index"] == card.index]
    outside = {row["index"] for row in told["assessment"] if row["verdict"] == _VERDICTS[0]}
    card = replace(
        card,
        left_out=sum(recording["left_out"] is not None for recording in told["recordings"]),
        verdict=min((row["verdict"] for row in rows), key=_VERDICTS.index, default=None),
        outside=tuple(sorted(outside)),
    )
    # Of equal shares the worse verdict, of equal verdicts the narrower limit.
    worst = min(
        (row for row in rows if row["within"] is not None),
        key=lambda row: (row["within"], _VERDICTS.index(row["verdict"]), row["needed"]),
        default=None,
    )
    if worst is None:
        return card
    return replace(
        card,
        share=worst["within"],
        needed=worst["needed"],
        limit=worst["limit"],
        channel=worst["channel"],
        start=datetime.fromisoformat(worst["from"]),
        end=datetime.fromisoformat(worst["to"]),
    )


def _report_batch(jobs: list[_Reported], options: list[str]) -> list[Card]:
    return [_card(job, options) for job in jobs]


def _cards(paths: list[str], index: str) -> Iterator[Union[_Reported, Known[Card]]]:
    """A card is a folder with recordings in it; those below it are others."""
    base = os.getcwd()
    for path, folders in groupby(walk(paths), lambda folder: folder.path):
        parts = list(folders)  # of files named one by one, more than one
        names = [name for part in parts for name in part.names]
        site = parts[0].place or os.curdir
        if parts[0].problem is not None:
            yield Known(Card(site, index=index, problem=f"{path}: {parts[0].problem}"))
        else:
            folder = os.path.join(base, path)
            size = sum(size_of(os.path.join(folder, name)) or 0 for name in names)
            yield _Reported(Card(site, len(names), index=index), folder, names, size)


def reports(
    paths: Paths,
    client: Optional[Any] = None,
    *,
    index: str = "voltage",
    limits: Optional[StrPath] = None,
    nominal: Optional[float] = None,
) -> Iterator[Card]:
    """What the reports of many cards say of an index: the worst share, and the verdict.

      paths    folders with cards somewhere below them; a folder with recordings in it is a card
      client   of a Dask cluster, as of convert()
      index    one that reports have: "voltage", "plt", "harmonic-5"
      limits   a file of limits, in the place of those that the command line has
      nominal  the nominal voltage, in the place of that of the recordings

    An iterator, as that of convert(). The figures are those of the program quorvex, which is looked
    for as check() does, on the machine that does the work.
    """
    options = [] if nominal is None else ["--nominal", repr(float(nominal))]
    if limits is not None:
        options += ["--limits", os.path.abspath(limits)]
    return run(
        partial(_report_batch, options=options),
        lambda job: replace(job.card, problem=GONE),
        _cards(strings(paths), index),
        client,
    )
