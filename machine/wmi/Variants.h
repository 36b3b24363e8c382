// Values of the simulated WMI as VARIANTs.
#pragma once

#include <windows.h>

#include <wbemcli.h>

#include <optional>

#include "machine/cim/Value.h"

namespace machine::wmi {

CIMTYPE CimTypeOf(cim::Type type);

/// The VARIANT that Windows delivers for the value: whole numbers as VT_I4 whatever their sign,
/// nulls as VT_NULL. The caller owns it. Gives E_OUTOFMEMORY when a text cannot be made.
HRESULT ToVariant(const cim::Value& value, VARIANT& variant);

/// The value of a VARIANT put into a property of the type; nothing when its type does not fit.
std::optional<cim::Value> FromVariant(const VARIANT& variant, cim::Type type);

}  // namespace machine::wmi
