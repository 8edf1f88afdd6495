#!/usr/bin/python3
"""archive.py BUILD-TREE FOLDER [COUNT [LARGE]]: measures archives in FOLDER, on whatever file system it is: COUNT
small recordings (100,000 without a word), copies of samples up to 13 kB in folders of 100, and LARGE ones (200) of
5.8 MB, which are one file by many names, as only their documents matter. Recordings are in the page cache. Every run
begins with no documents, except where it says so, and with nothing left to be written by the one before.

Small ones take 40 kB each with their document, large ones 9.2 MB. Processor times say more than seconds where others
use the machine."""
import os, pathlib, resource, shutil, subprocess, sys, tempfile, time

build, place = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2]
COUNT, LARGE = (int(given) for given in (sys.argv[3:] + ["100000", "200"][len(sys.argv) - 3:])[:2])
FEW, IN_FOLDER, SMALL = 1000, 100, 13_000
program = build / "quorvex"


def make_tree(tree, samples, count, make):
    for i in range(count):
        folder, sample = tree / f"site{i // 10_000:02}" / f"card{i // IN_FOLDER % 100:02}", samples[i % len(samples)]
        if i % IN_FOLDER == 0:
            folder.mkdir(parents=True)
        make(sample, folder / f"R{i % IN_FOLDER:04}{sample.name[5:]}")
    return tree


class Run:
    """Of a command: seconds, of the processor as well, and the largest of its processes."""

    def __init__(self, *command, output=None):
        if output is not None:
            shutil.rmtree(output, ignore_errors=True)
        os.sync()
        before, begin = resource.getrusage(resource.RUSAGE_CHILDREN), time.perf_counter()
        # By a process between: one that this process starts itself would begin with its size.
        done = subprocess.run(["/usr/bin/time", "-qf", "%M", *command], stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, text=True)
        self.seconds, after = time.perf_counter() - begin, resource.getrusage(resource.RUSAGE_CHILDREN)
        *said, peak = done.stderr.rstrip("\n").split("\n")
        if done.returncode != 0 or said:
            sys.exit(f"{' '.join(map(str, command))}: exit code {done.returncode}\n" + "\n".join(said[:5]))
        self.user, self.system = after.ru_utime - before.ru_utime, after.ru_stime - before.ru_stime
        self.peak = int(peak) / 1024


def count_of(folder, end):
    return sum(name.endswith(end) for _, _, names in os.walk(folder) for name in names)


def convert(tree, output, *arguments, fresh=True):
    run = Run(program, "convert", tree, "-qo", output, *arguments, output=output if fresh else None)
    made, given = count_of(output, ".xml"), count_of(tree, ".REC")
    if made != given:
        sys.exit(f"quorvex convert {' '.join(arguments)}: {made} documents of {given} recordings")
    return run


def one_process_each(tree):
    """By find and xargs, two processes at a time. Documents lie beside the recordings, which needs no shell for
    each, and go again."""
    run = Run("sh", "-c", 'find "$1" -name "*.REC" -print0 | xargs -0 -n1 -P2 "$2" convert -q --jobs 1', "sh", tree,
              program)
    subprocess.run(["find", tree, "-name", "*.xml", "-delete"], check=True)
    return run


def print_table(head, rows):
    print(f"| {' | '.join(head)} |", "|---" * len(head) + "|", *(f"| {' | '.join(row)} |" for row in rows), "",
          sep="\n", flush=True)


def size_of(folder, end):
    return sum(path.stat().st_size for path in folder.rglob("*" + end))


def line(name, count, run):
    return [name, f"{count / run.seconds:,.0f}", f"{run.seconds:.2f}", f"{1e6 * run.user / count:.0f}",
            f"{1e6 * run.system / count:.0f}", f"{run.peak:.1f}"]


def measure_small(tree, few, output):
    runs = {
        "`--jobs 1`": convert(tree, output, "--jobs", "1"),
        "`--jobs 2`": convert(tree, output, "--jobs", "2"),
        "the same again with `--newer`: nothing to do": convert(tree, output, "--jobs", "2", "--newer", fresh=False),
        "the walk: a share that has next to nothing, `--shard 1/50000`":
            Run(program, "convert", tree, "-qo", output, "--newer", "--shard", "1/50000"),
        "`--jobs 1 --no-sync`": convert(tree, output, "--jobs", "1", "--no-sync"),
        "`--jobs 2 --no-sync`": convert(tree, output, "--jobs", "2", "--no-sync"),
    }
    part = tree / "site00"
    each, of = one_process_each(part), count_of(part, ".REC")
    sizes = [size_of(tree, ".REC"), size_of(output, ".xml")]
    print_table([f"{COUNT:,} recordings of {sizes[0] / COUNT / 1000:.1f} kB, documents of "
                 f"{sizes[1] / COUNT / 1000:.0f} kB", "a second", "s", "user µs each", "system µs each", "peak MB"],
                [*(line(name, COUNT, run) for name, run in runs.items()),
                 line(f"`find`, `xargs -P2`, a process each, of {of:,} recordings", of, each)])
    print_table(["recordings", "peak MB, `--jobs 2`"],
                [[f"{FEW:,}", f"{convert(few, output, '--jobs', '2').peak:.1f}"],
                 [f"{COUNT:,}", f"{runs['`--jobs 2`'].peak:.1f}"]])


def measure_parts(tree, output):
    """One conversion at a time: what the tree takes to walk and the heads to read, and what comes on top. Medians
    of three."""
    count = count_of(tree, ".REC")
    median = lambda work: sorted((work() for _ in range(3)), key=lambda run: run.seconds)[1]
    heads = median(lambda: Run(program, "info", "--json", tree))
    quick = median(lambda: convert(tree, output, "--jobs", "1", "--no-sync"))
    synced = median(lambda: convert(tree, output, "--jobs", "1"))
    busy = lambda run: run.user + run.system
    parts = {
        "found, opened, head read (`info --json`)": heads.seconds,
        "read and rendered (more user time)": quick.user - heads.user,
        "document made and written (more system time)": quick.system - heads.system,
        "waited, for the file system or a core": quick.seconds - busy(quick) - (heads.seconds - busy(heads)),
        "synced (against `--no-sync`)": synced.seconds - quick.seconds,
        "all": synced.seconds,
    }
    print_table([f"part, {count:,} of them, one at a time", "µs a recording"],
                [[name, f"{1e6 * seconds / count:.0f}"] for name, seconds in parts.items()])


def measure_large(tree, output):
    rows = []
    for arguments in (["--jobs", "1"], ["--jobs", "2"], ["--jobs", "1", "--no-sync"], ["--jobs", "2", "--no-sync"]):
        run = convert(tree, output, *arguments)
        rows.append([f"`{' '.join(arguments)}`", f"{LARGE / run.seconds:,.0f}",
                     f"{size_of(output, '.xml') / run.seconds / 1e6:,.0f}", f"{1e3 * run.user / LARGE:.1f}",
                     f"{1e3 * run.system / LARGE:.1f}", f"{run.peak:.1f}"])
    print_table([f"{LARGE} recordings of {size_of(tree, '.REC') / LARGE / 1e6:.1f} MB", "a second", "document MB/s",
                 "user ms each", "system ms each", "peak MB"], rows)


def main():
    with tempfile.TemporaryDirectory(dir=place) as name:
        folder = pathlib.Path(name)
        (folder / "samples").mkdir()
        subprocess.run([build / "make_samples", folder / "samples"], check=True)
        # No setting files: by their names they would count for others.
        small = [path for path in sorted((folder / "samples").iterdir())
                 if path.stat().st_size < SMALL and not path.name.endswith("PAR.REC")]
        for sample in small:  # a document a moment younger would not count as current
            os.utime(sample, (1.7e9, 1.7e9))
        tree = make_tree(folder / "tree", small, COUNT, shutil.copy2)
        few = make_tree(folder / "few", small, FEW, shutil.copy2)
        large = make_tree(folder / "large", [folder / "samples" / "R0001GEN.REC"], LARGE, os.link)
        measure_small(tree, few, folder / "out")
        measure_parts(tree / "site00", folder / "out")
        measure_large(large, folder / "out")


main()
