#include "toolbox/config/HandlerTable.h"

#include <new>

#include "toolbox/config/Configure.h"
#include "toolbox/config/UpdateInfo.h"

namespace {

using CreateFunction = CMessageHandler* (*)();

template <class Handler>
CMessageHandler* Create() {
    return new (std::nothrow) Handler;
}

/// A list ends with a row without a creation function; a row without a name matches every name.
struct NameRow {
    const char* name;
    CreateFunction create;
};

/// The table ends with a row without a kind.
struct KindRow {
    const char* kind;
    const NameRow* names;
};

constexpr NameRow kAnyName[] = {
    {nullptr, Create<DefaultHandler>},
    {nullptr, nullptr},
};

constexpr NameRow kInternalNames[] = {
    {"UpdateInfo", Create<UpdateInfo>},
    {"Configure", Create<Configure>},
    {nullptr, Create<DefaultHandler>},
    {nullptr, nullptr},
};

constexpr KindRow kHandlerTable[] = {
    {"Request", kAnyName},
    {"Reply", kAnyName},
    {"Internal", kInternalNames},
    {nullptr, nullptr},
};

CreateFunction FindCreateFunction(const std::string& kind, const std::string& name) {
    for (const KindRow* row = kHandlerTable; row->kind != nullptr; ++row) {
        if (kind != row->kind) {
            continue;
        }
        for (const NameRow* entry = row->names; entry->create != nullptr; ++entry) {
            if (entry->name == nullptr || name == entry->name) {
                return entry->create;
            }
        }
    }
    return nullptr;
}

}  // namespace

std::unique_ptr<CMessageHandler> CreateHandler(const std::string& kind, const std::string& name) {
    const CreateFunction create = FindCreateFunction(kind, name);
    return std::unique_ptr<CMessageHandler>(create != nullptr ? create() : nullptr);
}
