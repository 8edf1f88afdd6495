// What a recording is, as far as its head and its last record tell.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "records/information.h"
#include "records/recording_head.h"

namespace quorvex {

// A field of the information line, with its text as the line has it.
struct Fact {
  InfoValue value;
  std::string text;
};

// A value of it for programs: "2024-03-07T14:05:09.123", "900", "248.7", "Rise".
struct PlainFact {
  std::string key;   // "pretrigger_periods"
  std::string text;  // empty where it is not known
  const char* unit = "";
  enum class Is : uint8_t { kText, kInteger, kReal } is = Is::kText;
  int64_t time = kNoTime;  // of a time, as MicrosecondsOf
};
std::string KeyOf(const InfoField& field);
// A level gives two, what it comes to and its percentage; what is not shown gives none.
std::vector<PlainFact> PlainFacts(const Fact& fact);

struct Facts {
  std::vector<Fact> values;
  const char* end_from = nullptr;  // "records", "settings" or "estimate"; null without an end
  std::optional<std::string> instrument, serial, connection;
};

// Of a recording whose head is whole. Its settings are those of a setting file from then on, where
// there is one.
Facts FactsOf(RecordingHead* head);

// Whole records; nothing where they differ in size, or have no layout.
std::optional<uint64_t> WholeRecords(const RecordingHead& head);

}  // namespace quorvex
