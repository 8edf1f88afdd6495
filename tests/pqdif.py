"""Reads PQDIF files as IEEE 1159.3 describes them, and asserts what holds for any: the chain of
records, every link inside its body and no two alike, types, and the tags that are required."""
import struct
import uuid
import zlib

TAIL = {f: f"-{f}-11cf-9d89-0080c72e70a3" for f in ("f1c3", "f5f5", "f753", "f755", "f76e", "f9c4", "f747")}
NAMES = {first + TAIL[family]: name for family, names in {
    "f1c3": "89738606 Container 89738619 DataSource 8973861a Observation 89738607 VersionInfo 89738608 FileName "
            "89738609 Creation 89738611 Comments 89738623 Application 8973861b CompressionStyle "
            "8973861c CompressionAlgorithm 8973861f ShareChannel 89738620 ShareSeries",
    "f5f5": "b48d858c MonitorSettings b48d8581 SourceType b48d8582 Vendor b48d8585 Serial b48d8586 Version "
            "b48d8587 NameDS b48d8589 Location b48d858d ChannelDefns b48d858e OneChannelDefn b48d858f ChannelDefnIdx "
            "b48d8590 ChannelName b48d8591 Phase b48d8592 QuantityType b48d8597 Disturbance b48d8598 SeriesDefns "
            "b48d859a OneSeriesDefn b48d859b Units b48d859c ValueType b48d85a1 StorageMethod",
    "f747": "e6b51730 MEASURE e6b51701 NO_VENDOR e6b51737 PQM",
    "f753": "67f6af80 WAVEFORM 67f6af82 VALUELOG 67f6af8d MAGDURTIME 67f6af97 VAL 67f6af98 MIN 67f6af99 MAX "
            "67f6af9a AVG 67f6af93 FLUCTUATION",
    "f755": "c690e872 QuantityMeasured c690e862 TIME c690e863 DURATION",
    "f76e": "3d786f82 InstrumentType 3d786f83 Model 3d786f9e Characteristic 3d786f85 TimeInstalled "
            "3d786f9a OneChannelSetting 3d786f8a Name 3d786f8b TimeCreate 3d786f8c TimeStart 3d786f8d TriggerMethod "
            "3d786f8f TriggerChannels 3d786f91 ChannelInsts 3d786f92 OneChannelInst 3d786f93 SeriesInsts "
            "3d786f94 OneSeriesInst 3d786f95 Base 3d786f97 Offset 3d786f99 Values",
    "f9c4": "62f28180 UseCalibration 62f28181 UseTransducer 62f28182 ChannelSettings 62f28183 Effective "
            "62f28184 TriggerType 62f28185 Low 62f28186 High 62f28189 TransformerType 62f2818a SystemSide "
            "62f2818b MonitorSide"}.items()
    for first, name in zip(names.split()[::2], names.split()[1::2])}
NAMES.update({"0fa118c8-cb4a-11d2-b30b-fe25cb9a1760": "Nominal", "0fa118c3-cb4a-11d2-b30b-fe25cb9a1760": "Frequency",
              "9f256ee0-803b-11d3-b92f-0050da2b1f4d": "Connection", "5b12f430-ff54-11d3-b968-0050da2b1f4d": "LowLow",
              "2747d443-2bd0-11d2-ae42-0060083a2628": "Magnitude", "2747d444-2bd0-11d2-ae42-0060083a2628": "Lasting",
              "f90de218-e67b-4cf1-a295-b021a2d46767": "Group"})
SIZES = {3: ("I", 4), 10: ("B", 1), 21: ("h", 2), 32: ("I", 4), 40: ("f", 4), 41: ("d", 8), 50: ("Id", 12), 60: ("16s", 16)}
REQUIRED = {
    "Container": "VersionInfo FileName Creation", "DataSource": "SourceType NameDS ChannelDefns",
    "MonitorSettings": "Effective TimeInstalled UseCalibration UseTransducer ChannelSettings",
    "Observation": "Name TimeCreate TimeStart TriggerMethod ChannelInsts",
    "OneChannelDefn": "Phase QuantityType QuantityMeasured SeriesDefns", "OneChannelSetting": "ChannelDefnIdx",
    "OneSeriesDefn": "ValueType Units Characteristic StorageMethod", "OneChannelInst": "ChannelDefnIdx SeriesInsts"}


def name_of(guid):
    return NAMES.get(str(uuid.UUID(bytes_le=guid)), str(uuid.UUID(bytes_le=guid)))


def value(kind, data):
    form, size = SIZES[kind]
    values = [v if len(v) > 1 else v[0] for v in struct.iter_unpack("<" + form, data[:len(data) // size * size])]
    if kind == 60:
        return [name_of(v) for v in values]
    return [(day - 25569) * 86400 + seconds for day, seconds in values] if kind == 50 else values


def collection(body, at, end, spans, called):
    """As {tag: value}, what may be there more than once as lists."""
    count, = struct.unpack_from("<I", body, at)
    spans.append((at, at + 4 + 28 * count))
    found = {}
    for entry in range(at + 4, at + 4 + 28 * count, 28):
        tag, element, kind, embedded, zero = name_of(body[entry:entry + 16]), *body[entry + 16:entry + 20]
        assert zero == 0 and element in (1, 2, 3) and embedded in (0, 1), (called, tag)
        link, size = struct.unpack_from("<II", body, entry + 20)
        assert embedded or (link % 4 == 0 and size % 4 == 0 and at < link and link + size <= end), (called, tag)
        if element == 1:
            assert kind == 0 and not embedded
            held = collection(body, link, link + size, spans, tag)
        elif embedded:
            assert element == 2 and SIZES[kind][1] <= 8
            held, = value(kind, body[entry + 20:entry + 20 + SIZES[kind][1]])
        elif element == 2:
            assert size == SIZES[kind][1] > 8 or kind == 41
            held, = value(kind, body[link:link + size])
            spans.append((link, link + size))
        else:
            number, = struct.unpack_from("<I", body, link)
            assert 4 + number * SIZES[kind][1] <= size < 8 + number * SIZES[kind][1], (called, tag)
            held = value(kind, body[link + 4:link + 4 + number * SIZES[kind][1]])
            if kind == 10:
                assert held.pop() == 0 and 0 not in held
                held = bytes(held).decode("ascii")
            spans.append((link, link + size))
        if tag.startswith("One"):
            found.setdefault(tag, []).append(held)
        else:
            assert tag not in found, (called, tag)
            found[tag] = held
    missing = set(REQUIRED.get(called, "").split()) - set(found)
    assert not missing, f"{called} lacks {missing}"
    return found


def records(data):
    """(type, what is in it, body); the chain is followed and must use up the file."""
    at, packed = 0, False
    while True:
        signature, kind = str(uuid.UUID(bytes_le=data[at:at + 16])), name_of(data[at + 16:at + 32])
        header, size, following, checksum, *zeros = struct.unpack_from("<8I", data, at + 32)
        assert signature == "4a111440-e49f-11cf-9900-505144494600" and header == 64 and not any(zeros)
        stored = data[at + 64:at + 64 + size]
        assert len(stored) == size and zlib.adler32(stored) == checksum
        body, spans = zlib.decompress(stored) if packed and kind != "Container" else stored, []
        found = collection(body, 0, len(body), spans, kind)
        spans.sort()
        assert [s[0] for s in spans] == [0, *(s[1] for s in spans[:-1])] and spans[-1][1] == len(body)
        assert (kind == "Container") == (at == 0)
        if at == 0:
            packed = found["CompressionStyle"] == 2
            assert found["CompressionAlgorithm"] == int(packed)
        yield kind, found, body
        if following == 0:
            assert at + 64 + size == len(data)
            return
        assert following == at + 64 + size
        at = following


def numbers(series, definition):
    values = series["Values"]
    if definition["StorageMethod"] == 4:
        runs, offset, values = values, series.get("Offset", 0), []
        assert len(runs) == 1 + 2 * runs[0]
        for count, step in zip(runs[1::2], runs[2::2]):
            values += [offset + i * step for i in range(int(count))]
            offset += count * step
    return values


def read(data):
    """The container, and observations with settings, source and channels: (definition, instance, series by what they hold)."""
    container, source, settings, observations = None, None, None, []
    for kind, found, _ in records(data):
        if kind == "Container":
            container = found
        elif kind == "DataSource":
            source, settings = found, None
        elif kind == "MonitorSettings":
            settings = found
        else:
            definitions, instances = source["ChannelDefns"]["OneChannelDefn"], found["ChannelInsts"]["OneChannelInst"]
            channels = []
            for instance in instances:
                definition = definitions[instance["ChannelDefnIdx"]]
                held = {}
                wanted, series = definition["SeriesDefns"]["OneSeriesDefn"], instance["SeriesInsts"]["OneSeriesInst"]
                assert len(wanted) == len(series)
                for one, entry in zip(wanted, series):
                    if "ShareChannel" in entry:
                        entry = instances[entry["ShareChannel"]]["SeriesInsts"]["OneSeriesInst"][entry["ShareSeries"]]
                    held[one["ValueType"]] = numbers(entry, one)
                assert len({len(v) for v in held.values()}) == 1 and list(held)[0] == "TIME"
                channels.append((definition, instance, held))
            observations.append({**found, "source": source, "settings": settings, "channels": channels})
    return container, observations
