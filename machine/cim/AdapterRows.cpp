#include "machine/cim/AdapterRows.h"

#include <type_traits>
#include <utility>

#include "machine/model/AdapterView.h"

namespace machine::cim {
namespace {

/// How WMI has a member of the type.
template <typename Member>
struct Delivery {
    static constexpr Type kType = Type::kText;  // what WMI does not know
    static Value From(const Member& /*member*/) { return {}; }
    static Member To(const Value& /*value*/) { return {}; }
};

template <>
struct Delivery<std::uint32_t> {
    static constexpr Type kType = Type::kUInt32;
    static Value From(std::uint32_t number) { return static_cast<std::int32_t>(number); }
    static std::uint32_t To(const Value& value) {
        const auto* const number = std::get_if<std::int32_t>(&value);
        return number == nullptr ? 0 : static_cast<std::uint32_t>(*number);
    }
};

template <typename Member, Type type>
struct SameDelivery {
    static constexpr Type kType = type;
    static Value From(const Member& member) { return member; }
    static Member To(const Value& value) {
        const auto* const held = std::get_if<Member>(&value);
        return held == nullptr ? Member() : *held;
    }
};
template <>
struct Delivery<bool> : SameDelivery<bool, Type::kBoolean> {};
template <>
struct Delivery<std::string> : SameDelivery<std::string, Type::kText> {};

template <>
struct Delivery<TextList> : SameDelivery<TextList, Type::kTexts> {
    /// A list without elements is delivered as null (seen once).
    static Value From(const TextList& list) { return list.empty() ? Value() : Value(list); }
};

template <typename Content>
struct Delivery<std::optional<Content>> {
    static constexpr Type kType = Delivery<Content>::kType;
    static Value From(const std::optional<Content>& member) {
        return member ? Delivery<Content>::From(*member) : Value();
    }
    static std::optional<Content> To(const Value& value) {
        return std::holds_alternative<std::monostate>(value)
                   ? std::nullopt
                   : std::optional(Delivery<Content>::To(value));
    }
};

template <typename Member>
using DeliveryOf =
    Delivery<std::remove_cvref_t<decltype(std::declval<Adapter&>().*std::declval<Member>())>>;

/// "[00000001] Example Adapter" is the caption of the description "Example Adapter".
Value DescriptionOf(const Adapter& adapter) {
    if (!adapter.caption) {
        return {};
    }
    const auto bracket = adapter.caption->find("] ");
    return bracket == std::string::npos ? *adapter.caption : adapter.caption->substr(bracket + 2);
}

/// The properties of the table that the class has, and those that follow from others.
template <typename Derive>
std::vector<Properties> RowsOf(const State& state, OptionalIndex index,
                               std::string_view AdapterProperty::*name, Derive derive) {
    std::vector<Properties> rows;
    for (const Adapter& present : state.adapters) {
        if (index && present.index != *index) {
            continue;
        }
        const Adapter adapter = model::ShownAdapter(present);
        Properties& row = rows.emplace_back();
        for (const AdapterProperty& property : AdapterProperties()) {
            if (!(property.*name).empty()) {
                row.push_back({property.*name, TypeOf(property), ValueOf(adapter, property)});
            }
        }
        derive(adapter, row);
    }
    return rows;
}

}  // namespace

Type TypeOf(const AdapterProperty& property) {
    return std::visit([](auto member) { return DeliveryOf<decltype(member)>::kType; },
                      property.member);
}

Value ValueOf(const Adapter& adapter, const AdapterProperty& property) {
    return std::visit(
        [&adapter](auto member) { return DeliveryOf<decltype(member)>::From(adapter.*member); },
        property.member);
}

void SetValue(Adapter& adapter, const AdapterProperty& property, const Value& value) {
    std::visit([&](auto member) { adapter.*member = DeliveryOf<decltype(member)>::To(value); },
               property.member);
}

std::vector<Properties> ConfigurationRows(const State& state, OptionalIndex index) {
    return RowsOf(
        state, index, &AdapterProperty::configuration,
        [&state](const Adapter& adapter, Properties& row) {
            row.push_back({"Description", Type::kText, DescriptionOf(adapter)});
            row.push_back({"DNSDomainSuffixSearchOrder", Type::kTexts,
                           adapter.ipEnabled ? Delivery<TextList>::From(model::ShownSuffixes(state))
                                             : Value()});
        });
}

std::vector<Properties> HardwareRows(const State& state, OptionalIndex index) {
    return RowsOf(state, index, &AdapterProperty::hardware,
                  [](const Adapter& adapter, Properties& row) {
                      row.push_back({"DeviceID", Type::kText, std::to_string(adapter.index)});
                      row.push_back({"Description", Type::kText, DescriptionOf(adapter)});
                      row.push_back({"Name", Type::kText, DescriptionOf(adapter)});
                  });
}

}  // namespace machine::cim
