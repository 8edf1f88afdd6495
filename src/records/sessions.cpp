// Type 15: the log of operating sessions.
#include "records/record_types.h"
#include "records/walk.h"
#include "support/loads.h"

namespace quorvex {
namespace {

constexpr uint32_t kElementsNumAt = 36;

constexpr Field kSessionHeaderRows[] = {
    DateTime("startTime", 0, "start of the session"),
    DateTime("endTime", 16, "end of the session"),
    I32("sessionId", 32, "identifier"),
    I32("elementsNum", kElementsNumAt, "number of elements that follow").Counts(INT32_MAX),
};
constexpr Field kSessionHeader = Record("SESSION_HEADER", 40, kSessionHeaderRows);
static_assert(Tiles<WrongByte(kSessionHeader)>);

constexpr auto kElementRows =
    Shared({"session element"}, {
                                    I32("elementType", 0, "kind of the change"),
                                    I32("fromScreen", 4, "screen before"),
                                    I32("toScreen", 8, "screen after"),
                                    I32("num", 12, "number"),
                                });
constexpr Field kElement = Record("ELEMENT", 16, kElementRows, "a change of screens");
static_assert(Tiles<WrongByte(kElement)>);

constexpr Field kSessionRows[] = {
    kSessionHeader,
    Each(kElement.name, 0, 1, kElement.size, kElementRows, kElement.meaning)
        .CountInput(0, "elementsNum")
        .InParts()
        .Behind(),
};
constexpr Field kSession = Record("SESSION", kSessionHeader.size, kSessionRows, "a session");

constexpr uint32_t kPartElements = 1024;

// Tells the elements of a session that begin where the walk stands. False: nothing more is wanted.
bool TellElements(Walk* w, int32_t elements) {
  const uint32_t first = FirstEntry(*w);
  if (first != 0) MoveTo(w, w->position + uint64_t{first} * kElement.size);
  for (auto i = static_cast<int32_t>(first); i < elements; ++i) {
    uint8_t element[kElement.size];
    const uint64_t at = w->position;
    if (Read(w, element, sizeof element) != sizeof element) break;
    const auto number = static_cast<uint32_t>(i);
    Tell(w, kElement, element, at, sizeof element, {}, number);
    const bool part = w->options.side_by_side && (number + 1) % kPartElements == 0;
    if (part && !EndPart(w, number + 1)) return false;
  }
  return true;
}

// Sessions stand back to back, each a header and its elements, up to the first that is cut short.
void WalkSessions(Walk* w) {
  uint8_t header[kSessionHeader.size];
  for (;;) {
    BeginRecord(w);
    const uint32_t got = Read(w, header, sizeof header);
    if (got != sizeof header) {
      LeaveOut(w, sizeof header);
      return;
    }
    w->listener->BeginGroup(kSession, nullptr);
    Tell(w, kSessionHeader, header, w->record_at, got);
    const auto elements = Load<int32_t>(header + kElementsNumAt);
    const bool wanted = TellElements(w, elements);
    w->listener->EndGroup();
    if (!wanted) return;
    const uint64_t count = elements > 0 ? static_cast<uint64_t>(elements) : 0;
    if (!EndRecord(w, sizeof header + count * kElement.size)) return;
  }
}

}  // namespace

const RecordType kSessions = {
    .type = 15,
    .word = "sessions",
    .name = "sessions",
    .about =
        "Sessions stand back to back, each a header and its elements. The file carries no settings "
        "and its document no list element; elements are named in lower camel case, unlike those of "
        "every other type.",
    .record = &kSession,
    .walk = WalkSessions,
    .settings_at = 0,
    .records_at = kFileHeaderSize,
    .cut = {kSessionHeader.size, "elements that are not whole are left out"},
    .size = [](const UifParams&) -> uint64_t { return 0; },
};

}  // namespace quorvex
