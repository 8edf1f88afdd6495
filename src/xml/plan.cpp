#include "xml/plan.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "layout/count_of.h"
#include "layout/date_time.h"
#include "support/loads.h"
#include "support/memory.h"
#include "texts/float_texts.h"
#include "texts/value_text.h"
#include "xml/spectrum_text.h"

namespace quorvex {

// Text, then the value of `field`; only text where that is null; where `loop_end` is set, the steps
// up to there once a repetition, or, of a date-time down to its minute, where they are not the last
// ones again.
struct PlanStep {
  const Field* field;
  uint32_t text_at;
  uint32_t offset;
  uint32_t step;  // bytes to the same value of the next repetition
  uint32_t loop_end;
  uint32_t room;  // what this step and those behind it write at the most; 0: the room is there
  uint16_t text_size;
  Kind kind;  // of the field, kGap where that is null
  bool is_minute = false;
};

namespace {

// A buffer is asked for room once for many steps.
constexpr uint32_t kMostRoom = 16384;

// The most bytes that a row's value takes in the document.
uint32_t LongestText(const Field& f) {
  switch (f.kind) {
    case Kind::kText:
    case Kind::kRawText:
      return f.size;
    case Kind::kMade:
      return kLongestMadeText;
    case Kind::kSpectrum: {
      const uint32_t written = f.size / f.entry_floats * f.written_floats;
      return (written + 2) / 3 * 4;
    }
    case Kind::kU8:
    case Kind::kU16:
    case Kind::kI32:
    case Kind::kI64:
    case Kind::kF32:
    case Kind::kF64:
    case Kind::kScaledI16:
    case Kind::kScaledF32:
    case Kind::kSeconds:
    case Kind::kNoValue:
      return kValueRoom;
    case Kind::kGap:
    case Kind::kGroup:
      break;
  }
  return 0;
}

// Those that the row makes in a plan.
uint32_t StepsOf(const Field& f, Cases which) {
  if ((f.cases & which) == 0 || f.kind == Kind::kGap) return 0;
  uint32_t steps = f.repeated ? 2 : 0;  // its loop and its closing text
  if (f.kind != Kind::kGroup || IsDateTime(f)) ++steps;
  for (uint32_t r = 0; r < f.row_count; ++r) steps += StepsOf(f.rows[r], which);
  return steps;
}

// One value element after the other, for the samples and spectra that most of a large document is.
// `open` stands in front of the first; what is between two ends with it.
template <typename Value>
void WriteFloats(XmlWriter* to, const ReadyText& open, const ReadyText& between, uint32_t count,
                 Value value) {
  constexpr uint32_t kAtOnce = 256;
  float values[kAtOnce];
  for (uint32_t n = 0; n < count; n += kAtOnce) {
    const uint32_t part = std::min(count - n, kAtOnce);
    for (uint32_t i = 0; i < part; ++i) values[i] = value(n + i);
    char* out =
        Reserve(to, open.size + kCopySize + part * (kLongestNumber + between.size + kCopySize));
    out = FloatTexts(values, part, between, CopyText(open, out));
    Advance(to, out - open.size);  // no further value: its open tag goes again
  }
}

constexpr uint32_t kLongestTags = 48;

// Values side by side whose element is the whole repetition, and whose tags are short enough.
bool IsFloatRun(const PlanStep& loop, const PlanStep& value, const PlanStep& close) {
  const bool is_float =
      loop.kind == Kind::kF32 || loop.kind == Kind::kScaledI16 || loop.kind == Kind::kScaledF32;
  return is_float && value.text_size + close.text_size <= kLongestTags;
}

char* TextOf(const Field& f, const uint8_t* at, const Inputs& inputs, char* to) {
  return f.kind == Kind::kSpectrum ? SpectrumText(f, at, to) : ValueText(f, at, inputs, to);
}

}  // namespace

Plan::Plan(const Field& table, Cases which) : which_(which), tags_(CreateWriter(nullptr)) {
  const uint32_t steps = StepsOf(table, which) + 1;
  steps_ = static_cast<PlanStep*>(Allocate(steps * static_cast<uint32_t>(sizeof(PlanStep))));
  Add(table, 0, 0);
  AddStep(nullptr, 0, 0);
  assert(step_count_ == steps);
  assert(tags_->depth == 0);
  // What is kept is as large as it must be: a recording may need several plans.
  text_ = static_cast<char*>(Allocate(tags_->position + kCopySize));
  std::memcpy(text_, tags_->buffer, tags_->position);
  CloseWriter(tags_);
}

Plan::~Plan() {
  Release(steps_);
  Release(text_);
}

// The text written since the last step stands before this one. Steps in a row ask for their room
// together, at the first of them.
void Plan::AddStep(const Field* f, uint32_t offset, uint32_t step) {
  const uint32_t text_size = tags_->position - text_used_;
  const uint32_t room = text_size + kCopySize + (f != nullptr ? LongestText(*f) : 0);
  if (gathering_ == nullptr || gathering_->room + room > kMostRoom) {
    gathering_ = &steps_[step_count_];
  }
  assert(text_size <= UINT16_MAX);
  const Kind kind = f != nullptr ? f->kind : Kind::kGap;
  steps_[step_count_++] = {f,   text_used_, offset, step, 0, 0, static_cast<uint16_t>(text_size),
                           kind};
  gathering_->room += room;
  text_used_ = tags_->position;
}

void Plan::Add(const Field& f, uint32_t place, uint32_t step) {
  if ((f.cases & which_) == 0 || f.kind == Kind::kGap) return;
  const uint32_t offset = place + f.offset;
  if (!f.repeated) {
    AddRows(f, offset, step);
    return;
  }
  // Counts stand beside the row, so a loop keeps the place of its enclosing group.
  AddStep(&f, place, step);
  const uint32_t loop = step_count_ - 1;
  gathering_ = nullptr;
  AddRows(f, f.offset, f.step);
  AddStep(nullptr, 0, 0);
  gathering_ = nullptr;
  steps_[loop].loop_end = step_count_;
}

void Plan::AddRows(const Field& f, uint32_t offset, uint32_t step) {
  char attributes[64] = "";
  if (f.phase != nullptr) PhaseAttribute(f.phase, attributes, sizeof attributes);
  if (f.kind == Kind::kGroup) {
    if (f.name[0] != '\0') OpenElement(tags_, f.name, attributes);
    uint32_t r = 0;
    if (IsDateTime(f)) {
      r = f.row_count - 1;
      AddMinute(f, r, offset, step);
    }
    for (; r < f.row_count; ++r) {
      Add(f.rows[r], offset, StepOf(f.rows[r], step));
    }
    if (f.name[0] != '\0') CloseElement(tags_);
  } else if (f.own_line) {
    OpenElement(tags_, f.name, attributes);
    AddStep(&f, offset, step);
    CloseElement(tags_);
  } else {
    PutText(tags_, "<");
    PutText(tags_, f.name);
    PutText(tags_, ">");
    AddStep(&f, offset, step);
    PutText(tags_, "</");
    PutText(tags_, f.name);
    PutText(tags_, ">\r\n");
  }
}

// The first rows of a date-time, all but its seconds.
void Plan::AddMinute(const Field& date_time, uint32_t rows, uint32_t offset, uint32_t step) {
  AddStep(&date_time, offset, step);
  PlanStep* minute = &steps_[step_count_ - 1];
  gathering_ = nullptr;
  for (uint32_t r = 0; r < rows; ++r) Add(date_time.rows[r], offset, step);
  gathering_ = nullptr;
  minute->is_minute = true;
  minute->loop_end = step_count_;
}

void Plan::Render(XmlWriter* to, const void* record, const Inputs& inputs) {
  Run(to, 0, step_count_, static_cast<const uint8_t*>(record), 0, inputs);
}

void Plan::Run(XmlWriter* to, uint32_t from, uint32_t end, const uint8_t* base, uint32_t repetition,
               const Inputs& inputs) {
  const char* text = text_;
  char* out = to->buffer + to->position;
  for (uint32_t i = from; i < end; ++i) {
    const PlanStep& s = steps_[i];
    if (s.room != 0) {
      Advance(to, out);
      out = Reserve(to, s.room);
    }
    out = CopyText({text + s.text_at, s.text_size}, out);
    if (s.field == nullptr) continue;
    const uint8_t* at = base + s.offset + static_cast<size_t>(repetition) * s.step;
    if (s.loop_end == 0) {
      out = s.kind == Kind::kF32 ? FloatText(Load<float>(at), out)
                                 : TextOf(*s.field, at, inputs, out);
      continue;
    }
    Advance(to, out);
    if (s.is_minute) {
      RunMinute(to, i, at, base, repetition);
    } else {
      RunLoop(to, i, at, inputs);
    }
    out = to->buffer + to->position;
    i = s.loop_end - 1;
  }
  Advance(to, out);
}

void Plan::RunMinute(XmlWriter* to, uint32_t minute, const uint8_t* at, const uint8_t* base,
                     uint32_t repetition) {
  const auto bytes = Load<uint64_t>(at);
  char* out = Reserve(to, steps_[minute + 1].room);
  if (minute_.size != 0 && minute_.bytes == bytes) {
    std::memcpy(out, minute_.text, sizeof minute_.text);
    return Advance(to, out + minute_.size);
  }
  const uint32_t start = to->position;
  Run(to, minute + 1, steps_[minute].loop_end, base, repetition, {});
  minute_.bytes = bytes;
  minute_.size = to->position - start;
  assert(minute_.size <= sizeof minute_.text);
  std::memcpy(minute_.text, to->buffer + start, sizeof minute_.text);
}

void Plan::RunLoop(XmlWriter* to, uint32_t loop, const uint8_t* place, const Inputs& inputs) {
  const PlanStep& s = steps_[loop];
  const PlanStep& value = steps_[loop + 1];
  const PlanStep& close = steps_[loop + 2];
  const uint32_t count = CountOf(*s.field, place, inputs);
  if (!IsFloatRun(s, value, close)) {
    for (uint32_t n = 0; n < count; ++n) Run(to, loop + 1, s.loop_end, place, n, inputs);
    return;
  }
  // Close tag and the next open tag, side by side.
  char tags[kLongestTags + kCopySize];
  const ReadyText open = {text_ + value.text_at, value.text_size};
  const ReadyText between = {tags, static_cast<uint32_t>(close.text_size) + value.text_size};
  CopyText(open, CopyText({text_ + close.text_at, close.text_size}, tags));
  const uint8_t* values = place + value.offset;
  const uint32_t step = value.step;
  const float scale = inputs.scale[s.field->scale_ref];
  if (s.kind == Kind::kScaledI16) {
    WriteFloats(to, open, between, count, [=](uint32_t n) {
      return static_cast<float>(Load<int16_t>(values + n * step)) * scale;
    });
  } else if (s.kind == Kind::kScaledF32) {
    WriteFloats(to, open, between, count,
                [=](uint32_t n) { return Load<float>(values + n * step) * scale; });
  } else {
    WriteFloats(to, open, between, count,
                [=](uint32_t n) { return Load<float>(values + n * step); });
  }
}

void RenderOnce(XmlWriter* to, const Field& table, Cases which, const void* record,
                const Inputs& inputs) {
  Plan(table, which).Render(to, record, inputs);
}

}  // namespace quorvex
