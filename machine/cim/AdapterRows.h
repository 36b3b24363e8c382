// The rows of the two classes of adapters, made of the table of their properties.
#pragma once

#include "machine/AdapterProperties.h"
#include "machine/cim/Schema.h"

namespace machine::cim {

/// Of Win32_NetworkAdapterConfiguration.
std::vector<Properties> ConfigurationRows(const State& state, OptionalIndex index);
/// Of Win32_NetworkAdapter.
std::vector<Properties> HardwareRows(const State& state, OptionalIndex index);

/// What WMI delivers as the property, and the way back. A value of another type is taken for null.
Type TypeOf(const AdapterProperty& property);
Value ValueOf(const Adapter& adapter, const AdapterProperty& property);
void SetValue(Adapter& adapter, const AdapterProperty& property, const Value& value);

}  // namespace machine::cim
