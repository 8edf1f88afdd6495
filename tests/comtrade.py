"""Reads COMTRADE files as IEEE C37.111 describes them, revisions 1999 and 2013, .cfg with .dat or .cff,
and insists on their form. Knows nothing of who wrote them."""
import collections, datetime, re, struct

# How a sample is stored, what stands for none, and the largest number beside that.
TYPES = {"ASCII": ("", 99999, 99998), "BINARY": ("h", -2**15, 2**15 - 1), "BINARY32": ("i", -2**31, 2**31 - 1),
         "FLOAT32": ("f", struct.unpack("<f", b"\xff\xff\x7f\xff")[0], None)}
Channel = collections.namedtuple("Channel", "id phase unit a b low high primary secondary numbers values")
Recording = collections.namedtuple("Recording", "station device revision frequency rate start trigger type factor zone channels stamps")


class Malformed(Exception):
    pass


def need(condition, what):
    if not condition:
        raise Malformed(what)


def lines_of(data):
    need(data.endswith(b"\r\n"), "the last line has no end")
    lines = data.decode("ascii").split("\r\n")[:-1]
    need(not any(set(line) & {"\r", "\n", "\0"} for line in lines), "a line has a control character")
    return lines


def fields(line, count):
    found = line.split(",")
    need(len(found) == count, f"{len(found)} fields, not {count}: {line}")
    return found


def time(line):
    found = re.fullmatch(r"(\d\d)/(\d\d)/(\d{4}),(\d\d):(\d\d):(\d\d)\.(\d{6})", line)
    need(found, f"no time: {line}")
    day, month, year, *clock = map(int, found.groups())
    return datetime.datetime(year, month, day, *clock) if any((day, month, year, *clock)) else None


def sections(data):
    """Configuration and data of a single file."""
    parts, at = {}, 0
    while at < len(data) and "DAT" not in parts:
        end = data.index(b"\r\n", at)
        head = re.fullmatch(rb"--- file type: ([A-Z]+)(?: ([A-Z0-9]+))?(?:: (\d+))? ---", data[at:end])
        need(head, f"no section: {data[at:end]}")
        name, at = head[1].decode(), end + 2
        to = len(data) if name == "DAT" else data.index(b"--- file type:", at)
        need(name != "DAT" or head[2] == b"ASCII" or int(head[3]) == to - at, "not as many bytes as it says")
        parts[name], at = data[at:to], to
    need(list(parts) == ["CFG", "INF", "HDR", "DAT"], f"sections {list(parts)}")
    return parts["CFG"], parts["DAT"]


def read(path):
    data = path.read_bytes()
    text, data = sections(data) if path.suffix == ".cff" else (data, path.with_suffix(".dat").read_bytes())
    lines = iter(lines_of(text))
    station, device, revision = fields(next(lines), 3)
    total, analogue, digital = fields(next(lines), 3)
    need(analogue == total + "A" and digital == "0D", "channel counts")
    described = [fields(next(lines), 13) for _ in range(int(total))]
    need([d[0] for d in described] == [str(n + 1) for n in range(int(total))], "channel numbers")
    need(all(d[12] == "P" and d[7] == "0" for d in described), "primary values, no skew")
    frequency, rates = float(next(lines)), next(lines)
    need(rates == "1", "one rate")
    rate, last = fields(next(lines), 2)
    start, trigger, kind, factor = time(next(lines)), time(next(lines)), next(lines), float(next(lines))
    need(revision in ("1999", "2013") and (revision == "2013" or kind in ("ASCII", "BINARY")), f"{kind} in {revision}")
    zone = fields(next(lines), 2) if revision == "2013" else None
    need(revision == "1999" or re.fullmatch("[0-9A-F],[0-3]", next(lines)), "time quality")
    need(not list(lines), "more lines")
    code, missing, limit = TYPES[kind]
    if code:
        row = struct.Struct(f"<II{int(total)}{code}")
        need(len(data) % row.size == 0, "part of a sample")
        rows = list(row.iter_unpack(data))
    else:
        rows = [tuple(map(int, fields(line, 2 + int(total)))) for line in lines_of(data)]
    need([r[0] for r in rows] == list(range(1, int(last) + 1)), "sample numbers")
    channels = []
    for n, (_, name, phase, _, unit, a, b, _, low, high, primary, secondary, _) in enumerate(described):
        numbers = [r[n + 2] for r in rows]
        given = [v for v in numbers if v != missing]
        need(not given or float(low) <= min(given) <= max(given) <= float(high), f"{name} is out of its range")
        need(limit is None or (int(low), int(high)) == (-limit, limit), f"the range of {name}")
        values = [None if v == missing else v * float(a) + float(b) for v in numbers]
        channels.append(Channel(name, phase, unit, float(a), float(b), low, high, primary, secondary, numbers, values))
    return Recording(station, device, revision, frequency, float(rate), start, trigger, kind, factor, zone, channels, [r[1] for r in rows])
