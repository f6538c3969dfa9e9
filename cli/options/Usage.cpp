#include "cli/options/Usage.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace zelto::cli {

namespace {

/// Number of letters to insert, remove, replace or exchange with their neighbour that make one
/// word the other.
std::size_t Distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> beforeLast;
    std::vector<std::size_t> last(b.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::vector<std::size_t> row(b.size() + 1, i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast = std::exchange(last, std::move(row));
    }
    return last.back();
}

std::vector<std::string> CommandNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::App* sub : command.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(sub->get_name());
    return names;
}

std::vector<std::string> OptionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    return names;
}

/// "did you mean" where there is something to suggest.
std::string WithSuggestion(const std::string& line, const std::string& word,
                           const std::vector<std::string>& known) {
    const std::string meant = MostAlike(word, known);
    return meant.empty() ? line : line + "; did you mean '" + meant + "'?";
}

/// The command that the line has reached. Its name, with those of the commands it is one of, is
/// appended to `words`.
const CLI::App& DeepestCommand(const CLI::App& program, std::string& words) {
    const CLI::App* command = &program;
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
        words += (words.empty() ? "" : " ") + command->get_name();
    }
    return *command;
}

/// What is wrong with the words that were left over; empty when that says nothing.
std::string ExplainExtras(const CLI::App& command, const std::vector<std::string>& extras) {
    const std::vector<std::string> commands = CommandNames(command);
    for (const std::string& extra : extras) {
        if (extra.size() > 1 && extra.front() == '-') {
            const std::string name = extra.substr(0, extra.find('='));
            return WithSuggestion("unknown option '" + name + '\'', name, OptionNames(command));
        }
        if (!commands.empty())
            return WithSuggestion("unknown command '" + extra + '\'', extra, commands);
    }
    return {};
}

} // namespace

std::string MostAlike(const std::string& word, const std::vector<std::string>& known) {
    // Two thirds of the letters must be right.
    std::size_t least = std::max<std::size_t>(word.size() / 3, 1) + 1;
    std::string best;
    for (const std::string& candidate : known) {
        const std::size_t distance = Distance(word, candidate);
        if (distance < least) {
            least = distance;
            best = candidate;
        }
    }
    return best;
}

std::string ExplainUsage(const CLI::App& program, const CLI::ParseError& error) {
    std::string words;
    const CLI::App& command = DeepestCommand(program, words);
    std::string line = ExplainExtras(command, program.remaining(true));
    if (line.empty())
        line = error.what();
    return words.empty() ? line : words + ": " + line;
}

} // namespace zelto::cli
