// From a machine's state to JSON, and from files.
#include <algorithm>
#include <fstream>
#include <iterator>

#include "machine/CodePage.h"
#include "machine/MachineFile.h"
#include "machine/file/JsonReader.h"
#include "machine/file/Layout.h"
#include "machine/file/RegistryFile.h"
#include "machine/file/ShownText.h"

namespace machine::file {
namespace {

/// The place of a value in the JSON.
struct Place {
    Json& json;
};

class MemberWriter {
public:
    explicit MemberWriter(Json& object) : object_(object) { object_ = Json::object(); }

    template <typename Value>
    void Required(const std::string& name, const Value& value) {
        Write(Place{object_[name]}, value);
    }
    template <typename Value>
    void Optional(const std::string& name, const Value& value) {
        Write(Place{object_[name]}, value);
    }

    void Shown(const std::string& name, const std::string& text) {
        object_[name] = FromShownText(text);
    }

private:
    Json& object_;
};

void Write(Place place, const std::string& text) {
    place.json = ToUtf8(text);
}

template <typename Number>
requires std::is_arithmetic_v<Number>
void Write(Place place, Number number) {
    place.json = number;
}

template <typename Value>
void Write(Place place, const std::optional<Value>& value) {
    if (value) {
        Write(place, *value);
    }
}

template <typename Value>
void Write(Place place, const std::vector<Value>& list) {
    place.json = Json::array();
    for (const Value& value : list) {
        Write(Place{place.json.emplace_back()}, value);
    }
}

template <typename Object>
requires std::is_class_v<Object>
void Write(Place place, const Object& object) {
    MemberWriter members(place.json);
    ListMembers(members, object);
}

void Write(Place place, const Membership& membership) {
    MemberWriter members(place.json);
    if (membership.member) {
        members.Required("domain", membership.domain);
        members.Required("dnsDomain", membership.dnsDomain);
    } else {
        members.Required("workgroup", membership.workgroup);
    }
}

template <typename Choice>
requires std::is_enum_v<Choice>
void Write(Place place, Choice choice) {
    place.json = std::ranges::find(NamesOf(choice), choice, &Names<Choice>::first)->second;
}

void Write(Place place, const std::vector<HostName>& hosts) {
    MemberWriter members(place.json);
    for (const HostName& host : hosts) {
        members.Required(ToUtf8(host.name), host.addresses);
    }
}

void Write(Place place, const std::vector<RegistryKey>& keys) {
    place.json = WriteRegistry(keys);
}

Json WriteState(const State& state) {
    Json json;
    Write(Place{json}, state);
    return json;
}

}  // namespace
}  // namespace machine::file

namespace machine {

std::string FormatState(const State& state) {
    return file::WriteState(state).dump(4) + "\n";
}

State LoadState(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in) {
        throw MachineFileError(file.string() + ": cannot be read");
    }
    try {
        return ParseState(text);
    } catch (const MachineFileError& error) {
        throw MachineFileError(file.string() + ": " + error.what());
    }
}

}  // namespace machine
