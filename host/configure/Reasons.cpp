#include "host/configure/Reasons.h"

#include <algorithm>

#include "common/logging/Phrases.h"
#include "common/util/Strings.h"
#include "host/configure/Values.h"

namespace host::configure {

namespace {

using Kind = Setting::Kind;
using Texts = std::vector<std::string>;

bool Same(const Texts& left, const Texts& right) {
    return std::ranges::equal(left, right, util::NoCaseEqual);
}

Texts Sorted(Texts texts) {
    std::ranges::sort(texts);
    return texts;
}

bool IsThere(const Row& row, const machine::State& before) {
    switch (row.setting.kind) {
        case Kind::kDomain:
            return !row.setting.wanted.empty() && before.membership.member &&
                   (util::NoCaseEqual(row.setting.wanted.front().text, before.membership.domain) ||
                    util::NoCaseEqual(row.setting.wanted.front().text,
                                      before.membership.dnsDomain));
        case Kind::kRoutes:
            return Same(Sorted(row.current.value_or(Texts())), Sorted(row.wanted));
        default:
            return row.current && Same(*row.current, row.wanted);
    }
}

/// The method that changed the adapter's addresses before the step: it drops what hangs on them.
std::string AddressingBefore(const Story& story, const Step& step) {
    for (const Step& earlier : story.steps) {
        const bool addresses = earlier.command == "SetStatic" || earlier.command == "SetDhcp";
        if (addresses && earlier.nic == step.nic && !earlier.calls.empty()) {
            return earlier.calls.back().name;
        }
    }
    return {};
}

/// A join that finds no computer object, and then makes one.
bool MakesObject(const Step& step) {
    return step.command == "JoinDomain" && step.calls.size() > 1 &&
           !step.calls.front().Succeeded() && step.calls.back().Succeeded();
}

}  // namespace

std::string WhyExecuted(const Row& row, const Story& story, const Step& step) {
    const Kind kind = row.setting.kind;
    if (kind == Kind::kUnit && step.command == "JoinDomain") {
        return "goes with the join";
    }
    if (MakesObject(step)) {
        return "no computer object yet: creates it";
    }
    if (!step.before || !row.current || !Same(*row.current, row.wanted)) {
        return {};
    }
    const std::string method = AddressingBefore(story, step);
    if (step.before != row.current && !method.empty()) {
        return "set again: " + method + (step.before->empty() ? " drops it" : " changes it");
    }
    return kind == Kind::kDnsSuffixes ? "differs only in case" : "";
}

std::string WhyLeftAlone(const Row& row, const machine::State& after) {
    if (row.setting.kind == Kind::kRoutes) {
        return "left alone";
    }
    const machine::Adapter* const adapter = AdapterOf(after, row.index);
    if (adapter != nullptr && adapter->dhcpEnabled.value_or(false) && !adapter->staticDns.empty()) {
        return "left alone: " + ListText(adapter->staticDns) +
               (adapter->staticDns.size() == 1 ? ", set by hand, stays" : ", set by hand, stay") +
               " despite DHCP";
    }
    return "left alone";
}

std::string WhySkipped(const Row& row, const machine::State& before) {
    if (IsThere(row, before)) {
        return kAlreadySet;
    }
    switch (row.setting.kind) {
        case Kind::kAddresses:
            return "skipped: the module compares the first address only";
        case Kind::kUnit:
            return before.membership.member ? kFoundThere : "skipped: the machine is in no domain";
        case Kind::kWorkgroup:
            return "skipped: the module finds nothing to do";
        case Kind::kRoutes:
            return "the module finds nothing to delete or add";
        default:
            return "the module finds nothing to do";
    }
}

std::string WhyNoWish(const Row& row, const Run& run, const Story& story, const Row* next) {
    switch (row.setting.kind) {
        case Kind::kAdapter:
            if (row.index) {
                return "the next free PCI adapter";
            }
            if (next != nullptr && next->index) {
                return "after the restart: " + next->adapter;
            }
            return story.failure ? "the run ended before it" : "not reached in this run";
        case Kind::kAccount:
            return "used to change names and membership; never shown";
        case Kind::kRestartAnswer:
            if (!util::NoCaseEqual(ListText(row.wanted), "false")) {
                return "a needed restart is reported";
            }
            return run.Reply("Status-Module") == logging::kMarkerModule
                       ? "a needed restart is not reported: the run stopped for one, and the "
                         "module calls that a failure"
                       : "a needed restart would not be reported";
        case Kind::kDnsServers:
            return "every server is 0.0.0.0: nothing is set";
        default:
            return row.setting.notes.empty() ? "" : row.setting.notes.front();
    }
}

}  // namespace host::configure
