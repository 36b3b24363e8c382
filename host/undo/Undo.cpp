#include "host/undo/Undo.h"

#include <algorithm>
#include <utility>

#include "host/configure/Diff.h"
#include "host/configure/Values.h"
#include "host/init/Draft.h"
#include "host/init/Rendering.h"
#include "machine/model/AdapterView.h"

namespace host::undo {

namespace {

using configure::Change;
using Texts = std::vector<std::string>;

machine::State Restarted(machine::State machine) {
    machine::ApplyRestart(machine);
    return machine;
}

/// "machine: DNS suffixes: is corp.example, was none"
std::string ByHand(const Change& change) {
    const auto orNone = [](const std::string& text) { return text.empty() ? "none" : text; };
    return change.where + (change.what.empty() ? "" : ": " + change.what) + ": is " +
           orNone(change.before) + ", was " + orNone(change.after);
}

Texts Heading(const configure::Request& request, const machine::State& machine,
              const Texts& byHand) {
    Texts heading = {
        "Brings " + machine.computerName + " back from what " + request.name +
            " makes of it. Run it once that is done, with all restarts.",
        "Accounts are left out: what needs one is a comment below, for you to complete."};
    if (!byHand.empty()) {
        heading.emplace_back("By hand, because this file does not bring it back:");
        heading.insert(heading.end(), byHand.begin(), byHand.end());
    }
    return heading;
}

}  // namespace

Texts ListLeft(const machine::State& now, const machine::State& wanted) {
    Texts left;
    for (const Change& change : configure::Compare(now, wanted)) {
        left.push_back(ByHand(change));
    }
    return left;
}

Undo MakeUndo(const configure::Request& request, const machine::State& machine) {
    configure::Request forward = request;
    forward.untilDone = true;
    forward.watcher = [](const std::string&) {};
    const configure::Outcome there = configure::RunPasses(forward, machine);
    Undo undo;
    undo.foreseen = Restarted(there.machine);

    const machine::State wanted = Restarted(machine);
    const init::Draft draft =
        init::Try(request.module, init::Describe(wanted, undo.foreseen), {}, undo.foreseen, true);
    undo.byHand = ListLeft(Restarted(draft.outcome.machine), wanted);
    if (const auto& failure = there.Last().story.failure) {
        undo.byHand.push_back("what " + request.name +
                              " would change after the point where it fails: " + failure->text);
    }
    undo.text = init::Render(draft.description, Heading(request, machine, undo.byHand));
    return undo;
}

Texts ListLockOuts(const machine::State& before, const machine::State& after) {
    Texts warnings;
    for (const machine::Adapter& old : before.adapters) {
        const machine::Adapter* const now = configure::AdapterOf(after, old.index);
        if (now == nullptr || !machine::model::HasIp(old) ||
            old.gateways.value_or(Texts()).empty()) {
            continue;
        }
        Texts reasons;
        if (old.ipAddress != now->ipAddress || old.ipSubnet != now->ipSubnet) {
            reasons.push_back("address " + configure::ListText(configure::AddressesOf(old)) +
                              " -> " + configure::ListText(configure::AddressesOf(*now)));
        }
        if (old.gateways != now->gateways) {
            reasons.push_back("gateway " + configure::ListText(old.gateways) + " -> " +
                              configure::ListText(now->gateways.value_or(Texts())));
        }
        if (!reasons.empty()) {
            warnings.push_back(configure::AdapterLabel(old) + ": " + configure::ListText(reasons));
        }
    }
    return warnings;
}

}  // namespace host::undo
