#include "shared/text_file.h"

#include <cstdio>

#include "shared/scratch.h"
#include "shared/system.h"

namespace quorvex::tool {

namespace {

bool ReadAll(std::FILE* file, std::string* text) {
  char piece[4096];
  size_t got = sizeof piece;
  while (got == sizeof piece) {
    got = std::fread(piece, 1, sizeof piece, file);
    text->append(piece, got);
  }
  return std::ferror(file) == 0;
}

}  // namespace

bool ReadText(const std::string& path, std::string* text) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  const bool whole = ReadAll(file, text);
  std::fclose(file);
  return whole;
}

bool ReadInput(std::string* text) {
  UseBytes(stdin);
  return ReadAll(stdin, text);
}

std::string PutText(const std::string& text, const std::string& folder, const std::string& path,
                    bool replace) {
  Scratch scratch(0);
  if (!scratch.Create(folder)) return LastError();
  std::FILE* file = std::fopen(scratch.path().c_str(), "wb");
  const bool written =
      file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
  std::string problem = written ? "" : LastError();
  if (file != nullptr && std::fclose(file) != 0 && written) problem = LastError();
  if (problem.empty() && !scratch.Become(path, replace)) problem = SystemError();
  return problem;
}

}  // namespace quorvex::tool
