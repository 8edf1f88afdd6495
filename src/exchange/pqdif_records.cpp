#include "exchange/pqdif_records.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "support/loads.h"

namespace quorvex::pqdif {
namespace {

constexpr uint32_t kHeaderSize = 64;
constexpr uint32_t kEntrySize = 28;
constexpr uint32_t kMostEmbedded = 8;

template <typename T>
std::string BytesOf(const T& value) {
  std::string bytes(sizeof value, '\0');
  Store(bytes.data(), value);
  return bytes;
}
template <typename T>
std::string BytesOf(const std::vector<T>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

// One not-a-number, as processors make different ones.
template <typename T>
std::vector<T> OneNan(std::vector<T> values) {
  for (T& value : values) {
    if (std::isnan(value)) value = std::numeric_limits<T>::quiet_NaN();
  }
  return values;
}

bool IsEmbedded(const Element& element) {
  return element.kind == Kind::kScalar && element.bytes.size() <= kMostEmbedded;
}

uint64_t Padded(uint64_t size) { return (size + 3) / 4 * 4; }

uint64_t SizeOf(const std::vector<Element>& elements);
// Where it is not embedded.
uint64_t SizeOf(const Element& element) {
  if (element.kind == Kind::kCollection) return SizeOf(element.elements);
  return Padded(element.bytes.size() + (element.kind == Kind::kVector ? 4 : 0));
}
uint64_t SizeOf(const std::vector<Element>& elements) {
  uint64_t size = 4 + kEntrySize * uint64_t{elements.size()};
  for (const Element& element : elements) size += IsEmbedded(element) ? 0 : SizeOf(element);
  return size;
}

void Append(const std::vector<Element>& elements, std::string* body) {
  *body += BytesOf(static_cast<uint32_t>(elements.size()));
  uint64_t at = body->size() + kEntrySize * elements.size();
  for (const Element& element : elements) {
    *body += BytesOf(element.tag);
    *body += static_cast<char>(element.kind);
    *body += static_cast<char>(element.type);
    *body += static_cast<char>(IsEmbedded(element));
    *body += '\0';
    if (IsEmbedded(element)) {
      *body += element.bytes;
      body->append(kMostEmbedded - element.bytes.size(), '\0');
    } else {
      const uint64_t size = SizeOf(element);
      *body += BytesOf(static_cast<uint32_t>(at)) + BytesOf(static_cast<uint32_t>(size));
      at += size;
    }
  }
  for (const Element& element : elements) {
    if (IsEmbedded(element)) continue;
    if (element.kind == Kind::kCollection) {
      Append(element.elements, body);
      continue;
    }
    if (element.kind == Kind::kVector) *body += BytesOf(element.count);
    *body += element.bytes;
    body->resize(Padded(body->size()));
  }
}

Element Scalar(const Guid& tag, Type type, std::string bytes) {
  return {tag, Kind::kScalar, type, std::move(bytes)};
}

}  // namespace

Element Collection(const Guid& tag, std::vector<Element> elements) {
  Element collection = {tag};
  collection.elements = std::move(elements);
  return collection;
}
Element Number(const Guid& tag, uint32_t value) {
  return Scalar(tag, Type::kUint4, BytesOf(value));
}
Element Flag(const Guid& tag, bool value) {
  return Scalar(tag, Type::kBool4, BytesOf(uint32_t{value}));
}
Element Short(const Guid& tag, int16_t value) { return Scalar(tag, Type::kInt2, BytesOf(value)); }
Element Real(const Guid& tag, double value) {
  return Scalar(tag, Type::kReal8, BytesOf(OneNan(std::vector<double>{value})));
}
Element Identifier(const Guid& tag, const Guid& value) {
  return Scalar(tag, Type::kGuid, BytesOf(value));
}

Element Time(const Guid& tag, int64_t microseconds) {
  constexpr int64_t kDay = int64_t{86400} * 1000000;
  constexpr int64_t kDayOf1970 = 25569;
  const int64_t of_day = (microseconds % kDay + kDay) % kDay;
  const auto day = static_cast<uint32_t>((microseconds - of_day) / kDay + kDayOf1970);
  return Scalar(tag, Type::kTimestamp, BytesOf(day) + BytesOf(static_cast<double>(of_day) / 1e6));
}

Element Text(const Guid& tag, const std::string& text) {
  std::string bytes;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    // Of a character in several bytes the first one stands for all.
    if (byte < 0x80 || byte >= 0xC0) bytes += byte < 0x80 ? c : '?';
  }
  bytes += '\0';
  const auto count = static_cast<uint32_t>(bytes.size());
  return {tag, Kind::kVector, Type::kChar1, std::move(bytes), count};
}

Element Numbers(const Guid& tag, const std::vector<uint32_t>& values) {
  return {tag, Kind::kVector, Type::kUint4, BytesOf(values), static_cast<uint32_t>(values.size())};
}
Element Reals(const Guid& tag, const std::vector<double>& values) {
  return {tag, Kind::kVector, Type::kReal8, BytesOf(OneNan(values)),
          static_cast<uint32_t>(values.size())};
}
Element Floats(const Guid& tag, const std::vector<float>& values) {
  return {tag, Kind::kVector, Type::kReal4, BytesOf(OneNan(values)),
          static_cast<uint32_t>(values.size())};
}

uint32_t ChecksumOf(const std::string& bytes) {
  constexpr uint32_t kModulus = 65521;
  constexpr size_t kPiece = 5552;  // as many as 32 bits can add up
  uint32_t low = 1, high = 0;
  for (size_t at = 0; at < bytes.size();) {
    const size_t end = std::min(at + kPiece, bytes.size());
    for (; at < end; ++at) {
      low += static_cast<unsigned char>(bytes[at]);
      high += low;
    }
    low %= kModulus;
    high %= kModulus;
  }
  return high << 16 | low;
}

std::string BodyOf(const std::vector<Element>& elements) {
  std::string body;
  body.reserve(SizeOf(elements));
  Append(elements, &body);
  return body;
}

uint64_t Chain::SizeWith(uint64_t stored_body) const {
  return written_ + (holds_ ? kHeaderSize + body_.size() : 0) + kHeaderSize + stored_body;
}

bool Chain::Add(const Guid& type, std::string stored_body) {
  if (holds_ && !WriteHeld(written_ + kHeaderSize + body_.size())) return false;
  type_ = type;
  body_ = std::move(stored_body);
  holds_ = true;
  return true;
}

bool Chain::End() { return !holds_ || WriteHeld(0); }

bool Chain::WriteHeld(uint64_t next) {
  std::string header = BytesOf(kSignature) + BytesOf(type_);
  for (const uint64_t value :
       {uint64_t{kHeaderSize}, uint64_t{body_.size()}, next, uint64_t{ChecksumOf(body_)}}) {
    header += BytesOf(static_cast<uint32_t>(value));
  }
  header.resize(kHeaderSize);
  if (!write_(header) || !write_(body_)) return false;
  written_ += kHeaderSize + body_.size();
  holds_ = false;
  body_.clear();
  return true;
}

}  // namespace quorvex::pqdif
