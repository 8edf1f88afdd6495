#include <cstdio>
#include <vector>

#include "shared/checksum.h"
#include "support/platform.h"
// Needs what the line above includes.
#include <bcrypt.h>

namespace quorvex::tool {

bool Sha256Of(const std::string& path, std::string* digits) {
  BCRYPT_ALG_HANDLE algorithm = nullptr;
  BCRYPT_HASH_HANDLE sum = nullptr;
  uint8_t bytes[32];
  bool whole = BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0) == 0 &&
               BCryptCreateHash(algorithm, &sum, nullptr, 0, nullptr, 0, 0) == 0;
  std::FILE* file = whole ? std::fopen(path.c_str(), "rb") : nullptr;
  if (file != nullptr) {
    std::vector<uint8_t> piece(1 << 16);
    size_t got = piece.size();
    while (whole && got == piece.size()) {
      got = std::fread(piece.data(), 1, piece.size(), file);
      whole = BCryptHashData(sum, piece.data(), static_cast<ULONG>(got), 0) == 0;
    }
    whole = whole && std::ferror(file) == 0;
    std::fclose(file);
  }
  whole = whole && file != nullptr && BCryptFinishHash(sum, bytes, sizeof bytes, 0) == 0;
  if (sum != nullptr) BCryptDestroyHash(sum);
  if (algorithm != nullptr) BCryptCloseAlgorithmProvider(algorithm, 0);
  if (whole) *digits = InHexadecimal(bytes, sizeof bytes);
  return whole;
}

}  // namespace quorvex::tool
