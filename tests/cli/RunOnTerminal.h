#pragma once

#include <string>
#include <vector>

namespace zelto::test {

/// Runs the built `zelto` with a terminal for all three streams, and waits for it.
/// @return what the terminal shows, in lines that end with "\r\n"
std::string RunOnTerminal(const std::vector<std::string>& arguments);

} // namespace zelto::test
