// The renderer of the layout tables. A table is first made into a plan for the recording at hand:
// rows of other cases drop out, and the tags between two values become one piece of ready text. A
// record is then rendered by copying text and writing values in turn.
#pragma once

#include "layout/field.h"
#include "texts/float_texts.h"
#include "xml/element_writer.h"

namespace quorvex {

struct PlanStep;

// Date-times mostly follow each other within a minute: what stands above their seconds is kept.
struct MinuteText {
  uint64_t bytes;  // of the record
  uint32_t size;   // 0: there is none yet
  char text[3 * kCopySize];
};

class Plan {
 public:
  // `which` is the one case (a single bit) that the recording is.
  Plan(const Field& table, Cases which);
  ~Plan();
  Plan(const Plan&) = delete;
  Plan& operator=(const Plan&) = delete;

  // Writes one record, which holds at least the table's bytes.
  void Render(XmlWriter* to, const void* record, const Inputs& inputs = {});

 private:
  void Add(const Field& f, uint32_t offset, uint32_t step);
  void AddRows(const Field& group, uint32_t offset, uint32_t step);
  void AddMinute(const Field& date_time, uint32_t rows, uint32_t offset, uint32_t step);
  void AddStep(const Field* f, uint32_t offset, uint32_t step);
  void Run(XmlWriter* to, uint32_t from, uint32_t end, const uint8_t* base, uint32_t repetition,
           const Inputs& inputs);
  void RunMinute(XmlWriter* to, uint32_t minute, const uint8_t* at, const uint8_t* base,
                 uint32_t repetition);
  void RunLoop(XmlWriter* to, uint32_t loop, const uint8_t* place, const Inputs& inputs);

  Cases which_;
  XmlWriter* tags_;  // while the plan is made: the tags, written into memory
  char* text_;       // the same to stay
  uint32_t text_used_ = 0;
  PlanStep* steps_;
  uint32_t step_count_ = 0;
  PlanStep* gathering_ = nullptr;  // the step that asks for the room of those behind it
  MinuteText minute_ = {};
};

// For what is rendered once.
void RenderOnce(XmlWriter* to, const Field& table, Cases which, const void* record,
                const Inputs& inputs = {});

}  // namespace quorvex
