// Says and prints what people read, safely for a terminal.
#pragma once

#include <string>

namespace quorvex::tool {

// Makes a text that may come from a recording, or be a file's name, fit for one line of a terminal:
// what would steer it (control characters, marks of writing direction, bytes that are no UTF-8)
// stands as an escape, "\x1B"; in a text that is JSON already, as that has it, "\u001b".
std::string Shown(const std::string& text, bool as_json = false);

// Counts the columns that a text takes on a terminal.
size_t WidthOf(const std::string& text);

// Say "quorvex: FILE: reason" and "quorvex: text" on stderr, the one form that all messages have.
void Complain(const std::string& path, const std::string& reason);
void Say(const std::string& text);

// Tells what messages call a path: "-" where it stands for standard input.
std::string CalledName(const std::string& path);

// Prints a text on stdout. False where it cannot be written; nothing more is printed then.
bool Print(const std::string& text);

// Whether everything printed has arrived; says so where it has not.
bool OutputArrived();

// Writes a number of bytes as "1.2 MB".
std::string ShortSize(double bytes);

}  // namespace quorvex::tool
