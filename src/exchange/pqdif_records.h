// The physical side of PQDIF: elements, the bodies that they make, and the chain of records in a
// file.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "exchange/pqdif_names.h"

namespace quorvex::pqdif {

enum class Kind : uint8_t { kCollection = 1, kScalar = 2, kVector = 3 };

// Physical types.
enum class Type : uint8_t {
  kNone = 0,
  kBool4 = 3,
  kChar1 = 10,
  kInt2 = 21,
  kUint4 = 32,
  kReal4 = 40,
  kReal8 = 41,
  kTimestamp = 50,
  kGuid = 60,
};

struct Element {
  Guid tag;
  Kind kind = Kind::kCollection;
  Type type = Type::kNone;
  std::string bytes = {};              // of a scalar, and of a vector's values
  uint32_t count = 0;                  // of a vector's values
  std::vector<Element> elements = {};  // of a collection
};

Element Collection(const Guid& tag, std::vector<Element> elements = {});
Element Number(const Guid& tag, uint32_t value);
Element Flag(const Guid& tag, bool value);
Element Short(const Guid& tag, int16_t value);
Element Real(const Guid& tag, double value);
Element Identifier(const Guid& tag, const Guid& value);
// Microseconds since 1970 began.
Element Time(const Guid& tag, int64_t microseconds);
// Bytes beyond ASCII become question marks, as readers take them for ASCII.
Element Text(const Guid& tag, const std::string& text);
Element Numbers(const Guid& tag, const std::vector<uint32_t>& values);
Element Reals(const Guid& tag, const std::vector<double>& values);
Element Floats(const Guid& tag, const std::vector<float>& values);

// Adler-32.
uint32_t ChecksumOf(const std::string& bytes);
std::string BodyOf(const std::vector<Element>& elements);

// Both false where they were given up.
using Write = std::function<bool(const std::string& bytes)>;
using Compress = std::function<bool(const std::string& body, std::string* compressed)>;

// Readers take offsets for signed.
constexpr uint64_t kLargestFile = (uint64_t{1} << 31) - 1;

// Writes the records of a file one behind the other. A record says where the next one is, and the
// last one that there is none: so one is held back.
class Chain {
 public:
  explicit Chain(Write write) : write_(std::move(write)) {}

  bool Add(const Guid& type, std::string stored_body);
  bool End();
  // How long the file is with what is held back, and with one more record of this body.
  uint64_t SizeWith(uint64_t stored_body) const;

 private:
  bool WriteHeld(uint64_t next);

  Write write_;
  uint64_t written_ = 0;
  bool holds_ = false;
  Guid type_;
  std::string body_;
};

}  // namespace quorvex::pqdif
