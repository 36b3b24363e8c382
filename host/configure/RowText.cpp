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

Look LookOf(Fate fate) {
    switch (fate) {
        case Fate::kChange:
            return {'~', Tone::kChange};
        case Fate::kAlreadySet:
            return {'=', Tone::kGood};
        case Fate::kFailed:
            return {'!', Tone::kBad};
        case Fate::kWaits:
            return {'>', Tone::kChange};
        case Fate::kNotAttempted:
            return {'?', Tone::kBad};
        case Fate::kLabel:
            return {'*', Tone::kPlain};
        case Fate::kIgnored:
            break;
    }
    return {'x', Tone::kQuiet};
}

std::string Padded(const std::string& text, std::size_t width) {
    return text.size() < width ? text + std::string(width - text.size(), ' ') : text + "  ";
}

std::string Line(char sign, const std::string& text, const std::string& right) {
    const std::string line = std::string("  ") + sign + " " + text;
    return right.empty() ? line : Padded(line, 40) + right;
}

/// The calls of a row by how they begin: "route DELETE 10.0.0.0", "route -p ADD 10.0.0.0".
class RouteCalls {
public:
    explicit RouteCalls(const Row& row) {
        for (const ChangingCall& call : row.calls) {
            calls_.try_emplace(call.name.substr(0, call.name.find(" mask ")), &call);
        }
    }

    /// The call for a route, with what it gave; empty where there was none.
    std::string Text(const std::string& verb, const std::string& route) const {
        const auto found = calls_.find("route " + verb + " " + route.substr(0, route.find(' ')));
        if (found == calls_.end()) {
            return {};
        }
        const ChangingCall& call = *found->second;
        return call.value == 0 ? call.name : call.name + " gave " + CodeText(call.value);
    }

private:
    std::unordered_map<std::string, const ChangingCall*> calls_;
};

/// Each route that goes, comes or stays, with its own call.
void PrintRoutes(const Row& row, Output& output) {
    const RouteCalls calls(row);
    Texts current = row.current.value_or(Texts());
    Texts wanted = row.wanted;
    std::sort(current.begin(), current.end());
    std::sort(wanted.begin(), wanted.end());
    Texts gone;
    Texts added;
    Texts kept;
    std::set_difference(current.begin(), current.end(), wanted.begin(), wanted.end(),
                        std::back_inserter(gone));
    std::set_difference(wanted.begin(), wanted.end(), current.begin(), current.end(),
                        std::back_inserter(added));
    std::set_intersection(current.begin(), current.end(), wanted.begin(), wanted.end(),
                          std::back_inserter(kept));
    const std::string uncalled = row.fate == Fate::kFailed ? "not reached" : "left alone";
    for (const std::string& route : gone) {
        const std::string call = calls.Text("DELETE", route);
        output.Line(Line('-', route, call.empty() ? uncalled : call), Tone::kChange);
    }
    for (const std::string& route : added) {
        const std::string call = calls.Text("-p ADD", route);
        output.Line(Line('+', route, call.empty() ? uncalled : call), Tone::kChange);
    }
    for (const std::string& route : kept) {
        output.Line(Line('=', route, "already there"), Tone::kGood);
    }
}

std::string RightSide(const Row& row) {
    const std::string calls = CallsText(row);
    if (calls.empty() || row.reason.empty()) {
        return calls + row.reason;
    }
    return calls + ": " + row.reason;
}

std::string LeftSide(const Row& row) {
    switch (row.fate) {
        case Fate::kAlreadySet:
            return row.reason == kAlreadySet ? ListText(row.current) : StepText(row);
        case Fate::kLabel:
            return ListText(row.wanted);
        case Fate::kIgnored:
            return row.setting.keys.size() > 1
                       ? util::Format("%u keys", static_cast<unsigned>(row.setting.keys.size()))
                       : row.setting.at.key;
        default:
            return StepText(row);
    }
}

bool IsSection(const Row& row) {
    return row.setting.kind == Setting::Kind::kUnused && row.setting.at.key.empty();
}

}  // namespace

std::string PlaceText(const Row& row, const std::string& file) {
    return file + ":" + std::to_string(row.setting.at.place.line);
}

std::string StepText(const Row& row) {
    const bool manyRoutes = row.setting.kind == Setting::Kind::kRoutes && row.wanted.size() > 1;
    if (manyRoutes) {
        return std::to_string(row.current.value_or(Texts()).size()) + " routes -> " +
               std::to_string(row.wanted.size()) + " routes";
    }
    return ListText(row.current) + " -> " + ListText(row.wanted);
}

std::string CallsText(const Row& row) {
    std::string text;
    for (const ChangingCall& call : row.calls) {
        text += (text.empty() ? "" : ", ") + call.name;
        if (!call.reached) {
            text += " gave " + call.result;
        } else if (call.value != 0) {
            text += " gave " + CodeText(call.value);
        }
    }
    return text;
}

std::string CountsText(const Counts& counts) {
    std::string text = util::Format(
        "%u %s, %u already right", static_cast<unsigned>(counts.changes),
        counts.changes == 1 ? "change" : "changes", static_cast<unsigned>(counts.alreadySet));
    const auto add = [&text](std::size_t count, const char* what) {
        if (count != 0) {
            text += util::Format(", %u %s", static_cast<unsigned>(count), what);
        }
    };
    add(counts.skipped, "skipped");
    add(counts.failed, "failed");
    add(counts.waiting, "after the restart");
    add(counts.notAttempted, "not attempted");
    add(counts.ignored, "without effect");
    return text;
}

void PrintRow(const Row& row, const std::string& file, Output& output) {
    const std::string what =
        IsSection(row) ? "[" + row.setting.at.section + "]" : std::string(Label(row.setting.kind));
    const std::string heading =
        PlaceText(row, file) + "  " + (row.adapter.empty() ? what : Padded(what, 15) + row.adapter);
    output.Line(heading, Tone::kHeading);
    const Look look = LookOf(row.fate);
    const bool acted = row.fate == Fate::kChange || row.fate == Fate::kFailed;
    if (row.setting.kind == Setting::Kind::kRoutes && acted) {
        PrintRoutes(row, output);
    } else {
        output.Line(Line(look.sign, LeftSide(row), RightSide(row)), look.tone);
    }
    for (const std::string& note : row.setting.notes) {
        if (note != row.reason) {
            output.Line("    " + note, Tone::kQuiet);
        }
    }
}

}  // namespace host::configure
