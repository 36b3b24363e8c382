// The properties of an adapter: one table for machine files, WMI and whoever else walks them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "machine/State.h"

namespace machine {

struct AdapterProperty {
    using Member =
        std::variant<std::uint32_t Adapter::*, bool Adapter::*, std::string Adapter::*,
                     TextList Adapter::*, std::optional<bool> Adapter::*,
                     std::optional<std::string> Adapter::*, std::optional<TextList> Adapter::*,
                     std::optional<DhcpLease> Adapter::*, Condition Adapter::*,
                     std::optional<std::uint32_t> Adapter::*>;

    std::string_view name;  ///< in a machine file
    Member member;
    std::string_view configuration;  ///< in Win32_NetworkAdapterConfiguration; empty: it has none
    std::string_view hardware;       ///< in Win32_NetworkAdapter; empty: it has none
};

std::span<const AdapterProperty> AdapterProperties();

}  // namespace machine
