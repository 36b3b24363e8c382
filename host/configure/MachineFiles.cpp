#include "host/configure/MachineFiles.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "host/Files.h"
#include "host/HostError.h"
#include "host/Text.h"
#include "host/snapshot/Snapshot.h"
#include "machine/MachineFile.h"

namespace host::configure {

namespace {

constexpr const char* kMask = "***";

/// Masks one of a method's parameters: Name="PC7", UserName="joiner", Password=***
void MaskParameter(std::string& text, const std::string& name) {
    const std::string opening = name + "=\"";
    const std::size_t start = text.find(opening);
    if (start == std::string::npos) {
        return;
    }
    const std::size_t value = start + opening.size();
    const std::size_t end = text.find("\", ", value);
    text.replace(value, std::min(end, text.size() - 1) - value, kMask);
}

void MaskAccount(machine::TraceEntry& entry) {
    bool isUserName = false;
    for (auto& [name, value] : entry.arguments) {
        if (name == "user") {
            value = value.empty() ? value : kMask;
        } else if (name == "in") {
            MaskParameter(value, "UserName");
        } else if (name == "name") {
            isUserName = value == "UserName";
        } else if (name == "value" && isUserName) {
            value = kMask;
        }
    }
}

}  // namespace

machine::State LoadMachine(const std::string& file) {
    const std::string text = ReadWholeFile(file);
    try {
        return machine::ParseState(text);
    } catch (const machine::MachineFileError& error) {
        throw HostError(file + ": " + error.what(), kBadInput);
    }
}

std::string MachineChoice::Name() const {
    return thisMachine ? "this machine" : file.empty() ? "the embedded machine" : file;
}

std::string MachineChoice::Options() const {
    return thisMachine ? " --this-machine" : file.empty() ? "" : " --machine " + ShellWord(file);
}

machine::State MachineChoice::Read(Output& output) const {
    if (!thisMachine) {
        return file.empty() ? machine::DefaultState() : LoadMachine(file);
    }
    snapshot::Snapshot taken = snapshot::TakeSnapshot();
    for (const std::string& note : taken.notes) {
        output.Note(note);
    }
    return std::move(taken.state);
}

void AddMachineOptions(CLI::App& command, MachineChoice& choice) {
    CLI::Option* const machine = AddFile(command, "--machine", choice.file,
                                         "A machine file; without it the embedded machine");
    command.add_flag("--this-machine", choice.thisMachine, "The real machine")->excludes(machine);
}

void SaveMachine(machine::State machine, const std::string& file, bool withPasswords) {
    if (!withPasswords) {
        for (machine::Domain& domain : machine.domains) {
            for (machine::Account& account : domain.accounts) {
                // Not empty: a configuration without a password would get in.
                account.password = "(not saved)";
            }
        }
    }
    WriteWholeFile(file, machine::FormatState(machine));
}

void WriteTrace(machine::Trace trace, const std::string& file) {
    for (std::size_t i = 0; i < trace.Size(); ++i) {
        MaskAccount(trace.At(i));
    }
    std::ostringstream text;
    trace.WriteFor(file, text);
    WriteWholeFile(file, text.str());
}

}  // namespace host::configure
