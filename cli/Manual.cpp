#include "cli/Manual.h"

#include "cli/options/CommandTree.h"
#include "host/base/Failure.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace zelto::cli {

namespace {

/// Text as roff shows it: a minus stays one, a backslash is none of roff's.
std::string Roff(const std::string& text) {
    std::string escaped;
    bool lineStart = true;
    for (const char c : text) {
        if (lineStart && (c == '.' || c == '\''))
            escaped += "\\&";
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else
            escaped += c;
        lineStart = c == '\n';
    }
    return escaped;
}

/// "zelto", "zelto render"
std::string FullName(const CLI::App& command) {
    const CLI::App* const parent = command.get_parent();
    return parent == nullptr ? command.get_name() : FullName(*parent) + " " + command.get_name();
}

/// Name of the page: "zelto-render".
std::string PageName(const CLI::App& command) {
    std::string name = FullName(command);
    for (char& c : name)
        c = c == ' ' ? '-' : c;
    return name;
}

std::string Synopsis(const CLI::App& command) {
    std::string text = ".B " + Roff(FullName(command)) + "\n";
    if (!Subcommands(command).empty())
        return text + ".I COMMAND\n[options]\n";
    text += "[options]";
    for (const CLI::Option* word : Words(command)) {
        const bool many = word->get_items_expected_max() > 1;
        const std::string name = word->get_name(true) + (many ? "…" : "");
        text += word->get_required() ? "\n.I " + Roff(name) : "\n.RI [ " + Roff(name) + " ]";
    }
    return text + "\n";
}

void AddTerm(std::ostream& page, const std::string& term, const std::string& text) {
    page << ".TP\n.B " << Roff(term) << '\n' << Roff(text) << '\n';
}

void AddOptions(std::ostream& page, const CLI::App& command) {
    for (const CLI::Option* word : Words(command))
        if (!word->get_description().empty())
            AddTerm(page, word->get_name(true), word->get_description());
    for (const CLI::Option* option : Switches(command)) {
        const bool takesValue = option->get_items_expected_max() > 0;
        AddTerm(page, option->get_name(false, true) + (takesValue ? " VALUE" : ""),
                option->get_description());
    }
}

void AddFooter(std::ostream& page, const CLI::App& command) {
    std::string footer = command.get_footer();
    // A command without a footer has that of the one it belongs to.
    if (command.get_parent() != nullptr && footer == command.get_parent()->get_footer())
        return;
    while (!footer.empty() && footer.front() == '\n')
        footer.erase(0, 1);
    if (!footer.empty())
        page << ".PP\n.nf\n" << Roff(footer) << "\n.fi\n";
}

void AddCommands(std::ostream& page, const CLI::App& command) {
    const auto commands = Subcommands(command);
    if (commands.empty())
        return;
    page << ".SH COMMANDS\n";
    for (const CLI::App* each : commands) {
        if (command.get_parent() == nullptr) {
            AddTerm(page, each->get_name(),
                    each->get_description() + "; see " + PageName(*each) + "(1)");
            continue;
        }
        page << ".SS " << Roff(FullName(*each)) << '\n'
             << Roff(each->get_description()) << ".\n.PP\n"
             << Synopsis(*each);
        AddOptions(page, *each);
        AddFooter(page, *each);
    }
}

constexpr const char* EXIT_STATUS =
    ".SH EXIT STATUS\n.TP\n0\ndone\n.TP\n1\nthe work failed, or standard output could not be "
    "written: one line has the file and the reason\n.TP\n2\nwrong usage\n.TP\n130\ninterrupted\n";

/// First lines of a description are names for people: "zelto: look into …".
std::string Summary(const CLI::App& command) {
    const std::string text = command.get_description();
    const std::string line = text.substr(0, text.find('\n'));
    return line.rfind("zelto: ", 0) == 0 ? line.substr(7) : line;
}

void WriteText(const std::filesystem::path& path, const std::string& text) {
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    if (!file)
        throw host::Failure(path.string(), std::strerror(errno));
}

} // namespace

std::string ManualPage(const CLI::App& command, const std::string& version) {
    std::ostringstream page;
    page << ".TH " << PageName(command) << " 1 \"\" \"" << version << "\" \"User commands\"\n"
         << ".SH NAME\n"
         << Roff(PageName(command)) << " \\- " << Roff(Summary(command)) << '\n'
         << ".SH SYNOPSIS\n"
         << Synopsis(command) << ".SH DESCRIPTION\n"
         << Roff(command.get_description()) << ".\n";
    AddFooter(page, command);
    if (Subcommands(command).empty())
        page << ".SH OPTIONS\n";
    AddOptions(page, command);
    AddCommands(page, command);
    page << EXIT_STATUS;
    return page.str();
}

void WriteManual(const CLI::App& program, const std::string& version, const std::string& folder) {
    const std::filesystem::path base(folder);
    const std::filesystem::path pages = base / "man/man1";
    WriteText(pages / "zelto.1", ManualPage(program, version));
    for (const CLI::App* command : Subcommands(program))
        WriteText(pages / (PageName(*command) + ".1"), ManualPage(*command, version));
    WriteText(base / "bash-completion/completions/zelto", BashCompletion(program));
    WriteText(base / "zsh/site-functions/_zelto", ZshCompletion(program));
}

} // namespace zelto::cli
