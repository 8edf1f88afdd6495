// Checksums of files, as other programs have them.
#pragma once

#include <cstdint>
#include <string>

namespace quorvex::tool {

// The SHA-256 of a file's bytes, in hexadecimal digits. False where it cannot be read: LastError().
bool Sha256Of(const std::string& path, std::string* digits);

inline std::string InHexadecimal(const uint8_t* bytes, size_t size) {
  constexpr char kHexadecimal[] = "0123456789abcdef";
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    text += kHexadecimal[bytes[i] >> 4];
    text += kHexadecimal[bytes[i] & 15];
  }
  return text;
}

}  // namespace quorvex::tool
