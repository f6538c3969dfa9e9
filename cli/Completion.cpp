#include "cli/Manual.h"
#include "cli/options/CommandTree.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace zelto::cli {

namespace {

std::string SwitchNames(const CLI::App& command) {
    std::string names;
    for (const CLI::Option* option : Switches(command)) {
        for (const std::string& name : option->get_lnames())
            names += (names.empty() ? "--" : " --") + name;
        for (const std::string& name : option->get_snames())
            names += (names.empty() ? "-" : " -") + name;
    }
    return names;
}

std::string CommandWords(const CLI::App& command) {
    std::string names;
    for (const CLI::App* each : Subcommands(command))
        names += (names.empty() ? "" : " ") + each->get_name();
    return names;
}

/// Patterns of a shell's `case` for all commands below the program.
std::string AllCommands(const CLI::App& program) {
    std::string patterns;
    ForEachCommand(program, [&](const CLI::App& /*command*/, const std::string& words) {
        if (!words.empty())
            patterns += (patterns.empty() ? "\"" : "|\"") + words + '"';
    });
    return patterns;
}

/// A text between single quotes.
std::string ShellQuoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + '\'';
}

/// "name:description", one line, for zsh's _describe.
std::string Described(const std::string& name, const std::string& description) {
    std::string text;
    for (const char c : description.substr(0, description.find('\n')))
        text += c == ':' ? "\\:" : std::string(1, c);
    return ShellQuoted(name + ":" + text);
}

} // namespace

std::string BashCompletion(const CLI::App& program) {
    std::ostringstream script;
    script << "# Completes the commands and options of zelto; files where an option needs none.\n"
              "_zelto() {\n"
              "    local word=${COMP_WORDS[COMP_CWORD]} command= commands= options= i\n"
              "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
              "        case \"${command:+$command }${COMP_WORDS[i]}\" in\n"
           << "            " << AllCommands(program)
           << ")\n"
              "                command=\"${command:+$command }${COMP_WORDS[i]}\" ;;\n"
              "        esac\n"
              "    done\n"
              "    case \"$command\" in\n";
    ForEachCommand(program, [&](const CLI::App& command, const std::string& words) {
        script << "        \"" << words << "\") commands=\"" << CommandWords(command)
               << "\" options=\"" << SwitchNames(command) << "\" ;;\n";
    });
    script << "    esac\n"
              "    if [[ $word == -* ]]; then\n"
              "        COMPREPLY=($(compgen -W \"$options\" -- \"$word\"))\n"
              "    elif [[ -n $commands ]]; then\n"
              "        COMPREPLY=($(compgen -W \"$commands\" -- \"$word\"))\n"
              "    else\n"
              "        COMPREPLY=()\n"
              "    fi\n"
              "}\n"
              "complete -o default -F _zelto zelto\n";
    return script.str();
}

std::string ZshCompletion(const CLI::App& program) {
    std::ostringstream script;
    script << "#compdef zelto\n"
              "# Completes the commands and options of zelto, and files.\n"
              "_zelto() {\n"
              "    local command= i\n"
              "    local -a commands options\n"
              "    for ((i = 2; i < CURRENT; ++i)); do\n"
              "        case \"${command:+$command }${words[i]}\" in\n"
           << "            " << AllCommands(program)
           << ")\n"
              "                command=\"${command:+$command }${words[i]}\" ;;\n"
              "        esac\n"
              "    done\n"
              "    case \"$command\" in\n";
    ForEachCommand(program, [&](const CLI::App& command, const std::string& words) {
        script << "        \"" << words << "\")\n            commands=(";
        for (const CLI::App* each : Subcommands(command))
            script << "\n                " << Described(each->get_name(), each->get_description());
        script << ")\n            options=(";
        for (const CLI::Option* option : Switches(command))
            for (const std::string& name : option->get_lnames())
                script << "\n                " << Described("--" + name, option->get_description());
        script << ") ;;\n";
    });
    script << "    esac\n"
              "    if [[ $PREFIX == -* ]]; then\n"
              "        _describe -o option options\n"
              "    elif (( $#commands )); then\n"
              "        _describe command commands\n"
              "    else\n"
              "        _files\n"
              "    fi\n"
              "}\n"
              "_zelto \"$@\"\n";
    return script.str();
}

} // namespace zelto::cli
