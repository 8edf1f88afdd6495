// One walk goes through a recording (walk.h), and whoever wants something of it listens: a document
// is one listener, a check is another. What a record type decides is decided by its walk: which
// bytes are whose, what stands in for those that a cut file lacks, which scale and which label.
#pragma once

#include <cstdint>

#include "layout/field.h"

namespace quorvex {

// Bytes of a recording under a layout.
struct Piece {
  const Field& layout;  // the same object for all pieces of this kind; it can be compiled once
  const void* bytes;    // as many as the layout speaks of
  uint64_t at;          // their place in the file
  uint64_t present;     // how many of them the file has; the walk made up the others
  uint64_t record;      // counted from 1; 0 in the head
  const Inputs& inputs;
  uint32_t first = 0;  // entries in front of this piece, in a list that comes in several
};

// A record that has been told.
struct RecordEnd {
  uint64_t record;  // counted from 1
  uint64_t at;      // its place in the file
  uint64_t size;    // bytes that it should have, by its layout and its counts
  bool written;     // false for a short record that documents leave out; no piece of it was told
};

// A part of every list of a record has been told.
struct PartEnd {
  uint64_t record;
  uint64_t at;    // the record's place in the file
  uint32_t next;  // the entry that the next part begins with
};

// Nothing is called for a single value: a listener compiles a layout once and runs over the bytes.
// Without an override a listener hears nothing.
class Listener {
 public:
  // What follows up to EndGroup is inside the element of `group`. `phase` is its label, or null.
  virtual void BeginGroup(const Field& /*group*/, const char* /*phase*/) {}
  virtual void EndGroup() {}
  // The layout of the piece is a group, which is told here with all that is in it.
  virtual void Bytes(const Piece& /*piece*/) {}
  // Only where lists are told side by side. False: nothing more is wanted of this recording.
  virtual bool EndPart(const PartEnd& /*end*/) { return true; }
  // False: nothing more is wanted of this recording.
  virtual bool EndRecord(const RecordEnd& /*end*/) { return true; }

 protected:
  ~Listener() = default;  // whoever owns a listener knows what it is
};

// Two listeners of one walk. It ends when either has enough.
class BothListen final : public Listener {
 public:
  BothListen(Listener* first, Listener* second) : first_(first), second_(second) {}
  void BeginGroup(const Field& group, const char* phase) override {
    first_->BeginGroup(group, phase);
    second_->BeginGroup(group, phase);
  }
  void EndGroup() override {
    first_->EndGroup();
    second_->EndGroup();
  }
  void Bytes(const Piece& piece) override {
    first_->Bytes(piece);
    second_->Bytes(piece);
  }
  bool EndRecord(const RecordEnd& end) override {
    const bool wanted = first_->EndRecord(end);
    return second_->EndRecord(end) && wanted;
  }

 private:
  Listener *first_, *second_;
};

}  // namespace quorvex
