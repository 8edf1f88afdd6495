#include <nettle/sha2.h>

#include <cstdio>
#include <vector>

#include "shared/checksum.h"

namespace quorvex::tool {

bool Sha256Of(const std::string& path, std::string* digits) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  sha256_ctx sum{};
  sha256_init(&sum);
  constexpr size_t kPiece = 1 << 16;
  std::vector<uint8_t> piece(kPiece);
  for (size_t got = kPiece; got == kPiece;) {
    got = std::fread(piece.data(), 1, kPiece, file);
    sha256_update(&sum, got, piece.data());
  }
  const bool whole = std::ferror(file) == 0;
  std::fclose(file);
  uint8_t bytes[SHA256_DIGEST_SIZE];
  sha256_digest(&sum, sizeof bytes, bytes);
  *digits = InHexadecimal(bytes, sizeof bytes);
  return whole;
}

}  // namespace quorvex::tool
