// Configuration text down to the command list and through a whole request, on a machine in memory,
// once more with a failing query.
// A comment in the first line chooses the machine: m makes it a domain member, d puts its adapters
// on DHCP, r gives it routes, c takes its cryptography library away, f lets its methods fail.
#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "common/config/Analyzer.h"
#include "common/config/ConfigBuilder.h"
#include "common/config/command/ChangeCompName.h"
#include "common/config/command/ConfigureNic.h"
#include "common/config/command/JoinDomain.h"
#include "common/config/command/Reboot.h"
#include "common/config/command/SetStatic.h"
#include "common/config/command/Sleep.h"
#include "common/err/GeneralError.h"
#include "common/sys/CryptoDll.h"
#include "common/sys/nic/NicDiscovery.h"
#include "common/util/Strings.h"
#include "fuzz/MemoryFile.h"
#include "fuzz/Require.h"
#include "machine/native/Machine.h"
#include "tests/native/CommandText.h"
#include "tests/native/Machines.h"
#include "toolbox/config/ConfigurationFileEvents.h"
#include "toolbox/config/HostInterface.h"
#include "toolbox/config/IniFile.h"

namespace {

using config::command::ChangeCompName;
using config::command::CommandList;
using config::command::ConfigureNic;
using config::command::IConfigureCommand;
using config::command::JoinDomain;
using config::command::kNotSet;
using config::command::NicCommand;
using config::command::Reboot;
using config::command::SetStatic;
using config::command::Sleep;

/// Counts above this are left to the tests, because a search is worth its speed.
constexpr std::int64_t kLargestCount = 2000;

void SetUpMachine(const std::string& text) {
    const std::string flags = text.starts_with(';') ? text.substr(1, text.find('\n')) : "";
    const auto has = [&flags](char flag) { return flags.find(flag) != std::string::npos; };
    machine::State state = native::FourAdapters();
    machine::Adapter& first = state.adapters[1];
    first.dhcpEnabled = state.adapters[2].dhcpEnabled = has('d');
    first.ipAddress = machine::TextList{"10.0.0.1"};
    first.gateways = machine::TextList{"10.0.0.254"};
    first.dnsServers = machine::TextList{"10.0.0.53"};
    state.dnsSuffixes = {"corp.example"};
    state.hosts = {{"host", {"10.0.0.7"}}, {"nowhere", {}}};
    if (has('c')) {
        state.system.libCrypto = machine::CryptoLibrary::kAbsent;
    }
    if (has('m')) {
        state.membership = machine::Membership::OfDomain("CORP", "corp.example");
        state.domains[0].units[0].computers = {"PC1"};
    }
    if (has('r')) {
        state.routes = {{"0.0.0.0", "0.0.0.0", "10.0.0.254", 1},
                        {"10.0.0.0", "255.0.0.0", "10.0.0.9", 5}};
    }
    native::Reset(std::move(state)).faults =
        machine::FaultPlan::Parse(has('f') ? "EnableDHCP=84,SetGateways=2,Rename=5" : "");
}

bool TakesLong(IniFile& file) {
    std::int64_t sum = 0;
    std::string section;
    for (std::uint32_t result = file.GetFirstSection(section); result == IniFile::kSuccess;
         result = file.GetNextSection(section)) {
        for (const char* const key : {"DNS-Server-Count", "Static-Route-Count"}) {
            std::string count;
            file.GetValue(section, key, count);
            const std::int64_t number = util::StringToInt(count);
            sum += number > ConfigurationFileEvents::kMaximumCount ? 0 : std::max(number, 0L);
        }
    }
    return sum > kLargestCount;
}

template <class Command>
bool Is(const std::unique_ptr<IConfigureCommand>& command) {
    return dynamic_cast<Command*>(command.get()) != nullptr;
}

template <class Command>
std::ptrdiff_t Count(const CommandList& list) {
    return std::ranges::count_if(list, Is<Command>);
}

template <class Command>
std::ptrdiff_t First(const CommandList& list) {
    return std::ranges::find_if(list, Is<Command>) - list.begin();
}

void RequireWellFormed(ConfigureNic& nic) {
    const CommandList& list = nic.Commands();
    REQUIRE(nic.NicIndex() == 7 || nic.NicIndex() == 9 || nic.NicIndex() == kNotSet);
    const bool isStatic = Count<SetStatic>(list) > 0;
    REQUIRE(Count<Sleep>(list) == (isStatic ? 1 : 0));
    REQUIRE(!isStatic || First<Sleep>(list) == First<SetStatic>(list) + 1);
    for (const auto& command : list) {
        REQUIRE(Is<NicCommand>(command) || Is<Sleep>(command));
    }
}

void RequireWellFormed(const CommandList& list) {
    int bound7 = 0;
    int bound9 = 0;
    for (const auto& command : list) {
        REQUIRE(command->IsNeeded());
        if (auto* const nic = dynamic_cast<ConfigureNic*>(command.get())) {
            RequireWellFormed(*nic);
            bound7 += nic->NicIndex() == 7 ? 1 : 0;
            bound9 += nic->NicIndex() == 9 ? 1 : 0;
        }
    }
    REQUIRE(bound7 <= 1 && bound9 <= bound7);  // in the tree's order, each adapter once

    const bool renames = Count<ChangeCompName>(list) > 0;
    const bool joins = Count<JoinDomain>(list) > 0;
    REQUIRE(!(renames || joins) || Is<Reboot>(list.back()));
    if (renames && joins) {
        REQUIRE(First<ChangeCompName>(list) < First<JoinDomain>(list));
        REQUIRE(First<Reboot>(list) == First<ChangeCompName>(list) + 1);
    }
    REQUIRE(Count<Reboot>(list) <= (renames && joins ? 2 : 1));
}

/// The command list of the file as text, or the error that it ends with; errors of other families
/// end the fuzzer.
std::string ListOf(IniFile& file) {
    logging::NullLogSink log;
    config::ConfigBuilder builder(log);
    ConfigurationFileEvents events(
        file,
        [&builder](std::uint32_t kind, std::uint32_t type, std::string_view value) {
            builder.ConfigEvent(kind, type, std::string(value));
        },
        [] { return std::make_unique<sys::CryptoDll>(); });
    try {
        events.SuppressesReboot();
        events.SendSections();
        config::Analyze(builder);
        REQUIRE(native::ActionsOf(native::TheMachine().trace.Entries()).empty());
        RequireWellFormed(builder.Commands());
        return native::TextOf(builder.Commands());
    } catch (const err::CGeneralError&) {
        return native::ErrorText();
    }
}

/// A host that requires finished lines in which every "%" is doubled.
class Host final : public IHostMessage, public IHostLogSink {
public:
    explicit Host(std::string path) : path_(std::move(path)) {}

    std::string reply;

    void WriteInteger(const char* /*name*/, std::int32_t /*value*/) override { std::abort(); }
    void WriteText(const char* /*name*/, const char* /*value*/) override { std::abort(); }
    void SetField(const char* name, const char* value) override {
        reply += std::string(name) + "=" + value + " ";
    }
    const char* GetKind() override { return "Internal"; }
    const char* GetName() override { return "Configure"; }
    const char* GetField(const char* /*name*/) override { return path_.c_str(); }
    void ReadInteger(const char* /*name*/, std::int32_t* /*value*/) override { std::abort(); }
    void Log(std::uint32_t level, const char* format, ...) override {
        REQUIRE(level <= 2);
        if (std::string(format).find("%s:%d ") != std::string::npos) {
            return;  // the dispatch's own lines, with arguments
        }
        for (const char* at = format; *at != 0; ++at) {
            if (*at == '%') {
                ++at;
                REQUIRE(*at == '%');
            }
        }
    }

private:
    std::string path_;
};

void RequireProperEnd() {
    REQUIRE(native::TheMachine().files.size() == 1);
    REQUIRE(native::TheMachine().loadedLibraries == 0);
}

void RequireProperAnswer(const std::string& path) {
    native::Machine& machine = native::TheMachine();
    machine.files = {path};
    Host host(path);
    REQUIRE(GetToolboxAPI()->DoMagic(&host, &host) == 1);
    REQUIRE(host.reply == "Result=Success " || host.reply == "Result=Reboot " ||
            host.reply == "Result=Failure Status-Module=Tovrune Status-Code=3 " ||
            host.reply.starts_with("Result=Failure Status-Module=Win32 Status-Code="));
    REQUIRE((host.reply == "Result=Reboot ") == machine.files.contains(path));
    RequireProperEnd();
}

/// The same where one query fails, which is answered.
void RequireProperFailure(const std::string& path, std::size_t failing) {
    native::Machine& machine = native::TheMachine();
    machine.files = {path};
    machine.faults = machine::FaultPlan::Parse("ExecQuery#" + std::to_string(failing));
    Host host(path);
    GetToolboxAPI()->DoMagic(&host, &host);
    REQUIRE(machine.faults.Fired() == 0 || host.reply.find("Result=Failure") != std::string::npos);
    RequireProperEnd();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const MemoryFile memory(text);
    IniFile file;
    file.Load(memory.Path(), false);
    if (TakesLong(file)) {
        return 0;
    }
    SetUpMachine(text);
    sys::getNicList();  // the same adapters for every input
    const std::string list = ListOf(file);
    SetUpMachine(text);
    REQUIRE(ListOf(file) == list);
    SetUpMachine(text);
    RequireProperAnswer(memory.Path());
    constexpr std::size_t kQueries = 16;
    SetUpMachine(text);
    RequireProperFailure(memory.Path(), 1 + size % kQueries);
    return 0;
}
