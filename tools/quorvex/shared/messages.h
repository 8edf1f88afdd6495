// What people read: messages, and texts made safe for a terminal.
#pragma once

#include <string>

namespace quorvex::tool {

// Text that may come from a recording or be a file's name, for one line of a terminal: what would
// steer it (control characters, marks of writing direction, bytes that are no UTF-8) stands as an
// escape, "\x1B"; in a text that is JSON already, as that has it, "\u001b".
std::string Shown(const std::string& text, bool as_json = false);

// Columns that a text takes on a terminal.
size_t WidthOf(const std::string& text);

// "FILE: reason" on stderr, in the one form that all messages have.
void Complain(const std::string& path, const std::string& reason);
void Say(const std::string& text);

// What a path is called: "-" where it stands for standard input.
std::string CalledName(const std::string& path);

// A text on stdout. False where it cannot be written; nothing more is printed then.
bool Print(const std::string& text);

// Whether everything printed has arrived; says so where it has not.
bool OutputArrived();

// "1.2 MB"
std::string ShortSize(double bytes);

}  // namespace quorvex::tool
