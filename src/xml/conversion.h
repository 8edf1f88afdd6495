// A recording converted into a document.
#pragma once

#include "records/walk.h"
#include "support/file.h"

namespace quorvex {

// What becomes of a recording.
struct Request {
  const char* output = nullptr;  // null: beside the recording, with the extension ".xml"
  WalkOptions walk;
  GoOn go_on = nullptr;      // see WriteAll; where it says no, the document ends as it stands
  Listener* also = nullptr;  // told what the document is made of, in the same walk
};

// Without a readable recording of a known type there is no document, and with an output that cannot
// be created neither. False then, and where the document is not all there: its writing was given
// up, or the records could not be read.
bool ConvertRecording(RecordingHead* recording, const Request& request);

}  // namespace quorvex
