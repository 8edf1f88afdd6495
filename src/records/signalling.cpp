// Type 9: mains signalling. The arrays of a recording are read and written in pieces, so that
// memory does not grow with it.
#include <algorithm>
#include <cstring>

#include "records/record_types.h"
#include "records/walk.h"
#include "support/loads.h"
#include "support/memory.h"

namespace quorvex {
namespace {

constexpr uint32_t kPacketsAt = 32;

// TRESHOLD as hosts know it.
constexpr Field kHeadRows[] = {
    DateTime("TIME_FIRST_PACKET", 0, "time of the first packet"),
    F32("TIME_STEP", 16, "time from packet to packet", "s"),
    I32("TRIGGER", 20, "what started the recording"),
    I32("DURATION", 28, "duration of the recording", "s"),
    I32("PACKETS_NUM", kPacketsAt, "number of packets").Counts(INT32_MAX),
    F32("TRESHOLD", 24, "trigger threshold"),
    I32("FLAG", 40, "flag of the recording"),
    Gap(36, 4),
    Gap(44, 4),
};
constexpr Field kHead = Record("SIGNALLING_PARAMS", 48, kHeadRows, "head of a recording");
static_assert(Tiles<WrongByte(kHead)>);

constexpr uint32_t kPartPackets = 1024;
constexpr char kPerPacket[] = "PACKETS_NUM";

constexpr Field kEndTimes[] = {
    Each("END_TIME", 0, kPartPackets, kDateTimeSize, kDateTimeRows, "end of a packet")
        .CountInput(0, kPerPacket)
        .InParts(),
};
constexpr Field kLevels[] = {
    F32("U", 0, "level in a packet", "V").Times(kPartPackets).CountInput(0, kPerPacket).InParts(),
};
constexpr Field kFlags[] = {
    I32("FLAG", 0, "flag of a packet").Times(kPartPackets).CountInput(0, kPerPacket).InParts(),
};

// Fourteen arrays follow the head, on disk in this order too. Each has an entry for each packet.
constexpr Field kArrays[] = {
    Group("END_TIMES", kEndTimes, "end of each packet").Behind(),
    Group("U1_SIG1", kLevels, "phase 1, first frequency").Behind(),
    Group("U1_SIG2", kLevels, "phase 1, second frequency").Behind(),
    Group("U2_SIG1", kLevels, "phase 2, first frequency").Behind(),
    Group("U2_SIG2", kLevels, "phase 2, second frequency").Behind(),
    Group("U3_SIG1", kLevels, "phase 3, first frequency").Behind(),
    Group("U3_SIG2", kLevels, "phase 3, second frequency").Behind(),
    Group("U12_SIG1", kLevels, "lines 1 and 2, first frequency").Behind(),
    Group("U12_SIG2", kLevels, "lines 1 and 2, second frequency").Behind(),
    Group("U23_SIG1", kLevels, "lines 2 and 3, first frequency").Behind(),
    Group("U23_SIG2", kLevels, "lines 2 and 3, second frequency").Behind(),
    Group("U31_SIG1", kLevels, "lines 3 and 1, first frequency").Behind(),
    Group("U31_SIG2", kLevels, "lines 3 and 1, second frequency").Behind(),
    Group("flags", kFlags, "flag of each packet").Behind(),
};

constexpr Field kRecordingRows[] = {
    kHead,
    Group("SIGNALLING_DATA", kArrays, "the packets").InTable("SIGNALLING_DATA"),
};
constexpr Field kData = kRecordingRows[1];
constexpr Field kRecording =
    Record("SIGNALLING_RECORD", kHead.size, kRecordingRows, "a signalling recording");

constexpr uint32_t EntrySize(const Field& array) { return array.rows[0].step; }

constexpr uint32_t PacketSize() {
  uint32_t size = 0;
  for (const Field& array : kArrays) size += EntrySize(array);
  return size;
}
static_assert(PacketSize() == 68);

constexpr Field kEndTimesPart = Rows(0, kEndTimes);
constexpr Field kLevelsPart = Rows(0, kLevels);
constexpr Field kFlagsPart = Rows(0, kFlags);

const Field& LayoutOfParts(const Field& array) {
  if (array.rows == kLevels) return kLevelsPart;
  return array.rows == kEndTimes ? kEndTimesPart : kFlagsPart;
}

// A part of an array, to be read where the walk stands.
struct ArrayPart {
  uint32_t size;        // in bytes
  uint64_t array_size;  // of the array that it is from
  uint32_t earlier;     // arrays of this size in front of it
};

// The instrument reads the arrays of levels into one block, each over the one before. Where the
// file ends early, the block still holds the bytes of the array before, which stand one array
// earlier in the file. Otherwise there are zeros. Returns how many bytes were the array's own.
uint32_t ReadPart(Walk* w, const ArrayPart& part, uint8_t* to) {
  const uint64_t begin = w->position;
  const uint32_t own = Read(w, to, part.size);
  if (own == part.size) return own;
  uint32_t filled = own;
  uint64_t at = begin;
  for (uint32_t left = part.earlier; filled < part.size && left > 0; --left) {
    at -= part.array_size;
    if (!MoveTo(w, at + filled)) break;
    filled += Read(w, to + filled, part.size - filled);
  }
  std::memset(to + filled, 0, part.size - filled);
  MoveTo(w, begin + part.size);
  return own;
}

// Tells entries `from` to `end` of each array of `packets` entries. The arrays begin at `at`.
void TellArrays(Walk* w, uint64_t at, uint32_t packets, uint32_t from, uint32_t end,
                uint8_t* buffer) {
  w->listener->BeginGroup(kData, nullptr);
  uint32_t levels_before = 0;
  for (const Field& array : kArrays) {
    const uint32_t entry = EntrySize(array);
    const uint32_t earlier = array.rows == kLevels ? levels_before++ : 0;
    w->listener->BeginGroup(array, nullptr);
    for (uint32_t done = from; done < end; done += kPartPackets) {
      const uint32_t count = std::min(kPartPackets, end - done);
      const uint64_t place = at + uint64_t{done} * entry;
      if (w->position != place) MoveTo(w, place);
      const uint32_t own = ReadPart(w, {count * entry, uint64_t{packets} * entry, earlier}, buffer);
      Inputs inputs;
      inputs.number[0] = static_cast<int32_t>(count);
      Tell(w, LayoutOfParts(array), buffer, place, own, inputs, done);
    }
    w->listener->EndGroup();
    at += uint64_t{packets} * entry;
  }
  w->listener->EndGroup();
}

// Tells the packets that begin where the walk stands, and leaves it behind them. False: nothing
// more is wanted.
bool TellPackets(Walk* w, uint32_t packets, uint8_t* buffer) {
  const uint64_t at = w->position;
  const uint32_t strip = w->options.side_by_side ? kPartPackets : packets;
  uint32_t from = std::min(FirstEntry(*w), packets);
  do {
    const uint32_t end = packets - from > strip ? from + strip : packets;
    TellArrays(w, at, packets, from, end, buffer);
    from = end;
    if (from < packets && !EndPart(w, from)) return false;
  } while (from < packets);
  if (const uint64_t end = at + uint64_t{packets} * PacketSize(); w->position != end) {
    MoveTo(w, end);
  }
  return true;
}

void WalkSignalling(Walk* w) {
  const uint64_t size = w->recording->size;
  if (size < w->type.records_at) return;
  Tracked<uint8_t> buffer(kPartPackets * kDateTimeSize);
  uint8_t head[kHead.size] = {};  // what a last head lacks is left from the one before
  const uint64_t end = kHeadSize + uint64_t{static_cast<uint32_t>(size) - kHeadSize};
  while (w->position < end) {
    BeginRecord(w);
    const uint32_t own = Read(w, head, sizeof head);
    const auto announced = std::max(Load<int32_t>(head + kPacketsAt), 0);
    // No file holds more packets than bytes: such a count is damage, and what follows it is lost.
    const bool plausible = static_cast<uint32_t>(announced) <= size;
    w->listener->BeginGroup(kRecording, nullptr);
    Tell(w, kHead, head, w->record_at, own);
    if (own != sizeof head) MoveTo(w, w->record_at + sizeof head);
    const bool wanted =
        TellPackets(w, plausible ? static_cast<uint32_t>(announced) : 0, buffer.get());
    w->listener->EndGroup();
    if (!wanted) return;
    const uint64_t record_size = sizeof head + static_cast<uint64_t>(announced) * PacketSize();
    if (!EndRecord(w, record_size) || !plausible) return;
  }
}

}  // namespace

const RecordType kSignalling = {
    .type = 9,
    .word = "signalling",
    .name = "signalling",
    .about =
        "Recordings of any length stand back to back: a head, then fourteen arrays with an "
        "entry for each packet. A negative number of packets means none.",
    .list = "RECORDS",
    .record = &kRecording,
    .walk = WalkSignalling,
    .cut = {1, "what it lacks is left over from what was read before (zeros in the first)"},
    .size = [](const UifParams&) -> uint64_t { return 0; },
};

}  // namespace quorvex
