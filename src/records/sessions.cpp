// Type 15: the log of operating sessions.
#include "records/record_types.h"
#include "support/loads.h"
#include "xml/plan.h"

namespace quorvex {
namespace {

constexpr uint32_t kElementsNumAt = 36;

constexpr Field kSessionHeaderRows[] = {
    DateTime("startTime", 0, "start of the session"),
    DateTime("endTime", 16, "end of the session"),
    I32("sessionId", 32, "identifier"),
    I32("elementsNum", kElementsNumAt, "number of elements that follow"),
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
        .InPieces()
        .Behind(),
};
constexpr Field kSession = Record("SESSION", kSessionHeader.size, kSessionRows, "a session");

// Sessions stand back to back, each a header and its elements, up to the first that is cut short.
void WriteSessions(const Conversion& c) {
  const Plan header_plan(kSessionHeader, kAllCases);
  const Plan element_plan(kElement, kAllCases);
  uint8_t header[kSessionHeader.size];
  while (!c.document->abandoned && ReadBytes(c.input, header, sizeof header) == sizeof header) {
    OpenElement(c.document, kSession.name);
    header_plan.Render(c.document, header);
    const auto elements = Load<int32_t>(header + kElementsNumAt);
    for (int32_t i = 0; i < elements; ++i) {
      uint8_t element[kElement.size];
      if (ReadBytes(c.input, element, sizeof element) != sizeof element) break;
      element_plan.Render(c.document, element);
    }
    CloseElement(c.document);
  }
}

}  // namespace

const RecordType kSessions = {
    .type = 15,
    .name = "sessions",
    .about =
        "Sessions stand back to back, each a header and its elements. The file carries no settings "
        "and its document no list element; elements are named in lower camel case, unlike those of "
        "every other type.",
    .list = nullptr,
    .record = &kSession,
    .write = WriteSessions,
    .settings_at = 0,
    .records_at = kFileHeaderSize,
    .cut = {kSessionHeader.size, "elements that are not whole are left out"},
};

}  // namespace quorvex
