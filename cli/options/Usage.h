#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace zelto::cli {

/// What is wrong with a command line that could not be parsed, in one line; a word that is no
/// command or option comes with the one that it resembles.
std::string ExplainUsage(const CLI::App& program, const CLI::ParseError& error);

/// The word of the list that `word` is likely meant to be; empty for none.
std::string MostAlike(const std::string& word, const std::vector<std::string>& known);

} // namespace zelto::cli
