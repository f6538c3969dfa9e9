#include "cli/options/CommandTree.h"

#include <CLI/CLI.hpp>

namespace zelto::cli {

namespace {

void Visit(const CLI::App& command, const std::string& words,
           const std::function<void(const CLI::App&, const std::string&)>& use) {
    use(command, words);
    for (const CLI::App* each : Subcommands(command))
        Visit(*each, (words.empty() ? "" : words + " ") + each->get_name(), use);
}

} // namespace

std::vector<const CLI::App*> Subcommands(const CLI::App& command) {
    return command.get_subcommands([](const CLI::App* each) { return !each->get_name().empty(); });
}

std::vector<const CLI::Option*> Words(const CLI::App& command) {
    return command.get_options([](const CLI::Option* each) { return each->get_positional(); });
}

std::vector<const CLI::Option*> Switches(const CLI::App& command) {
    return command.get_options([](const CLI::Option* each) {
        return !each->get_positional() && !each->get_group().empty();
    });
}

void ForEachCommand(const CLI::App& program,
                    const std::function<void(const CLI::App&, const std::string&)>& use) {
    Visit(program, "", use);
}

} // namespace zelto::cli
