#include "host/configure/RowText.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "common/util/Strings.h"
#include "host/configure/Codes.h"
#include "host/configure/Reasons.h"
#include "host/configure/Values.h"
#include "host/reading/SettingNames.h"

namespace host::configure {

namespace {

using Texts = std::vector<std::string>;

struct Look {
    char sign;
    Tone tone;
};

Look LookOf(const Row& row) {
    switch (row.fate) {
        case Fate::kChange:
            return {'~', Tone::kChange};
        case Fate::kAlreadySet:
            return IsSkipped(row) ? Look{'/', Tone::kPlain} : Look{'=', Tone::kGood};
        case Fate::kFailed:
            return {'!', Tone::kBad};
        case Fate::kWaits:
            return {'>', Tone::kChange};
        case Fate::kNotAttempted:
            return {'?', Tone::kBad};
        case Fate::kLabel:
        case Fate::kLeftAlone:
            return {' ', Tone::kPlain};
        case Fate::kIgnored:
            break;
    }
    return {'x', Tone::kQuiet};
}

std::string CallText(const ChangingCall& call) {
    if (!call.reached) {
        return call.name + " gave " + call.result;
    }
    return call.value == 0 ? call.name : call.name + " gave " + CodeText(call.value);
}

/// "10.0.0.0" of a route's text.
std::string DestinationOf(const std::string& route) {
    return route.substr(0, route.find(' '));
}

/// What became of each route of a list that was executed: what its own call gave, and whether it is
/// there after the run. route may exit with 0 and refuse, and a deletion takes every route to its
/// destination.
class RouteFates {
public:
    explicit RouteFates(const Row& row) : row_(row) {
        for (const ChangingCall& call : row.calls) {
            calls_.try_emplace(call.name.substr(0, call.name.find(" mask ")), &call);
        }
        for (const std::string& route : row.left.value_or(Texts())) {
            ++left_[route];
        }
    }

    /// Whether one more of this text is left.
    bool Take(const std::string& route) {
        const auto found = left_.find(route);
        return found != left_.end() && found->second != 0 && found->second-- != 0;
    }

    std::string OfDeleted(const std::string& route) {
        return Remark("DELETE", route, !Take(route));
    }
    std::string OfAdded(const std::string& route) { return Remark("-p ADD", route, Take(route)); }

    /// Whether a route that was to stay, or to be left alone, has gone with another.
    bool GoesAlong(const std::string& route) {
        const ChangingCall* const deletion = Find("DELETE", route);
        const bool isAddedAgain = deletion != nullptr && deletion->value == 0 &&
                                  route == row_.defaultRoute &&
                                  std::ranges::find(row_.wanted, route) != row_.wanted.end();
        return isAddedAgain || !Take(route);
    }

private:
    const ChangingCall* Find(const std::string& verb, const std::string& route) const {
        const auto found = calls_.find("route " + verb + " " + DestinationOf(route));
        return found == calls_.end() ? nullptr : found->second;
    }

    std::string Remark(const std::string& verb, const std::string& route, bool isDone) const {
        const ChangingCall* const call = Find(verb, route);
        if (call != nullptr && call->value != 0) {
            return " (route gave " + CodeText(call->value) + ")";
        }
        if (isDone) {
            return {};
        }
        return call == nullptr && row_.fate == Fate::kFailed
                   ? " (not reached)"
                   : " (route refuses it, and exits with 0)";
    }

    const Row& row_;
    std::unordered_map<std::string, const ChangingCall*> calls_;
    std::unordered_map<std::string, std::size_t> left_;
};

struct RouteChanges {
    Texts gone;
    Texts added;
    Texts kept;

    explicit RouteChanges(const Row& row) {
        Texts current = row.current.value_or(Texts());
        Texts wanted = row.wanted;
        std::ranges::sort(current);
        std::ranges::sort(wanted);
        std::ranges::set_difference(current, wanted, std::back_inserter(gone));
        std::ranges::set_difference(wanted, current, std::back_inserter(added));
        std::ranges::set_intersection(current, wanted, std::back_inserter(kept));
    }
};

void AddPart(std::string& text, std::size_t count, const char* what) {
    if (count != 0) {
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + what;
    }
}

/// Each route that goes, comes or stays, with what its own call gave.
void TellRoutes(const Row& row, bool details, RowText& told) {
    const RouteChanges changes(row);
    RouteFates fates(row);
    std::vector<SubLine> along;
    std::vector<SubLine> staying;
    const auto goesAlong = [&along](const std::string& route, const char* more) {
        along.push_back(
            {"- " + route + " (goes with route DELETE " + DestinationOf(route) + more + ")",
             Tone::kChange});
    };
    if (row.defaultRoute && fates.GoesAlong(*row.defaultRoute)) {
        goesAlong(*row.defaultRoute, "");
    }
    for (const std::string& route : changes.kept) {
        if (fates.GoesAlong(route)) {
            goesAlong(route, "; the next request adds it");
        } else {
            staying.push_back({"= " + route, Tone::kGood});
        }
    }
    told.text.clear();
    AddPart(told.text, changes.gone.size(), "to delete");
    AddPart(told.text, along.size(), along.size() == 1 ? "goes along" : "go along");
    AddPart(told.text, changes.added.size(), "to add");
    AddPart(told.text, staying.size(), staying.size() == 1 ? "stays" : "stay");
    for (const std::string& route : changes.gone) {
        told.below.push_back({"- " + route + fates.OfDeleted(route), Tone::kChange});
    }
    std::ranges::move(along, std::back_inserter(told.below));
    for (const std::string& route : changes.added) {
        told.below.push_back({"+ " + route + fates.OfAdded(route), Tone::kChange});
    }
    std::ranges::move(staying, std::back_inserter(told.below));
    if (!details && told.below.size() > kRoutesShown) {
        const std::size_t left = told.below.size() - kRoutesShown;
        told.below.resize(kRoutesShown);
        told.below.push_back(
            {"and " + std::to_string(left) + " more; --details lists them", Tone::kQuiet});
    }
}

std::string WithReason(const std::string& text, const std::string& reason) {
    return reason.empty() ? text : text + " (" + reason + ")";
}

/// "10.0.0.1" where nothing differs.
std::string ChangeText(const Row& row) {
    const bool same = row.current && *row.current == row.wanted;
    return WithReason(same ? ListText(row.wanted) : StepText(row), row.reason);
}

std::string MainText(const Row& row) {
    switch (row.fate) {
        case Fate::kAlreadySet:
            if (IsSkipped(row)) {
                return "has " + ListText(row.current) + ", the file wants " + ListText(row.wanted) +
                       " (" + row.reason + ")";
            }
            return row.reason == kAlreadySet ? ListText(row.current) + ", already set"
                                             : WithReason(ListText(row.current), row.reason);
        case Fate::kNotAttempted:
            return WithReason(ListText(row.wanted), "not attempted: " + row.reason);
        case Fate::kFailed:
            return StepText(row) + " fails: " + row.reason;
        case Fate::kLabel:
        case Fate::kLeftAlone:
            return row.reason;
        case Fate::kIgnored:
            return row.setting.at.key + (row.reason.empty() ? "" : ": ") + row.reason;
        default:
            return ChangeText(row);
    }
}

}  // namespace

RowText TextOf(const Row& row, bool details) {
    const Look look = LookOf(row);
    RowText told{look.sign, look.tone, reading::Label(row.setting.kind), MainText(row), {}};
    const bool acted = row.fate == Fate::kChange || row.fate == Fate::kFailed;
    if (row.setting.kind == Setting::Kind::kRoutes && acted) {
        const std::string failure = row.fate == Fate::kFailed ? " fails: " + row.reason : "";
        TellRoutes(row, details, told);
        told.text += failure;
    }
    for (const std::string& note : row.setting.notes) {
        if (note != row.reason) {
            told.below.push_back({note, Tone::kQuiet});
        }
    }
    for (const ChangingCall& call : row.calls) {
        if (details) {
            told.below.push_back({"call: " + CallText(call), Tone::kQuiet});
        }
    }
    return told;
}

std::string PlaceText(const Row& row) {
    return ":" + std::to_string(row.setting.at.place.line);
}

std::string StepText(const Row& row) {
    return ListText(row.current) + " -> " + ListText(row.wanted);
}

std::string CountsText(const Counts& counts) {
    std::string text = counts.changes == 0   ? "no changes"
                       : counts.changes == 1 ? "1 change"
                                             : std::to_string(counts.changes) + " changes";
    AddPart(text, counts.alreadySet, "already set");
    AddPart(text, counts.skipped, "skipped");
    AddPart(text, counts.failed, "failed");
    AddPart(text, counts.waiting, "after the restart");
    AddPart(text, counts.notAttempted, "not attempted");
    AddPart(text, counts.leftAlone, "left alone");
    AddPart(text, counts.ignored, "without effect");
    return text;
}

}  // namespace host::configure
