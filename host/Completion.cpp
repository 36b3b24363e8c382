#include "host/Completion.h"

#include <string_view>
#include <vector>

#include "common/util/Strings.h"
#include "machine/FaultPlan.h"

namespace host {

namespace {

/// Completes a file's name, which may hold blanks.
constexpr std::string_view kFiles = "mapfile -t COMPREPLY < <(compgen -f -- \"$word\")";

std::string LongNames(const CLI::App& app) {
    std::string words;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            words += (words.empty() ? "--" : " --") + name;
        }
    }
    return words;
}

/// The branch of a "case" that completes what follows an option.
std::string Branch(const CLI::Option& option) {
    std::string words = option.get_type_name();
    const bool isFile = words == "FILE";
    for (char& character : words) {
        character = character == '|' ? ' ' : character;
    }
    std::string how;
    if (isFile) {
        return "    --" + option.get_lnames().front() + ") " + std::string(kFiles) +
               "; return ;;\n";
    }
    if (words == "SPEC") {
        how = "-W \"$faults\"";
    } else if (option.get_type_name().find('|') != std::string::npos || words == "bash") {
        how = "-W '" + words + "'";
    } else {
        return {};
    }
    return "    --" + option.get_lnames().front() + ") COMPREPLY=($(compgen " + how +
           " -- \"$word\")); return ;;\n";
}

std::string Branches(const CLI::App& app) {
    std::string branches;
    for (const CLI::Option* const option : app.get_options()) {
        if (!option->get_lnames().empty()) {
            branches += Branch(*option);
        }
    }
    return branches;
}

}  // namespace

std::string BashCompletion(const CLI::App& app) {
    std::string subcommands;
    std::string options;
    std::string branches = Branches(app);
    for (const CLI::App* const subcommand : app.get_subcommands({})) {
        const std::string& name = subcommand->get_name();
        subcommands += (subcommands.empty() ? "" : " ") + name;
        options += "    " + name + ") options=\"$options " + LongNames(*subcommand) + "\" ;;\n";
        branches += Branches(*subcommand);
    }
    std::string faults;
    for (const machine::FaultPoint& point : machine::FaultPoints()) {
        faults += (faults.empty() ? "" : " ") + std::string(point.name);
    }
    return "# Completion of toolbox-host for bash:\n"
           "#     toolbox-host --completion bash >file; . ./file\n"
           "_toolbox_host() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} subcommand= each\n"
           "    local subcommands='" +
           subcommands + "'\n    local options='" + LongNames(app) + "'\n    local faults='" +
           faults +
           "'\n"
           "    for each in \"${COMP_WORDS[@]:1:COMP_CWORD-1}\"; do\n"
           "        case \" $subcommands \" in *\" $each \"*) subcommand=$each ;; esac\n"
           "    done\n"
           "    case ${COMP_WORDS[COMP_CWORD-1]} in\n" +
           branches +
           "    esac\n"
           "    case $subcommand in\n" +
           options +
           "    esac\n"
           "    case $word in\n"
           "    -*) COMPREPLY=($(compgen -W \"$options\" -- \"$word\")) ;;\n"
           "    *)\n"
           "        if [ -n \"$subcommand\" ]; then\n"
           "            " +
           std::string(kFiles) +
           "\n"
           "        else\n"
           "            COMPREPLY=($(compgen -W \"$subcommands\" -- \"$word\"))\n"
           "        fi ;;\n"
           "    esac\n"
           "}\n"
           "complete -o filenames -F _toolbox_host toolbox-host toolbox-host.exe ./run\n";
}

std::string FaultNames() {
    constexpr std::size_t kWidth = 96;
    std::string text;
    std::string line = " ";
    for (const machine::FaultPoint& point : machine::FaultPoints()) {
        if (line.size() + 1 + point.name.size() > kWidth) {
            text += line + "\n";
            line = " ";
        }
        line += " " + std::string(point.name);
    }
    return text + line;
}

}  // namespace host
