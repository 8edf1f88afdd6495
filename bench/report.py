#!/usr/bin/python3
"""report.py BUILD-TREE FOLDER: measures reports of cards of 100 MB in FOLDER, against a checksum of them. All
times are of the processor, user and system together; medians of seven rounds."""
import datetime, pathlib, resource, statistics, struct, subprocess, sys, tempfile

build = pathlib.Path(sys.argv[1]).resolve()
HEAD, START, LAST, ROUNDS, SIZE = 3072, 24, 56, 7, 100_000_000
KINDS = {  # by the name of a sample, the bytes of a record, or 0 where records have no times to move
    "general, full": ("R0001GEN.REC", 40448), "general, compact": ("R0101GEN.REC", 1536),
    "snapshots": ("R0002SNP.REC", 0),
}


def moment(index):
    at = datetime.datetime(2024, 3, 4) + datetime.timedelta(seconds=600 * index)
    return struct.pack("<HBBBBHd", at.year, at.month, at.day, at.hour, at.minute, 0, at.second)


def grow(sample, size, to):
    """A card of one recording of 100 MB: the sample's records, with times that go on."""
    data = sample.read_bytes()
    with open(to, "wb") as file:
        file.write(data[:HEAD])
        if size == 0:
            file.write(data[HEAD:] * (SIZE // (len(data) - HEAD)))
            return
        for i in range(SIZE // size):
            at = HEAD + i % ((len(data) - HEAD) // size) * size
            record = bytearray(data[at:at + size])
            record[START:START + 16], record[LAST:LAST + 16] = moment(i), moment(i + 1)
            file.write(record)


def seconds(*command):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    done = subprocess.run(["/usr/bin/time", "-f", "%M", *command], stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, text=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if done.returncode > 1:
        sys.exit(done.stderr)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, int(done.stderr.split()[-1])


print("| card of 100 MB | report, ms | figures alone, ms | times a checksum | goal | met | peak MB | page, MB |", "|---" * 8 + "|", sep="\n")
with tempfile.TemporaryDirectory(dir=sys.argv[2]) as name:
    place = pathlib.Path(name)
    (place / "samples").mkdir()
    subprocess.run([build / "make_samples", place / "samples"], check=True)
    for kind, (sample, size) in KINDS.items():
        card, page = place / "R0001.REC", place / "page.html"
        grow(place / "samples" / sample, size, card)
        runs = [[seconds(build / "quorvex", "report", card, "--overwrite", "-o", page),
                 seconds(build / "quorvex", "report", card, "--json"), seconds("cksum", card)] for _ in range(ROUNDS)]
        whole, figures, raw = (statistics.median(run[i][0] for run in runs) for i in range(3))
        print(f"| {kind} | {1000 * whole:.0f} | {1000 * figures:.0f} | {whole / raw:.3g} | at most 1,000 ms "
              f"| {'yes' if whole <= 1 else 'no'} | {max(run[0][1] for run in runs) / 1000:.1f} "
              f"| {page.stat().st_size / 1e6:.2f} |", flush=True)
