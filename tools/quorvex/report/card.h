// What a report knows of a card: its recordings, what they say of the network, and what happened.
#pragma once

#include <string>
#include <vector>

#include "assessment/indices.h"
#include "assessment/voltage_events.h"
#include "report/listings.h"
#include "shared/inspection.h"

namespace quorvex::tool {

struct CardRecording {
  std::string path;
  Recording recording;
  Findings findings;
  std::string instrument, serial, connection;  // in words
  std::string place;                           // short name of the settings
  std::string layout;                          // as tables are called: "general_full"
  Span time = {kNoTime, kNoTime};
  std::string used_for;  // in words; empty where it is left out
  std::string left_out;  // why
  uint8_t wiring = 0;    // code
  uint32_t interval = 0;
  double nominal = 0, frequency = 0, signals[2] = {};

  uint32_t type() const { return recording.type != nullptr ? recording.type->type : 0; }
};

// Recordings that continue each other, and what they come to.
struct Chain {
  std::vector<size_t> recordings;
  Assessment assessment;
};

struct CardEvents {
  size_t recording;
  RecordedEvents recorded;
};

struct Card {
  std::vector<CardRecording> recordings;
  std::vector<Chain> chains;
  std::vector<CardEvents> events;
  std::vector<Listing> listings;
};

struct ReportRequest {
  Limits limits;
  double nominal = 0;  // V; 0: of the settings
  ReadOptions read;    // with the offset to UTC
};

// Reads all recordings. What cannot be read is on the card too, with the reason.
Card ReadCard(const std::vector<std::string>& paths, const ReportRequest& request);

// "2024-03-05T09:17:32.120", with a Z behind it where times are UTC; empty for none.
std::string TimeOf(int64_t microseconds, const ReportRequest& request);

// The paths of some recordings, as people know them.
std::string NameOf(const Card& card, size_t recording);

}  // namespace quorvex::tool
