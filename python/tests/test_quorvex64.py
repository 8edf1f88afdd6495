"""The package over sample recordings of every type. QUORVEX64_LIBRARY names the library, beside
which the command line lies and the program that makes the samples."""

import _ctypes
import ctypes
import dataclasses
import doctest
import importlib.util
import json
import math
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import tracemalloc
import unittest
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from datetime import datetime, timedelta
from functools import partial
from itertools import islice
from pathlib import Path
from typing import Any
from unittest import mock
from xml.etree import ElementTree

import quorvex64 as q
from quorvex64 import _checks, _documents, _library, _tables
from quorvex64._formats import RECORD_TYPES

NEEDS_PANDAS = unittest.skipUnless(importlib.util.find_spec("pandas"), "pandas is not installed")
LIBRARY = Path(os.environ["QUORVEX64_LIBRARY"]).resolve()
PACKAGE = Path(q.__file__).resolve().parent
RMS = [f"VOLTAGES/U[u{phase}]/rms/rms" for phase in (3, 1)]
MARKER = struct.pack("<f", -1e37)  # a float without a value

# Where values lie: sample, place of its first record, size of a record; number of a record, way to
# the value, format, offset in the record. T is a date-time; numbers make lists, or texts of s.
VALUES = """
R0001GEN 3072 40448 143  VOLTAGES/U[u2]/rms/max             f     256
R0001GEN 3072 40448 0    HARMONICS_U/HARM_U[u2h]            102f  12624
R0002SNP 3072 42148 1    RESULTS/RMS12/Vrms12/29/TIME_STAMP T     1812
R0008EVE 3224 264   3    RMS_12_AT_TRANSITION               f     4
R0009SIG 3072 3448  0    SIGNALLING_DATA/END_TIMES/END_TIME/1 T   64
R0010RVC 3072 4088  1    RMS12_VALUES/RMS12/199/TIME_STAMP  T     4040
R0011AVG 3072 7688  0    L1/MOTOR/Ep                        d     40
R0012TRA 3072 3164  2    name                               16s   0
R0014RDG 3072 32    9    type                               B     16
R0015SES 8    96    0    ELEMENT/2/num                      i     84
R0016VQ  3072 536   1007 HARMONICS_U/HARM_U[u3h]            41f   356
"""


def stored(data: bytes, form: str, offset: int, exact: bool = False) -> Any:
    """What the bytes are; floats with the digits of their texts."""
    if form == "T":
        *whole, seconds = struct.unpack_from("<HBBBBxxd", data, offset)
        return datetime(*whole) + timedelta(microseconds=int(seconds * 1e6))
    values = list(struct.unpack_from("<" + form, data, offset))
    if form.endswith("s"):
        return values[0].decode()
    if form.endswith(("d", "f")):
        values = [float(v if exact else f"{v:.6E}") for v in values]
        values = [None if struct.pack("<f", v) == MARKER else v for v in values]
    return values if len(form) > 1 else values[0]


def shown(value: Any, kind: str) -> Any:
    """A value of a table as documents show it, of which records() makes values again."""
    if value is None or value != value:
        return None
    if kind in ("float", "double"):
        return float(f"{value:.6E}")
    return _documents._leaf(value) if kind == "text" else value.item()


def tool(*arguments: Any) -> str:
    command = [str(LIBRARY.with_name("quorvex")), *map(str, arguments)]
    return subprocess.run(command, capture_output=True, text=True).stdout


class Package(unittest.TestCase):
    folder: Path

    @classmethod
    def setUpClass(cls) -> None:
        scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(scratch.cleanup)
        cls.folder = Path(scratch.name, "Messgeräte Ω")
        cls.folder.mkdir()
        subprocess.run([LIBRARY.with_name("make_samples"), cls.folder], check=True)
        shutil.copytree(cls.folder, cls.folder / "fresh")
        for recording in cls.folder.glob("*.REC"):
            q.convert(recording)

    def test_values_are_those_of_the_recording(self) -> None:
        rows = [line.split() for line in VALUES.strip().splitlines()]
        documents = {row[0]: q.read(self.folder / f"{row[0]}.xml") for row in rows}
        for name, start, size, record, way, form, offset in rows:
            data = (self.folder / f"{name}.REC").read_bytes()
            if name != "R0015SES":  # sessions differ in size
                self.assertEqual((len(data) - int(start)) // int(size), len(documents[name]), name)
            value: Any = documents[name][int(record)]
            for step in way.split("/"):
                value = value[int(step) if isinstance(value, list) else step]
            place = int(start) + int(record) * int(size) + int(offset)
            expected = stored(data, form, place, exact="HARM_U[" in way or "HARM_I[" in way)
            self.assertEqual(expected, value, (name, way))

    def test_missing_values_the_head_and_damage(self) -> None:
        data = bytearray((self.folder / "R0201GEN.REC").read_bytes())
        data[3072 + 24 : 3072 + 40] = bytes(16)  # a date-time that was never set
        data[3072 + 3104 + 4 * 5 : 3072 + 3104 + 4 * 6] = MARKER  # a fifth harmonic
        data[3072 + 72 : 3072 + 84] = struct.pack("<3f", math.nan, -math.nan, -math.inf)
        (self.folder / "missing.bin").write_bytes(data)
        record = q.read(q.convert(self.folder / "missing.bin", records=(1, 1)))[0]
        orders = record["HARMONICS_U"]["HARM_U[u1h]"]
        self.assertEqual((5, 1), (orders.index(None), orders.count(None)))
        self.assertIsNone(record["START_TIME"])
        self.assertEqual([None] * 3, [*record["VOLTAGES"]["U[u1]"]["rms"].values()])
        self.assertEqual("nan", str(_documents._row(record, "", {})["VOLTAGES/U[u1]/rms/max"]))
        settings = q.head(self.folder / "R0004SET.xml")["UIF_PARAMS"]
        self.assertEqual("Flexible clamp 1000 A", settings["CLAMP_N"]["NAME"])
        cut = (self.folder / "R0010RVC.xml").read_text()[:40000]
        spectrum = "<Project><RECORDS><R><H>\n" + "A" * 13 + "</H></R></RECORDS></Project>"
        for text in (cut, "", "<other/>", spectrum):
            (self.folder / "damaged.txt").write_text(text)
            self.assertRaises(q.DocumentError, q.read, self.folder / "damaged.txt")

    def test_what_can_repeat_is_a_list_even_alone(self) -> None:
        never_alone = {"N", "avg", "RMS12", "Project", "RECORDS", "TRANSITIONS"}
        repeats = {("RMS12", "Vrms12")}
        for document in self.folder.glob("R*.xml"):
            for parent in ElementTree.parse(document).iter():
                tags = Counter((child.tag, child.get("phase")) for child in parent)
                pairs = [(parent.tag, tag) for (tag, _), times in tags.items() if times > 1]
                repeats |= {pair for pair in pairs if not never_alone & set(pair)}
        self.assertGreater(len(repeats), 20)
        for tag, name in repeats:
            parent = ElementTree.fromstring(f"<{tag}><{name}>1</{name}></{tag}>")
            self.assertEqual({name: [1]}, _documents._group(parent))

    def test_memory_holds_one_record(self) -> None:
        tracemalloc.start()
        self.addCleanup(tracemalloc.stop)
        self.assertEqual(144, sum(1 for _ in q.records(self.folder / "R0201GEN.xml")))
        self.assertLess(tracemalloc.get_traced_memory()[1], 2_000_000)

    @NEEDS_PANDAS
    def test_frame(self) -> None:
        data = (self.folder / "R0018EME.REC").read_bytes()
        meter = q.frame(self.folder / "R0018EME.xml")
        starts = [stored(data, "T", 3072 + 144 * i) for i in range(5)]
        self.assertEqual(starts, list(meter["START_TIME"]))
        self.assertTrue(meter["PFm"].isna().all())
        data = (self.folder / "R0010RVC.REC").read_bytes()
        change = q.frame(self.folder / "R0010RVC.xml").iloc[1]
        self.assertEqual(stored(data, "200f", 3072 + 4088 + 56), change["RMS12_VALUES/RMS12/U"])
        with mock.patch.dict(sys.modules, pandas=None):
            self.assertRaisesRegex(ImportError, "needs pandas", q.frame, "R0010RVC.xml")

    @NEEDS_PANDAS
    def test_tables_are_as_documents(self) -> None:
        compared = set()
        for path in sorted(self.folder.glob("R*.REC")):
            part = (1, 2) if "GEN" in path.name else (1, None)
            read = islice(q.records(path.with_suffix(".xml")), part[1])
            rows = [_documents._row(record, "", {}) for record in read]
            table = q.tables(path, records=part).get("records")
            arrays: Any = table.to_numpy() if table else {}
            for column in table.columns if table else ():
                way = "record" if column.name == "element" else column.path
                expected = [row.get(way) for row in rows] if way else [*range(1, len(rows) + 1)]
                expected = [None if value != value else value for value in expected]
                self.assertEqual(expected, [shown(v, column.type) for v in arrays[column.name]])
                compared.add((path.name, column.type))
        self.assertGreater(len(compared), 60)
        spectra = q.table(self.folder / "R0016VQ.REC", "HARMONICS_U").to_pandas()
        name = "HARMONICS_U/HARM_U[u3h]"
        cells = q.frame(self.folder / "R0016VQ.xml")[name]
        self.assertEqual([*cells], [*spectra.groupby("record")[name].agg(list)])

    @NEEDS_PANDAS
    def test_what_tables_miss(self) -> None:
        data = bytearray((self.folder / "R0001GEN.REC").read_bytes())
        data[3072 + 24 : 3072 + 40] = bytes(16)  # a date-time that was never set
        data[3072 + 72 : 3072 + 76] = MARKER
        path = self.folder / "tables.bin"
        path.write_bytes(data + data[3072:])  # of two batches
        names = ["START_TIME", "VOLTAGES/U[u1]/rms/min"]
        table = q.table(path, columns=names, utc_offset="+01:30")
        frame = table.to_pandas()
        for values in (*table.to_numpy().values(), *map(frame.get, names)):
            self.assertEqual([0, 144], [row for row, v in enumerate(values) if v != v])
        apart = q.frame(path)[names[0]].dt.tz_localize("UTC") - frame[names[0]]
        self.assertEqual({timedelta(minutes=90)}, {*apart.dropna()})
        facts = q.table(self.folder / "R0009SIG.REC", "file").to_pandas().set_index("path")["value"]
        self.assertEqual((None, "6520"), (facts["records"], facts["size"]))
        # Integers are never missing in the samples.
        bits, batches = (ctypes.c_uint8 * 40)(0xFE, *[0xFF] * 39), _tables.Table._batches

        def read(table: q.Table, schema: Any, found: list[Any]) -> None:
            batches(table, schema, found)
            column = _tables.ArrowArray.from_address(found[0].children[0])
            column.null_count, column.buffers[0] = 1, ctypes.addressof(bits)

        with mock.patch.object(_tables.Table, "_batches", read):
            array, series = q.table(path).to_numpy()["record"], q.frame(path)["record"]
        for numbers, missing in ((array.tolist(), "None"), ([*series], "<NA>")):
            self.assertEqual((missing, [*range(2, 289)]), (str(numbers[0]), numbers[1:]))

    @NEEDS_PANDAS
    def test_what_tables_are_asked_for(self) -> None:
        path = self.folder / "changing"
        shutil.copy(self.folder / "R0001GEN.REC", path)
        parts: list[Any] = [(144, [144]), ((143, None), [143, 144]), (145, []), ((1, 2), [1, 2])]
        for records, numbers in parts:
            table = q.table(path, columns=[*RMS, "record"], records=records)
            self.assertEqual(numbers, table.to_numpy()["record"].tolist())
        self.assertEqual([*RMS, "record"], [column.name for column in table.columns])
        # The rows of a list are there even where none of its values is asked for.
        waves = q.table(self.folder / "R0002SNP.REC", "samples")
        orders = q.table(path, "HARMONICS_U", columns=["order"])
        self.assertEqual([*range(51)] * 144, orders.to_numpy()["order"].tolist())
        times = q.table(self.folder / "R0002SNP.REC", "samples", columns=["time"])
        self.assertEqual(waves.to_numpy()["time"].tolist(), times.to_numpy()["time"].tolist())
        self.assertEqual(("V", "float"), (table.columns[0].unit, table.columns[0].type))
        refused: list[tuple[type[Exception], str, dict[str, Any]]] = [
            (FileNotFoundError, "none", {"recording": self.folder / "none"}),
            (q.TableError, "is no regular file", {"recording": self.folder}),
            (q.TableError, "xml: is of the unknown", {"recording": self.folder / "R0004SET.xml"}),
            (KeyError, "no table 'recods', but 'file',", {"name": "recods"}),
            (q.NoSuchName, "no column 'recod'.*1105.*'record'", {"columns": ["record", "recod"]}),
            (ValueError, "twice", {"columns": ["record", "record"]}),
            (ValueError, "no range", {"records": (2, 1)}),
            (ValueError, "of the form", {"utc_offset": "+1"}),
            (ValueError, "whole minutes", {"utc_offset": timedelta(seconds=1)}),
        ]
        for error, reason, arguments in refused:
            with self.assertRaisesRegex(error, reason):
                partial(q.table, recording=path)(**arguments)
        os.truncate(path, 50000)
        self.assertRaisesRegex(q.TableError, "changing: .*changed", table.to_numpy)

    @NEEDS_PANDAS
    def test_capsules(self) -> None:
        before = os.listdir("/proc/self/fd")
        table = q.table(self.folder / "R0001GEN.REC", columns=RMS)
        expected = table.to_numpy()[RMS[1]].tolist()

        def consume(_: int) -> Any:
            capsule = table.__arrow_c_stream__()
            kept = _tables._handed_out.copy().values()
            stream = next(stream for other, stream in kept if other is capsule)
            batch, child = _tables.ArrowArray(), _tables.ArrowArray()
            stream.get_next(ctypes.addressof(stream), ctypes.addressof(batch))
            inside = _tables.ArrowArray.from_address(batch.children[1])
            ctypes.pointer(child)[0] = inside  # taken out of its parent, which it outlives
            inside.release = type(inside.release)()
            _tables.release(batch)
            del capsule, kept, stream
            values = (ctypes.c_float * child.length).from_address(child.buffers[1])[:]
            _tables.release(child)
            return values == expected

        with ThreadPoolExecutor(4) as threads:
            self.assertEqual([True] * 20, [*threads.map(consume, range(20))])
        unread = table.__arrow_c_stream__()
        self.assertRaises(ZeroDivisionError, lambda: (table.__arrow_c_stream__(), 1 / 0))
        del table
        self.assertEqual([unread], [capsule for capsule, _ in _tables._handed_out.values()])
        self.assertEqual(before, os.listdir("/proc/self/fd"))  # open as long as a stream

    def test_info_is_what_the_command_line_tells(self) -> None:
        fresh = self.folder / "fresh"
        words = [(13, 1, code) for code in range(9)] + [(976, 4, profile) for profile in range(7)]
        words += [(2560, 1, 1), (844, 4, 1), (844, 4, 900), (1440, 4, 7), (1440, 4, 0xFFFFFFFF)]
        for path in self.folder.glob("R*.REC"):
            data = path.read_bytes()[:4000]
            for number, (offset, size, value) in enumerate(words):
                place = offset + (RECORD_TYPES[data[4]].settings_at or 0)
                variant = fresh / f"{path.stem}-{number}.REC"
                word = value.to_bytes(size, "little")
                variant.write_bytes(data[:place] + word + data[place + size :])
                os.truncate(variant, 4000 if "01GEN-0" in variant.name else path.stat().st_size)
        origins: set[Any] = set()
        for told in json.loads(tool("info", "--json", fresh)):
            info = q.info(told["file"])
            for key in ("type", "name", "version", "size", "records"):
                self.assertEqual(told[key], getattr(info, key), info.file)
            start, end = (t and t.isoformat("T", "milliseconds") for t in (info.start, info.end))
            self.assertEqual(told["start"] or told["time"], start)
            self.assertEqual(told["interval"], info.interval and info.interval.total_seconds())
            self.assertIn(info.fields.get("trigger"), (told["trigger"], "-"))
            self.assertEqual([told["end"], told["end_from"]], [end, info.end_from], info.file)
            origins |= {info.end_from} if info.type == 1 else set()
        self.assertEqual({"records", "settings", "estimate"}, origins)
        for name in ("R0016VQ", "R0101GEN"):
            last = q.read(self.folder / f"{name}.xml")[-1]["LAST_TIME"]
            self.assertEqual(last, q.info(self.folder / f"{name}.REC").end)

    def test_failures_say_why_and_leave_nothing(self) -> None:
        sessions = (self.folder / "R0015SES.REC").read_bytes()
        files = {"three": b"123", "unknown": b"\5" * 9, "itself.xml": sessions, "another": sessions}
        for name, data in {**files, "vanishing": sessions}.items():
            (self.folder / name).write_bytes(data)
        os.symlink("another", self.folder / "link.xml")
        if sys.platform != "win32":
            os.mkfifo(self.folder / "pipe")
        deep = self.folder.joinpath(*["x" * 50] * 9, "x" * (41 - len(bytes(self.folder))))
        deep.mkdir(parents=True)
        before = {*self.folder.iterdir()}
        cases: list[tuple[str, Any, type[Exception], str]] = [
            ("missing.REC", None, FileNotFoundError, "missing"),
            ("three", None, q.ConversionError, "3 of 8 bytes"),
            ("unknown", None, q.ConversionError, "unknown record type 84215045"),
            (".", None, q.ConversionError, "folder"),
            ("itself.xml", None, q.ConversionError, "itself"),
            ("R0010RVC.REC", self.folder, q.ConversionError, "Ω: is a folder"),
            ("R0010RVC.REC", self.folder / "pipe", q.ConversionError, "no regular file"),
            ("R0010RVC.REC", self.folder / "none/out.xml", FileNotFoundError, "none/out.xml"),
            ("R0010RVC.REC", self.folder / "new.Rec", q.ConversionError, "recording's name"),
            ("R0010RVC.REC", self.folder / "link.xml", q.ConversionError, "another recording"),
            ("R0010RVC.REC", deep / "out.xml", OSError, "no room.*x/out.xml"),
        ]
        for name, document, error, reason in cases:
            with self.assertRaisesRegex(error, reason, msg=name):
                q.convert(self.folder / name, document, overwrite=True)
        self.assertRaises(FileExistsError, q.convert, self.folder / "R0010RVC.REC")
        with mock.patch.object(_library.library(), "convert", lambda path, *_: os.remove(path)):
            self.assertRaises(FileNotFoundError, q.convert, self.folder / "vanishing")
        self.assertRaisesRegex(OSError, "longer than 511", _library.path_bytes, Path("a" * 512))
        self.assertEqual(511, len(_library.path_bytes(Path("a" * 511))))
        self.assertEqual(before - {self.folder / "vanishing"}, {*self.folder.iterdir()})

    def test_ranges(self) -> None:
        convert = partial(q.convert, document=self.folder / "range.xml", overwrite=True)
        for records, hour, count in ((144, 23, 1), ((139, None), 23, 6), ((7, 900), 1, 138)):
            part = q.read(convert(self.folder / "R0001GEN.REC", records=records))
            self.assertEqual((count, hour), (len(part), part[0]["START_TIME"].hour))
        wrong = {0: "no range", (0, 3): "no range", (5, 3): "no range", (1, 1 << 32): "no range", 145: "144 records"}
        for records, reason in wrong.items():
            with self.assertRaisesRegex(ValueError, reason):
                convert(self.folder / "R0001GEN.REC", records=records)
        self.assertRaises(ValueError, convert, self.folder / "R0010RVC.REC", records=1)

    def test_scratch_files_are_locked_and_swept(self) -> None:
        folder = self.folder / "scratch"
        folder.mkdir()
        shutil.copy(self.folder / "R0007ALA.REC", folder / "a.")
        others = {".quorvex-no_host-1-1~", ".quorvex64-abc"}
        for name in others:  # another host's, and an earlier version's
            (folder / name).touch()

        def start(document: str, progress: str) -> str:
            script = f"import os, quorvex64 as q; q.convert('a.', '{document}', {progress})"
            environment = {**os.environ, "PYTHONPATH": str(PACKAGE.parent)}
            subprocess.run([sys.executable, "-c", script], cwd=folder, env=environment, umask=0o027)
            return " ".join(sorted({*os.listdir(folder)} - others))

        def meanwhile(_: float) -> None:
            if not (folder / "c").exists():
                scratch = r"\.quorvex-[\w.]{1,40}-\d+-\d+~ "
                killed = start("b", "lambda _: os.kill(os.getpid(), 9)")
                self.assertRegex(killed, f"^({scratch}){{2}}a.$")
                self.assertRegex(start("c", "None"), f"^{scratch}a. c$")

        q.convert(folder / "a.", progress=meanwhile)
        self.assertEqual(others | {"a.", "a.xml", "c"}, {*os.listdir(folder)})
        self.assertEqual(0o640, (folder / "c").stat().st_mode & 0o777)

    def test_check(self) -> None:
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)
        data = Path("R0013INR.REC").read_bytes()
        Path("-damaged").write_bytes(data[:-22] + b"\x0d" + data[-21:])  # a month
        os.link("-damaged", "-")
        self.assertEqual("warning", q.check("-")[0].worst)
        paths = ["-damaged", "missing", *map(str, Path().glob("R*.REC"))]
        with mock.patch.object(_checks, "_MOST_ARGUMENTS", 100):
            found = [{**dataclasses.asdict(f), "file": str(f.file)} for f in q.check(paths)]
        told = json.loads(tool("check", "--json", "--", *paths))
        self.assertEqual(told, [{**entry, **result} for entry, result in zip(told, found)])
        self.assertEqual(["warning", "error"], [result["worst"] for result in found[:2]])
        nowhere = mock.patch.object(_library.library(), "path", "/none/x.so")
        with nowhere, mock.patch.dict(os.environ, PATH="/none"):
            self.assertRaisesRegex(q.LibraryError, "no program quorvex", q.check, [])

    def test_progress_cancels(self) -> None:
        seen: list[float] = []
        recording = self.folder / "R0007ALA.REC"
        convert = partial(q.convert, recording, overwrite=True)
        document = convert(progress=seen.append)
        self.assertEqual((6, 1.0, sorted(seen)), (len(seen), seen[-1], seen))
        before = document.read_bytes()
        self.assertRaises(q.Cancelled, convert, progress=lambda _: False)
        self.assertRaises(ZeroDivisionError, convert, progress=lambda _: 1 / 0)
        self.assertEqual(before, document.read_bytes())
        # Of an unknown profile all record numbers would be counted through, for the callback only.
        data = bytearray((self.folder / "R0101GEN.REC").read_bytes())
        data[8 + 976] = 3
        (self.folder / "profile.bin").write_bytes(data)
        os.truncate(self.folder / "profile.bin", 3 << 30)
        self.assertEqual([], q.read(q.convert(self.folder / "profile.bin", progress=self.fail)))

    def test_threads_convert_at_once(self) -> None:
        names = ["R0002SNP", "R0003RDG", "R0007ALA", os.fsdecode(b"\xff")]
        for end in (".REC", ".xml"):
            shutil.copy(self.folder / f"R0016VQ{end}", self.folder / f"{names[-1]}{end}")
        under_way = threading.Barrier(len(names), timeout=60)

        def convert(name: str) -> Path:
            waits = iter([under_way.wait])
            document = self.folder / f"{name}.again"
            return q.convert(self.folder / f"{name}.REC", document, lambda _: next(waits, int)())

        with ThreadPoolExecutor(len(names)) as threads:
            for document in threads.map(convert, names):
                once = document.with_suffix(".xml").read_bytes()
                self.assertEqual(once, document.read_bytes())

    @NEEDS_PANDAS
    @unittest.skipUnless(importlib.util.find_spec("dask"), "Dask is not installed")
    def test_the_example_of_the_documentation(self) -> None:
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder / "fresh")
        readme = str(PACKAGE.parent / "README.md")
        result = doctest.testfile(readme, module_relative=False, optionflags=doctest.ELLIPSIS)
        self.assertEqual((0, True), (result.failed, result.attempted > 3))

    def test_finds_the_right_library(self) -> None:
        for path in ("/none.so", __file__, _ctypes.__file__):
            self.assertRaisesRegex(q.LibraryError, "cannot be loaded|has no Quorvex", q.load, path)
        with mock.patch.object(_library, "VERSION", 1):
            self.assertRaisesRegex(q.LibraryError, "version 3744", q.load, LIBRARY)
        first = _library.Library(str(LIBRARY))
        first.path = "/none/libQuorvex64.so.3"
        with self.assertRaisesRegex(q.LibraryError, "/none/libQuorvexTables.so.3 cannot"):
            first.tables({})
        package = self.folder / "lib/python3/dist-packages/quorvex64"
        shutil.copytree(PACKAGE, package)
        command = [sys.executable, "-c", "import quorvex64; quorvex64.load()"]
        environment = {"PYTHONPATH": str(package.parent), "LANG": "C.UTF-8"}
        for place, code in ((self.folder, 1), (package, 0), (self.folder / "lib", 0)):
            beside = shutil.copy(LIBRARY, place / _library.FILE_NAME)
            done = subprocess.run(command, env=environment, cwd="/", stderr=subprocess.DEVNULL)
            self.assertEqual(code, done.returncode, place)
            os.remove(beside)
