// Whether a recording is sound: its head, its size, its counts, its times, its texts. The walk says
// what is written, and the layout tables say where these are. Memory does not grow with the file.
#pragma once

#include <list>
#include <optional>
#include <string>
#include <vector>

#include "findings/findings.h"
#include "findings/places.h"
#include "records/recording_head.h"

namespace quorvex {

// What keeps a recording from being walked: its head is cut short, or its type unknown.
std::optional<Finding> HeadProblem(const RecordingHead& recording);

// What is to be said of general records of a profile that no layout belongs to.
Finding NoLayout(uint32_t profile);

// Listens to a walk and gathers what is wrong.
class Soundness final : public Listener {
 public:
  // `named`: its name is a user's, so that a setting file could be known by it.
  Soundness(const RecordingHead* recording, bool named);
  // Of the whole recording, once its walk is over.
  Findings Result();

  void BeginGroup(const Field& group, const char* phase) override;
  void EndGroup() override;
  void Bytes(const Piece& piece) override;
  bool EndRecord(const RecordEnd& end) override;

 private:
  void Add(Severity severity, FindingKind kind, std::optional<uint64_t> offset, uint64_t record,
           const std::string& element, const std::string& text);
  void CheckSettingFile(bool named);
  void CheckSettings(const Piece& piece);
  void CheckOrder(const Places& places, const Piece& piece, const std::string& path);
  void BeginRecords();
  void TellBehind(uint64_t at, const std::string& what);
  const Places& PlacesIn(const Field& layout);

  const RecordingHead& recording_;
  const RecordType& type_;
  Cases which_;
  Findings findings_;
  std::string remark_;               // where the settings are not the recording's own
  bool begun_ = false;               // the records
  uint64_t end_ = 0;                 // of the records so far
  std::vector<std::string> groups_;  // around the current piece, from the document's list inward
  std::list<Places> places_;         // of the layouts met so far
  uint64_t ordered_ = 0;             // the record whose time was compared last
  uint64_t last_record_ = 0;         // the last one with a point in time, and that
  DateTimeRecord last_{};
};

}  // namespace quorvex
