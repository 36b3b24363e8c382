#include "machine/Balance.h"

#include <algorithm>

namespace machine {
namespace {

/// Follows the calls to what may stay.
class Keeping {
public:
    explicit Keeping(std::span<const TraceEntry> calls) {
        for (const TraceEntry& call : calls) {
            FollowChild(call);
            FollowPolicy(call);
        }
    }

    /// The names of what may stay, by origin.
    const std::map<std::string, std::string>& Names() const { return names_; }

private:
    void FollowChild(const TraceEntry& call) {
        // The first two pipes are the default ones; the others belong to a capture, which closes
        // them, and does without where it cannot have them.
        constexpr std::size_t kDefaultPipes = 2;
        if (call.function == "CreatePipe" && !call.failed) {
            pipes_.push_back(&call);
        } else if (call.function == "CreatePipe" && pipes_.size() < kDefaultPipes) {
            pipes_.clear();
            child_.clear();
        } else if (call.function == "CreateProcessA") {
            child_ = call.failed ? std::vector<const TraceEntry*>() : std::move(pipes_);
            pipes_.clear();
        } else if (call.function == "GetExitCodeProcess" && child_.size() >= kDefaultPipes) {
            names_[OriginOf(*child_[0], "write end")] = "child's end of the output pipe";
            names_[OriginOf(*child_[1], "read end")] = "child's end of the input pipe";
        }
    }

    void FollowPolicy(const TraceEntry& call) {
        if (call.function == "LsaOpenPolicy") {
            policy_ = &call;
        } else if (call.function == "NetWkstaGetInfo" && call.failed && policy_ != nullptr) {
            names_[OriginOf(*policy_)] = "policy without workstation information";
        }
    }

    std::map<std::string, std::string> names_;
    std::vector<const TraceEntry*> pipes_;  // made since the last child
    std::vector<const TraceEntry*> child_;  // those of the last child
    const TraceEntry* policy_ = nullptr;
};

}  // namespace

Balance Weigh(const Ledger& ledger, std::span<const TraceEntry> calls) {
    Balance balance;
    const Keeping keeping(calls);
    for (const Ledger::Item& item : ledger.Outstanding()) {
        const auto found = keeping.Names().find(item.origin);
        if (found != keeping.Names().end() && item.count == 1) {
            ++balance.kept[found->second];
        } else {
            balance.leaks.push_back("not returned: " + item.kind + " (" + item.origin + ")");
        }
    }
    for (const std::string& misuse : ledger.Misuse()) {
        balance.leaks.push_back("misuse: " + misuse);
    }
    return balance;
}

}  // namespace machine
