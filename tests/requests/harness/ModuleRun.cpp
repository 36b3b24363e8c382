#include "tests/requests/harness/ModuleRun.h"

#include <stdexcept>
#include <utility>

#include "host/HostError.h"
#include "host/LogSink.h"
#include "host/Message.h"
#include "machine/Cipher.h"
#include "machine/ComMemoryBalance.h"
#include "tests/requests/harness/ThrownErrors.h"

namespace requests {

AgentFolder::AgentFolder() {
    std::filesystem::create_directory(Inbox());
    std::filesystem::create_directory(Home());
}

AttachedModule::AttachedModule(machine::Simulation& simulation)
    : simulation_(simulation), module_(host::Module::DefaultPath()) {
    simulation_.Attach(Image());
}

AttachedModule::~AttachedModule() {
    simulation_.Detach(Image());
}

HMODULE AttachedModule::Image() const {
    return static_cast<HMODULE>(module_.Handle());
}

RunResult AttachedModule::Configure(const std::string& file, const std::string& hostThrowsAt) {
    RunResult run;
    const std::size_t firstCall = simulation_.GetTrace().Size();
    const std::size_t firstUnexpected = simulation_.Unexpected().size();
    host::LogSink log([&](const host::LogLine& line) {
        run.log.push_back(std::to_string(line.level) + " " + line.text);
        if (!hostThrowsAt.empty() && line.text.find(hostThrowsAt) != std::string::npos) {
            throw std::runtime_error("the host's own");
        }
    });
    const machine::ComMemoryBalance memory;
    const ThrownErrors thrown(Image());
    host::Message message("Internal", "Configure");
    message.Add("Filename", file);
    try {
        run.result = module_.Send(message, log);
    } catch (const host::HostError& error) {
        run.escaped = error.what();
    }
    simulation_.Settle();
    run.comBlocks = memory.OutstandingBlocks();
    run.errors = thrown.Texts();
    for (const host::Field& field : message.Reply()) {
        run.reply[field.name] = field.Text();
    }
    const auto& calls = simulation_.GetTrace().Entries();
    run.calls.assign(calls.begin() + static_cast<std::ptrdiff_t>(firstCall), calls.end());
    run.unexpected = simulation_.UnservedImports();
    const auto& unexpected = simulation_.Unexpected();
    run.unexpected.insert(run.unexpected.end(),
                          unexpected.begin() + static_cast<std::ptrdiff_t>(firstUnexpected),
                          unexpected.end());
    return run;
}

RunResult RunConfigure(machine::Simulation& simulation, const std::string& file) {
    return AttachedModule(simulation).Configure(file);
}

std::string FindSecret(const RunResult& run, const machine::State& state) {
    std::vector<std::string> texts = run.log;
    texts.insert(texts.end(), run.errors.begin(), run.errors.end());
    texts.push_back(run.escaped);
    for (const auto& [name, value] : run.reply) {
        texts.push_back(name + "=" + value);
    }
    for (const machine::TraceEntry& call : run.calls) {
        for (const auto& [name, value] : call.arguments) {
            texts.push_back(call.function + ", " + name + "=" + value);
        }
    }
    for (const machine::Domain& domain : state.domains) {
        for (const machine::Account& account : domain.accounts) {
            const std::string enciphered = machine::Encipher(account.password);
            for (const std::string& text : texts) {
                if (!enciphered.empty() && (text.find(account.password) != std::string::npos ||
                                            text.find(enciphered) != std::string::npos)) {
                    return text;
                }
            }
        }
    }
    return {};
}

}  // namespace requests
