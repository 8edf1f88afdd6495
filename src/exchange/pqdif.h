// Writes recordings as PQDIF files (IEEE 1159.3).
#pragma once

#include <string>
#include <vector>

#include "exchange/pqdif_observations.h"

namespace quorvex::pqdif {

// An instrument at one measuring point: recordings of it share the definitions of channels.
struct Source {
  std::string model, serial, firmware, place;
  uint8_t wiring = 0;
  double nominal = 0;
  std::vector<Channel> channels;

  bool IsOf(const Source& other) const {
    return model == other.model && serial == other.serial && place == other.place &&
           wiring == other.wiring && nominal == other.nominal;
  }
};

// What the head of a recording says; the model's name is what the instrument is called, in words.
Source SourceOf(const std::string& path, const RecordingHead& head, const std::string& model,
                const std::string& serial);
// Adds the channels that are new.
void AddChannels(const Source& more, Source* source);

struct Options {
  ReadOptions read;
  int64_t created = 0;     // microseconds since 1970 began
  std::string comment;     // of the container
  Compress compress = {};  // null: bodies are written as they are
  uint64_t largest = kLargestFile;
};

// Where the files go. Begin gets the number of the file, from 1, and says what it is called.
struct Files {
  std::function<bool(unsigned number, std::string* name)> begin;
  Write write;
  std::function<bool()> end;
};

// Sources come one after the other, and the recordings of a source with it.
class Writer {
 public:
  Writer(Options options, Files files) : options_(std::move(options)), files_(std::move(files)) {}

  // All are false where a file could not be begun, written or ended.
  bool Begin(const Source& source);
  bool Add(Recorded* recorded);
  bool End();

  uint64_t observations() const { return observations_; }

 private:
  bool BeginFile();
  bool EndFile();
  bool BeginSource();
  bool AddSettings(const RecordingHead& head);
  bool AddRecord(const Guid& type, const std::vector<Element>& elements);
  bool Stored(const std::vector<Element>& elements, std::string* body) const;

  Options options_;
  Files files_;
  unsigned number_ = 0;
  Chain chain_{{}};
  Source source_;
  std::vector<Element> settings_;  // in force
  std::string settings_key_;       // what they are but for the time
  uint64_t observations_ = 0, observations_in_file_ = 0;
};

}  // namespace quorvex::pqdif
