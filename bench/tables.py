#!/usr/bin/python3
"""tables.py BUILD-TREE FOLDER: measures tables and exports in FOLDER, against what a user would take
otherwise. All times are of the processor, user and system together, of this process and those that it
starts; the contenders take turns, and the medians count."""
import os, pathlib, resource, shutil, sqlite3, statistics, subprocess, sys, tempfile

build, root = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(__file__).resolve().parent.parent
os.environ["QUORVEX64_LIBRARY"] = str(build / "libQuorvex64.so")
sys.path[:0] = str(root / "python"), str(root / "tests")
sys.dont_write_bytecode = True
import foreign
import pandas
import quorvex64

HEAD, RECORD, SAMPLE_RECORDS = 3072, 40448, 144
VALUES = "rms/min", "rms/max", "rms/rms", "Pst/rms"
COLUMNS = ["START_TIME", *(f"VOLTAGES/U[u1]/{value}" for value in VALUES)]


def processor_time():
    usages = [resource.getrusage(who) for who in (resource.RUSAGE_SELF, resource.RUSAGE_CHILDREN)]
    return sum(usage.ru_utime + usage.ru_stime for usage in usages)


def medians(works, rounds):
    """Seconds by the names of works. What they give is thrown away when the clock stands."""
    times = {name: [] for name in works}
    for _ in range(rounds):
        for name, work in works.items():
            begin = processor_time()
            kept = work()
            times[name].append(processor_time() - begin)
            del kept
    return {name: statistics.median(found) for name, found in times.items()}


def print_table(*lines):
    rows = [f"| {' | '.join(line)} |" for line in lines]
    print(rows[0], "|---" * len(lines[0]) + "|", *rows[1:], "", sep="\n", flush=True)


def line(name, seconds, times=None, goal=None):
    """Of a table: how long something takes, how many times something else, and whether that is the goal.
    A goal is "at least 5" or "at most 3"."""
    met = ""
    if goal is not None:
        limit = float(goal.split()[-1])
        met = "yes" if (times >= limit if goal.startswith("at least") else times <= limit) else "no"
    return [name, f"{1000 * seconds:.0f}", "" if times is None else f"{times:.3g}", goal or "", met]


def export(source, output, *arguments, under=()):
    """Runs the command. What is there already goes first, which takes no time to speak of."""
    shutil.rmtree(output) if output.is_dir() else output.unlink(missing_ok=True)
    command = [*under, build / "quorvex", "export", source, "--quiet", "-o", output, *arguments]
    return subprocess.run(command, check=True, capture_output=True, text=True)


def read_raw(path):
    with open(path, "rb", buffering=0) as file:
        while file.read(1 << 16):
            pass


def measure_tables(recording):
    table = quorvex64.table
    works = {
        "read": lambda: read_raw(recording),
        "all": lambda: table(recording, "records").to_numpy(),
        "five": lambda: table(recording, "records", COLUMNS).to_numpy(),
    }
    by_document = {"document": lambda: quorvex64.frame(quorvex64.convert(recording, overwrite=True))}
    times = {**medians(works, rounds=9), **medians(by_document, rounds=1)}
    read, whole, five, document = times.values()
    print_table(
        ["table `records`", "ms", "times", "goal", "met"],
        line("the file in pieces of 64 KiB", read),
        line("all columns, against that", whole, whole / read, "at most 3"),
        line("five columns, against that", five, five / read, "at most 1.5"),
        line("`frame(convert())`, against all columns", document, document / whole, "at least 100"),
    )


def fill_database(path, definition, rows):
    path.unlink(missing_ok=True)
    database = sqlite3.connect(path, isolation_level=None)
    for statement in ("PRAGMA synchronous = NORMAL", "BEGIN", *definition):
        database.execute(statement)
    database.executemany(f"INSERT INTO t VALUES ({', '.join('?' * len(rows[0]))})", rows)
    database.execute("COMMIT")
    database.close()


def measure_exports(recording, folder):
    made, filled = folder / "made.sqlite", folder / "filled.sqlite"
    table = quorvex64.table(recording, "records")
    frame = table.to_pandas()
    works = {
        "CSV, `quorvex export`": lambda: export(recording, folder / "tables", "--table", "records"),
        "CSV, pandas' `to_csv`": lambda: frame.to_csv(folder / "pandas.csv", index=False),
        "SQLite, `quorvex export`": lambda: export(recording, made, "--table", "records"),
        "SQLite, Python's `executemany`": lambda: fill_database(filled, definition, rows),
    }
    goals = {"CSV, pandas' `to_csv`": "at least 5", "SQLite, Python's `executemany`": "at least 1"}
    try:
        database = foreign.Database(build)
        database.ask("SET threads = 1")
        database.take(table)
        copy = f"COPY \"table\" TO '{folder / 'foreign.csv'}' (FORMAT csv)"
        works["CSV, DuckDB's `COPY`, one thread"] = lambda: database.ask(copy)
    except foreign.Missing as missing:
        print(f"left out: {missing}\n")
    # The same rows into the same table, with its index, by the other way.
    export(recording, made, "--table", "records")
    source = sqlite3.connect(made)
    look = "SELECT name, sql FROM sqlite_master WHERE name LIKE '%_records'"
    name, created = source.execute(look).fetchone()
    definition = created.replace(f'"{name}"', "t", 1), "CREATE INDEX i ON t (recording)"
    rows = source.execute(f'SELECT * FROM "{name}"').fetchall()
    source.close()
    times = medians(works, rounds=5)
    lines = []
    for name, seconds in sorted(times.items()):
        ours = times[name.partition(",")[0] + ", `quorvex export`"]
        lines.append(line(name, seconds, seconds / ours, goals.get(name)))
    print_table(["table `records` into", "ms", "times the export's", "goal", "met"], *lines)


def peak_of(source, output):
    # By a process between: a process that this large one starts would begin with its size.
    return f"{int(export(source, output, under=('time', '-f', '%M')).stderr.split()[-1]) / 1024:.1f}"


def measure_memory(sources, folder):
    lines = []
    for what, source in sources.items():
        lines.append([what, *(peak_of(source, folder / to) for to in ("tables", "all.sqlite"))])
    print_table(["peak resident MB of `quorvex export`, all tables", "CSV", "SQLite"], *lines)


def main():
    with tempfile.TemporaryDirectory(dir=sys.argv[2]) as name:
        folder = pathlib.Path(name)
        samples, many = folder / "samples", folder / "many"
        samples.mkdir()
        many.mkdir()
        subprocess.run([build / "make_samples", samples], check=True)
        data = (samples / "R0001GEN.REC").read_bytes()
        assert len(data) == HEAD + SAMPLE_RECORDS * RECORD
        large, larger = folder / "R0001GEN.REC", folder / "R0002GEN.REC"
        large.write_bytes(data[:HEAD] + data[HEAD:] * 11)
        larger.write_bytes(data[:HEAD] + data[HEAD:] * 88)
        small = [path for path in sorted(samples.iterdir()) if path.stat().st_size < 100_000]
        for i in range(1000):
            path = small[i % len(small)]
            shutil.copyfile(path, many / f"R{i:04}{path.name[5:]}")
        python, sqlite = sys.version.split()[0], sqlite3.sqlite_version
        print(f"Python {python}, pandas {pandas.__version__}, SQLite {sqlite}\n")
        measure_tables(large)
        measure_exports(large, folder)
        measure_memory({"a recording of 64 MB": large, "of 512 MB": larger, "1,000 small ones": many}, folder)


main()
