#include "xml/conversion.h"

#include <optional>

#include "settings/instrument_state.h"
#include "xml/document.h"
#include "xml/plan.h"

namespace quorvex {
namespace {

// Writes down what it hears.
class Document final : public Listener {
 public:
  Document(XmlWriter* to, Cases which) : to_(to), which_(which) {}

  void BeginGroup(const Field& group, const char* phase) override {
    char attributes[64] = "";
    if (phase != nullptr) PhaseAttribute(phase, attributes, sizeof attributes);
    OpenElement(to_, group.name, attributes);
  }
  void EndGroup() override { CloseElement(to_); }
  void Bytes(const Piece& piece) override {
    if (piece.record == 0) return RenderOnce(to_, piece.layout, which_, piece.bytes, piece.inputs);
    PlanOf(piece.layout).Render(to_, piece.bytes, piece.inputs);
  }
  bool EndRecord(const RecordEnd&) override { return !to_->abandoned; }

 private:
  // A record type has few layouts: they are found as they come.
  static constexpr int kMostPlans = 4;
  struct Known {
    const Field* layout = nullptr;
    std::optional<Plan> plan;
  };
  Plan& PlanOf(const Field& layout) {
    Known* known = known_;
    if (known->layout == &layout) [[likely]]
      return *known->plan;
    while (known->layout != &layout && known->layout != nullptr &&
           known + 1 < known_ + kMostPlans) {
      ++known;
    }
    if (known->layout != &layout) {
      known->layout = &layout;
      known->plan.emplace(layout, which_);
    }
    return *known->plan;
  }

  XmlWriter* to_;
  Cases which_;
  Known known_[kMostPlans];
};

}  // namespace

bool ConvertRecording(RecordingHead* recording, const Request& request) {
  if (recording->type == nullptr) return false;
  // What the instrument would hold meanwhile. Nothing of a document is read from it, but hosts see
  // its memory in the counter of tracked bytes.
  std::optional<ScopedState> state;
  if (recording->type->state) state.emplace(&recording->settings);

  XmlWriter* writer = CreateDocument(recording->path, request.output);
  if (writer == nullptr) return false;
  writer->go_on = request.go_on;
  WriteDocumentStart(writer);
  Document document(writer, CaseOf(recording->settings));
  BothListen both(&document, request.also);
  Listener* listener = &document;
  if (request.also != nullptr) listener = &both;
  const bool there = WalkRecording(recording, request.walk, listener);
  CloseElement(writer);
  return CloseDocument(writer) && there;
}

}  // namespace quorvex
