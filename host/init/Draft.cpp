#include "host/init/Draft.h"

#include <utility>

#include "host/Files.h"
#include "host/configure/PrivateFolder.h"
#include "host/init/Rendering.h"

namespace host::init {

namespace {

using configure::Pass;
using Kind = reading::Setting::Kind;

/// Where the module cannot read the adapters, every section of one fails the request.
void SetSectionsAside(Description& description, const std::string& why) {
    if (!description.adapters.empty()) {
        description.adapters.front().obstacle =
            "the module cannot read the adapters, and every section fails (" + why + ")";
    }
    description.saysRoutes = false;
}

void SetAside(Description& description, const configure::Row& row, const std::string& why) {
    switch (row.setting.kind) {
        case Kind::kComputerName:
            description.identity.saysName = false;
            break;
        case Kind::kWorkgroup:
        case Kind::kDomain:
            description.identity.saysMembership = false;
            [[fallthrough]];
        case Kind::kUnit:
            description.identity.saysUnit = false;
            break;
        case Kind::kRoutes:
            description.saysRoutes = false;
            break;
        default:
            if (row.setting.adapter && *row.setting.adapter < description.adapters.size()) {
                description.adapters[*row.setting.adapter].obstacle =
                    "the module fails at it (" + why + ")";
                break;
            }
            SetSectionsAside(description, why);
    }
}

void SetAsideWhatFails(Description& description, const Pass& pass) {
    const std::string& why = pass.story.failure->text;
    for (const configure::Row& row : pass.rows) {
        if (row.fate == configure::Fate::kFailed) {
            SetAside(description, row, why);
            return;
        }
    }
    SetSectionsAside(description, why);
}

}  // namespace

Draft Try(const std::string& module, Description description, const Texts& heading,
          const machine::State& machine, bool untilDone) {
    const configure::PrivateFolder folder;
    const std::string file = folder.Path() + "\\machine.ini";
    Draft draft{std::move(description), {}, {}};
    // Each time something more is set aside: an adapter, the routes, the membership, the name.
    constexpr std::size_t kOthers = 4;
    for (std::size_t left = draft.description.adapters.size() + kOthers; left > 0; --left) {
        draft.text = Render(draft.description, heading);
        WriteWholeFile(file, draft.text);
        draft.outcome = configure::RunPasses(
            {module, file, file, untilDone, {}, [](const std::string&) {}, 0}, machine);
        if (!draft.outcome.Last().story.failure) {
            break;
        }
        SetAsideWhatFails(draft.description, draft.outcome.Last());
    }
    return draft;
}

}  // namespace host::init
