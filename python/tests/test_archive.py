"""Archives of recordings, on this machine and on a cluster of processes."""

import ctypes
import dataclasses
import importlib.util
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any
from unittest import mock

import quorvex64 as q
from quorvex64 import _archive_tables, _batches, _scratch, archive

assert sys.platform != "win32"  # where processes are not killed nor files locked as here
import fcntl

LIBRARY = Path(os.environ["QUORVEX64_LIBRARY"]).resolve()
NEEDS_DASK = unittest.skipUnless(
    all(map(importlib.util.find_spec, ("dask", "distributed", "pandas"))),
    "Dask or pandas is not installed",
)

# A worker that ends as if its machine did, at its third document: when that is complete but has no
# name yet, or when it has its name, of which nobody has heard.
ENDS = """
import os, quorvex64._scratch as s
def ends(self, *how, become=s.Scratch.become, numbers=iter(range(9))):
    third = next(numbers) == 2
    {}
    third and os.kill(os.getpid(), 9)
    become(self, *how)
s.Scratch.become = ends
"""


def start(*arguments: Any) -> "subprocess.Popen[bytes]":
    """A part of a cluster, which ends with this process, however that ends."""
    package = str(Path(q.__file__).parent.parent)
    return subprocess.Popen(
        [sys.executable, "-m", *map(str, arguments), "--no-dashboard"],
        env={**os.environ, "PYTHONPATH": package},
        stderr=subprocess.DEVNULL,
        preexec_fn=lambda: ctypes.CDLL(None).prctl(1, signal.SIGKILL),
    )


def content(folder: str) -> dict[str, bytes]:
    files = [path for path in Path(folder).rglob("*") if path.is_file()]
    return {str(path.relative_to(folder)): path.read_bytes() for path in files}


class Archive(unittest.TestCase):
    folder: Path

    @classmethod
    def setUpClass(cls) -> None:
        scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(scratch.cleanup)
        cls.addClassCleanup(os.chdir, os.getcwd())
        cls.folder = Path(scratch.name)
        os.chdir(cls.folder)
        for folder in ("samples", "empty", *(f"archive/site{i}/card" for i in range(4))):
            Path(folder).mkdir(parents=True)
        subprocess.run([LIBRARY.with_name("make_samples"), "samples"], check=True)
        for i, path in enumerate([*sorted(Path("samples").glob("R00[01]*.REC"))] * 3):
            if path.stat().st_size < 1 << 20:
                shutil.copy(path, f"archive/site{i % 3}/card/R{i:04}{path.name[5:]}")
        shutil.copy("samples/R0010RVC.REC", os.fsdecode(b"archive/line\n\xff.rec"))
        for name in ("R0101GEN", "R0301GEN", "R0301PAR"):
            shutil.copy(f"samples/{name}.REC", "archive/site3/card")
        Path("archive/site3/card/R9999GEN.REC").write_bytes(b"\1\0\0\0\7")
        os.symlink(cls.folder / "archive", "archive/site3/loop")

    def convert(self, *arguments: Any, **named: Any) -> dict[str, archive.Row]:
        rows = list(archive.convert(*arguments, **named))
        by_name = {row.recording: row for row in rows}
        self.assertEqual(len(by_name), len(rows))
        return by_name

    def test_rows(self) -> None:
        rows = self.convert("archive", "out", findings=True)
        names = [str(path) for path in Path("archive").rglob("*.[Rr][Ee][Cc]")]
        self.assertEqual(sorted(names), sorted(rows))
        # The command's documents and manifest, in which a name is as much as UTF-8 can say of it.
        shutil.move("out", "rows")
        options = ["archive", "-o", "out/", "-q", "--manifest", "manifest"]
        command = [str(LIBRARY.with_name("quorvex")), "convert", *options]
        subprocess.run(command, stderr=subprocess.DEVNULL)
        lines = Path("manifest").read_text(encoding="utf-8").splitlines()
        told = {entry["recording"]: entry for entry in map(json.loads, lines)}
        for row in rows.values():
            text = json.dumps(dataclasses.asdict(row), ensure_ascii=False)
            shown = text.encode(errors="surrogateescape").decode(errors="replace")
            entry = json.loads(shown)
            self.assertEqual(told[entry["recording"]], entry)
        self.assertEqual(content("rows"), content("out"))
        reason = "ends inside its head (5 of 8 bytes)"
        damaged = archive.Row("archive/site3/card/R9999GEN.REC", problem=reason)

        def written(**how: bool) -> list[str]:
            again = self.convert("archive", "out", **how).values()
            self.assertEqual([damaged], [row for row in again if row.outcome == "failed"])
            return sorted(Path(r.recording).name for r in again if r.outcome == "written")

        left = Path(f"out/.quorvex-{_scratch._HOST}-1-1~")
        left.touch()
        self.assertEqual(([], False), (written(), left.exists()))
        later = os.stat("out/line\n\udcff.xml").st_mtime + 60
        for path in Path("out").rglob("*.xml"):
            os.utime(path, (later, later))
        for number, seconds in ((3, 1), (6, 3)):
            (path,) = Path("archive/site0/card").glob(f"R{number:04}*")
            time_of = os.stat(path).st_mtime + seconds
            os.utime(f"out/site0/card/{path.stem}.xml", (time_of, time_of))
        os.utime("archive/site3/card/R0301PAR.REC", (later, later))
        stale = ["R0003SET.REC", "R0301GEN.REC", "R0301PAR.REC"]
        self.assertEqual(stale, written(newer=True))
        self.assertEqual(len(rows) - 1, len(written(overwrite=True)))

    def test_what_paths_lead_to(self) -> None:
        scan = os.scandir

        def unreadable(path: str) -> Any:
            if path == "archive/site1/card":
                raise PermissionError(13, "Permission denied", path)
            return scan(path)

        one = "archive/site0/card/R0003SET.REC"
        for name in ("card/R1ALA.REC", "card/R1ALA.rec", "x/R1ALA.REC", "x/R2ALA.REC"):
            os.makedirs(f"both/{name[:-10]}", exist_ok=True)
            shutil.copy("samples/R0007ALA.REC", f"both/{name}")
        os.makedirs("joined/card")
        os.symlink("card", "joined/x")
        joined = self.convert("both", "joined")
        self.assertEqual("written", joined["both/card/R1ALA.REC"].outcome)
        problem = "documents of another folder go to joined/x already"
        self.assertEqual(problem, joined["both/x/R1ALA.REC"].problem)
        paths = ["archive/site0/card", "archive/site1/card", one, "archive/site0/loop"]
        paths += ["both/card", "both/x", "none/R1.REC", "none/", "empty"]
        paths += ["samples/R0004SET.REC", "samples/../samples/R0004SET.REC"]
        with mock.patch("os.scandir", unreadable):
            rows = self.convert(paths, "places")
        self.assertEqual("places/site0/card/R0003SET.xml", rows[one].document)
        self.assertEqual("places/both/card/R1ALA.xml", rows["both/card/R1ALA.REC"].document)
        self.assertEqual("places/x/R2ALA.xml", rows["both/x/R2ALA.REC"].document)
        self.assertEqual("places/R0004SET.xml", rows["samples/R0004SET.REC"].document)
        problems = {name: row.problem for name, row in rows.items() if row.outcome == "failed"}
        shared = "its document places/both/card/R1ALA.xml is the one of both/card/R1ALA.REC already"
        expected = {
            "archive/site1/card": "cannot be read: Permission denied",
            "both/card/R1ALA.rec": shared,
            "empty": "holds no recordings",
            "none/R1.REC": "No such file or directory",
            "none/": "No such file or directory",
            "archive/site0/loop": "No such file or directory",
        }
        self.assertEqual(expected, problems)
        self.assertEqual(len(rows) - len(expected), sum(1 for _ in Path("places").rglob("*.xml")))

    @NEEDS_DASK
    def test_a_cluster_whose_workers_are_killed(self) -> None:
        import distributed

        file = self.folder / "scheduler.json"
        common = ["--scheduler-file", file]
        host = ["--host", "127.0.0.1", "--port", "0"]
        processes = [start("distributed.cli.dask_scheduler", *host, *common)]
        options = [*common, "--no-nanny", "--nthreads", 1, "--local-directory", self.folder]
        for number, way in enumerate(("", "third and become(self, *how)")):
            Path(f"{number}.py").write_text(ENDS.format(way))
            ending = [*options, "--preload", f"{number}.py"]
            processes.append(start("distributed.cli.dask_worker", *ending))
        processes.append(start("distributed.cli.dask_worker", *options))
        for process in processes:
            self.addCleanup(process.wait)
            self.addCleanup(process.kill)
        while not file.exists():  # it is written by then, or the processes are gone
            self.assertIsNone(processes[0].poll())
            time.sleep(0.05)
        Path("shared").mkdir()
        mark = f"shared/.quorvex-{_scratch._HOST}"
        others = ["shared/.quorvex-elsewhere-1-1~", f"{mark}-1-1~"]
        for name in (*others, f"{mark}-1-2~"):
            Path(name).touch()
        with open(others[1]) as at_work, distributed.Client(scheduler_file=str(file)) as client:
            fcntl.flock(at_work, fcntl.LOCK_EX)
            client.wait_for_workers(3, timeout=60)
            alone = self.convert("archive", "alone")
            shared = self.convert("archive", "shared", client)
            self.assertEqual(1, len(client.nthreads()))
            Path(f"{mark}-1-2~").touch()
            with mock.patch.object(_batches, "sweep"):  # a client on another machine
                again = self.convert("archive", "shared", client).values()
            outcomes = Counter(row.outcome for row in again)
            self.assertEqual({"skipped": len(alone) - 1, "failed": 1}, outcomes)
            here, there = ({*archive.reports("archive", c)} for c in (None, client))
            self.assertEqual(here, there)
            sums = archive.tables("archive", "records", client, type=7)["record"].sum()
            self.assertEqual(3 * 21, client.compute(sums).result())
        self.assertEqual(len(alone), len(shared))
        for row in alone.values():
            document = row.document and f"shared{row.document[5:]}"
            row = dataclasses.replace(row, document=document)
            self.assertEqual(row, shared[row.recording])
        kept = dict.fromkeys((os.path.basename(name) for name in others), b"")
        self.assertEqual({**content("alone"), **kept}, content("shared"))

    @NEEDS_DASK
    def test_what_ends_every_worker(self) -> None:
        import distributed

        def work(items: list[_archive_tables._Source]) -> list[str]:
            names = [item.recording for item in items]
            if "deadly" in names:
                raise distributed.KilledWorker("task", None, 3)
            return names

        client = mock.Mock(nthreads=dict, get_executor=lambda pure: ThreadPoolExecutor(2))
        names = [f"{i}" for i in range(99)] + ["deadly"] + [f"{i}" for i in range(100, 200)]
        sources = [_archive_tables._Source(name, name) for name in names]
        results = _batches.run(work, lambda source: f"{source.recording} lost", sources, client)
        self.assertEqual(sorted({*names} - {"deadly"} | {"deadly lost"}), sorted(results))

    def test_reports(self) -> None:
        command = [str(LIBRARY.with_name("quorvex")), "report", "--json", "archive/site3/card"]
        told = json.loads(subprocess.run(command, stdout=subprocess.PIPE).stdout)
        rows = [row for row in told["assessment"] if row["index"] == "voltage"]
        cards = {card.site: card for card in archive.reports("archive")}
        self.assertEqual({".", *(f"site{i}/card" for i in range(4))}, {*cards})
        card = cards["site3/card"]
        self.assertEqual((4, 1, None), (card.recordings, card.left_out, card.problem))
        self.assertEqual(min(row["within"] for row in rows), card.share)
        self.assertEqual("not a full week", card.verdict)
        self.assertEqual((None, None), (cards["."].share, cards["."].verdict))
        Path("limits.json").write_text("{")
        (card,) = archive.reports("archive/site3/card", limits="limits.json")
        self.assertRegex(card.problem or "", "limits.json")

    @NEEDS_DASK
    def test_tables(self) -> None:
        def read(*arguments: Any, **named: Any) -> Any:
            with self.assertWarnsRegex(UserWarning, "R9999GEN.REC: .*head"):
                return archive.tables(*arguments, **named)

        self.assertRaisesRegex(ValueError, r"records': 1 \(general.*7 \(alarms", read, "archive")
        self.assertRaisesRegex(q.NoSuchName, "type 7 .* 'none'", read, "archive", "none", type=7)
        self.assertRaisesRegex(q.NoSuchName, "'U'", read, "archive", type=1, columns=["U"])
        frame = read(["archive", "samples"], type=1, utc_offset="+01:00")
        whole = frame.compute()
        self.assertEqual(frame.dtypes.to_dict(), whole.dtypes.to_dict())
        for name, part in whole.groupby("recording"):
            one = q.table(name, utc_offset="+01:00").to_pandas()
            missing = [column for column in whole if column not in (*one, "recording")]
            self.assertTrue(part[missing].isna().all(axis=None))
            expected = one.astype({column: whole.dtypes[column] for column in one})
            self.assertTrue(part[[*one]].reset_index(drop=True).equals(expected))
        self.assertEqual({0, 1}, {min(1, int(n)) for n in whole.isna().sum()})
        # Records are read when they are needed, and of them the column that is.
        with mock.patch("quorvex64._archive_tables.table", wraps=q.table) as reading:
            frame = read("archive/site3", type=1)
            reading.assert_not_called()
            self.assertEqual(1, frame["record"].min().compute(scheduler="sync"))
            self.assertEqual([["record"]] * 2, [call.args[2] for call in reading.mock_calls])
