// Type 9: mains signalling. The arrays of a recording are read and written in pieces, so that
// memory does not grow with it.
#include <algorithm>
#include <cstring>

#include "records/record_types.h"
#include "support/loads.h"
#include "support/memory.h"
#include "xml/plan.h"

namespace quorvex {
namespace {

constexpr uint32_t kPacketsAt = 32;

// TRESHOLD as hosts know it.
constexpr Field kHeadRows[] = {
    DateTime("TIME_FIRST_PACKET", 0, "time of the first packet"),
    F32("TIME_STEP", 16, "time from packet to packet", "s"),
    I32("TRIGGER", 20, "what started the recording"),
    I32("DURATION", 28, "duration of the recording", "s"),
    I32("PACKETS_NUM", kPacketsAt, "number of packets"),
    F32("TRESHOLD", 24, "trigger threshold"),
    I32("FLAG", 40, "flag of the recording"),
    Gap(36, 4),
    Gap(44, 4),
};
constexpr Field kHead = Record("SIGNALLING_PARAMS", 48, kHeadRows, "head of a recording");
static_assert(Tiles<WrongByte(kHead)>);

constexpr uint32_t kPiecePackets = 1024;
constexpr char kPerPacket[] = "PACKETS_NUM";

constexpr Field kEndTimes[] = {
    Each("END_TIME", 0, kPiecePackets, kDateTimeSize, kDateTimeRows, "end of a packet")
        .CountInput(0, kPerPacket)
        .InPieces(),
};
constexpr Field kLevels[] = {
    F32("U", 0, "level in a packet", "V").Times(kPiecePackets).CountInput(0, kPerPacket).InPieces(),
};
constexpr Field kFlags[] = {
    I32("FLAG", 0, "flag of a packet").Times(kPiecePackets).CountInput(0, kPerPacket).InPieces(),
};

// Behind the head, in this order on disk too: an array of an entry a packet each.
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
    Group("SIGNALLING_DATA", kArrays, "the packets"),
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

struct Writer {
  const Conversion& c;
  Plan head{kHead, kAllCases};
  Plan end_times{Rows(0, kEndTimes), kAllCases};
  Plan levels{Rows(0, kLevels), kAllCases};
  Plan flags{Rows(0, kFlags), kAllCases};
  Tracked<uint8_t> piece{kPiecePackets * kDateTimeSize};

  const Plan& PlanOf(const Field& array) const {
    if (array.rows == kLevels) return levels;
    return array.rows == kEndTimes ? end_times : flags;
  }
};

// A piece of an array, to be read where the file stands.
struct Piece {
  uint64_t at;          // its place in the file
  uint32_t size;        // in bytes
  uint64_t array_size;  // of the array that it is from
  uint32_t earlier;     // arrays of this size in front of it
};

// The arrays of levels share one block, each read over the one before. Where the file ends early,
// the block still holds what the array before left there, which the file has one array earlier.
// Where nothing was, there are zeros.
void ReadPiece(Writer& w, const Piece& piece) {
  uint8_t* to = w.piece.get();
  uint32_t filled = ReadBytes(w.c.input, to, piece.size);
  if (filled == piece.size) return;
  uint64_t at = piece.at;
  for (uint32_t left = piece.earlier; filled < piece.size && left > 0; --left) {
    at -= piece.array_size;
    if (!SeekTo(w.c.input, at + filled)) break;
    filled += ReadBytes(w.c.input, to + filled, piece.size - filled);
  }
  std::memset(to + filled, 0, piece.size - filled);
  SeekTo(w.c.input, w.c.whole_size);
}

// Writes the arrays of `packets` entries that begin at byte `at`.
void WriteData(Writer& w, uint64_t at, uint32_t packets) {
  OpenElement(w.c.document, kData.name);
  uint32_t levels_before = 0;
  for (const Field& array : kArrays) {
    const uint32_t entry = EntrySize(array);
    const uint32_t earlier = array.rows == kLevels ? levels_before++ : 0;
    const Plan& plan = w.PlanOf(array);
    OpenElement(w.c.document, array.name);
    for (uint32_t done = 0; done < packets; done += kPiecePackets) {
      const uint32_t count = std::min(kPiecePackets, packets - done);
      ReadPiece(w, {at, count * entry, uint64_t{packets} * entry, earlier});
      plan.Render(w.c.document, w.piece.get(), {.number = {static_cast<int32_t>(count)}});
      at += count * entry;
    }
    CloseElement(w.c.document);
  }
  CloseElement(w.c.document);
}

void WriteSignalling(const Conversion& c) {
  if (c.whole_size < c.type.records_at) return;
  Writer w{c};
  uint8_t head[kHead.size] = {};  // what a last head lacks is left from the one before
  const uint32_t length = c.size - kHeadSize;
  uint64_t position = 0;
  while (position < length && !c.document->abandoned) {
    ReadBytes(c.input, head, sizeof head);
    position += sizeof head;
    const auto announced = Load<int32_t>(head + kPacketsAt);
    // No file holds more packets than bytes: such a count is damage, and what follows it is lost.
    const bool plausible = announced <= 0 || static_cast<uint32_t>(announced) <= c.whole_size;
    const uint32_t packets = announced > 0 && plausible ? static_cast<uint32_t>(announced) : 0;
    OpenElement(c.document, kRecording.name);
    w.head.Render(c.document, head);
    WriteData(w, kHeadSize + position, packets);
    CloseElement(c.document);
    if (!plausible) return;
    position += uint64_t{packets} * PacketSize();
  }
}

}  // namespace

const RecordType kSignalling = {
    .type = 9,
    .name = "signalling",
    .about =
        "Recordings of any length stand back to back: a head, then fourteen arrays with an "
        "entry for each packet. A negative number of packets means none.",
    .list = "RECORDS",
    .record = &kRecording,
    .write = WriteSignalling,
    .cut = {1, "what it lacks is left over from what was read before (zeros in the first)"},
};

}  // namespace quorvex
