"""Work on very many items: in threads of this process, or on a Dask cluster. Items go in batches,
and never more than keep all threads busy are under way, so that a million cost no more memory than
a thousand."""

from __future__ import annotations

import os
import time
from concurrent.futures import FIRST_COMPLETED, Executor, Future, ThreadPoolExecutor, wait
from dataclasses import dataclass
from typing import Any, Callable, Generic, Iterable, Iterator, Optional, Protocol, TypeVar, Union

from ._scratch import sweep

# A task costs a scheduler about a millisecond, and what a lost worker had is done again: batches
# take some tenths of a second. The first ones are smaller, so that few items keep all threads busy.
_MOST_ITEMS = 100
_MOST_BYTES = 32 << 20
_TASKS_PER_THREAD = 4  # under way: one at work, and some that wait for it
_LOOK_AGAIN = 5.0  # seconds until the workers of a cluster are counted anew
_FOLDERS_PER_CALL = 10_000


# Of an item whose workers are lost.
GONE = "not finished: the workers that had it have ended, again and again"


class Sized(Protocol):
    @property
    def size(self) -> int: ...


Item = TypeVar("Item", bound=Sized)
Result = TypeVar("Result")


@dataclass(frozen=True)
class Known(Generic[Result]):
    """A result that takes no work."""

    result: Result


class _Threads:
    """Those of this process."""

    lost: tuple[type[Exception], ...] = ()

    def __init__(self) -> None:
        self._count = os.cpu_count() or 1
        self.executor: Executor = ThreadPoolExecutor(self._count)

    def count(self) -> int:
        return self._count

    def close(self) -> None:
        self.executor.shutdown(cancel_futures=True)


class _Cluster:
    """Those of a cluster's workers, which come and go."""

    def __init__(self, client: Any) -> None:
        from distributed import KilledWorker

        self.lost = (KilledWorker,)
        self._client = client
        self.executor: Executor = client.get_executor(pure=False)
        self._looked = -_LOOK_AGAIN
        self._count = 0

    def count(self) -> int:
        if time.monotonic() - self._looked >= _LOOK_AGAIN:
            self._count = sum(self._client.nthreads().values())
            self._looked = time.monotonic()
        return max(self._count, 4)  # work makes a cluster grow that has no workers yet

    def close(self) -> None:
        self.executor.shutdown(wait=False)  # which cancels what is under way


def run(
    work: Callable[[list[Item]], list[Result]],
    lost: Callable[[Item], Result],
    items: Iterable[Union[Item, Known[Result]]],
    client: Optional[Any] = None,
) -> Iterator[Result]:
    """Results, in the order in which they are there. What the work raises ends the run.

    A cluster does again what a worker had that is gone, until that has happened several times. It
    may be an item that ends its workers, and the others were only near it. So each is tried once
    more at the end, alone on the cluster, and `lost` makes the result of one that is lost again.
    """
    threads: Union[_Threads, _Cluster] = _Threads() if client is None else _Cluster(client)
    under_way: dict[Future[list[Result]], list[Item]] = {}
    suspects: list[Item] = []
    batch: list[Item] = []
    begun = size = 0

    def begin(items: list[Item]) -> None:
        under_way[threads.executor.submit(work, items)] = items

    def results(most: int) -> Iterator[Result]:
        """Waits until no more are under way."""
        while len(under_way) > most:
            for done in wait(under_way, return_when=FIRST_COMPLETED).done:
                items = under_way.pop(done)
                try:
                    yield from done.result()
                except threads.lost:
                    suspects.extend(items)

    try:
        for item in items:
            if isinstance(item, Known):
                yield item.result
                continue
            most = min(_MOST_ITEMS, 1 + begun // threads.count())
            if batch and (len(batch) >= most or size + item.size > _MOST_BYTES):
                begin(batch)
                begun, batch, size = begun + 1, [], 0
                yield from results(threads.count() * _TASKS_PER_THREAD)
            batch.append(item)
            size += item.size
        if batch:
            begin(batch)
        yield from results(0)
        alone, suspects = suspects, []
        for item in alone:
            begin([item])
            yield from results(0)
            if suspects:
                suspects.clear()
                yield lost(item)
    finally:
        threads.close()


def _sweep_all(folders: list[str]) -> None:
    for folder in folders:
        sweep(folder)


def sweep_everywhere(folders: Iterable[str], client: Optional[Any] = None) -> None:
    """Removes what killed processes left in folders: those of this machine, and of each machine
    where a worker is, as every machine knows its own alone."""
    all_folders = list(folders)
    for first in range(0, len(all_folders), _FOLDERS_PER_CALL):
        part = all_folders[first : first + _FOLDERS_PER_CALL]
        _sweep_all(part)
        if client is not None:
            workers = client.scheduler_info()["workers"].items()
            one_each = {worker["host"]: address for address, worker in workers}
            # One that goes meanwhile leaves its files to the next run.
            client.run(_sweep_all, part, workers=[*one_each.values()], on_error="ignore")
