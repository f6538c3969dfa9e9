#pragma once

#include <string>

namespace zelto::host {

/// Text of a file as it may be shown on a terminal, in one line: control characters, which could
/// steer it, are written as "\x1b", and bytes that are not UTF-8 become U+FFFD.
std::string Printable(const std::string& text);

/// The same of a text that has lines: those stay.
std::string PrintableLines(const std::string& text);

} // namespace zelto::host
