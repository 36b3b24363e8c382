#include "machine/CodeNames.h"

#include <algorithm>
#include <string_view>

#include "machine/Text.h"

namespace machine {
namespace {

struct CodeName {
    std::uint32_t code;
    std::string_view name;
};

constexpr CodeName kNames[] = {
    {0x00000000, "S_OK"},
    {0x00000001, "S_FALSE"},
    {0x80004001, "E_NOTIMPL"},
    {0x80004002, "E_NOINTERFACE"},
    {0x80004003, "E_POINTER"},
    {0x80005000, "E_ADS_BAD_PATHNAME"},
    {0x80010106, "RPC_E_CHANGED_MODE"},
    {0x80010119, "RPC_E_TOO_LATE"},
    {0x80040154, "REGDB_E_CLASSNOTREG"},
    {0x800401F0, "CO_E_NOTINITIALIZED"},
    {0x80041001, "WBEM_E_FAILED"},
    {0x80041002, "WBEM_E_NOT_FOUND"},
    {0x80041003, "WBEM_E_ACCESS_DENIED"},
    {0x80041004, "WBEM_E_PROVIDER_FAILURE"},
    {0x80041005, "WBEM_E_TYPE_MISMATCH"},
    {0x80041006, "WBEM_E_OUT_OF_MEMORY"},
    {0x80041008, "WBEM_E_INVALID_PARAMETER"},
    {0x8004100E, "WBEM_E_INVALID_NAMESPACE"},
    {0x80041010, "WBEM_E_INVALID_CLASS"},
    {0x80041016, "WBEM_E_INVALID_OPERATION"},
    {0x80041017, "WBEM_E_INVALID_QUERY"},
    {0x80041018, "WBEM_E_INVALID_QUERY_TYPE"},
    {0x8004102E, "WBEM_E_INVALID_METHOD"},
    {0x8004102F, "WBEM_E_INVALID_METHOD_PARAMETERS"},
    {0x8004103A, "WBEM_E_INVALID_OBJECT_PATH"},
    {0x80041064, "WBEM_E_LOCAL_CREDENTIALS"},
    {0x80070005, "E_ACCESSDENIED"},
    {0x8007000E, "E_OUTOFMEMORY"},
    {0x8007052E, "ERROR_LOGON_FAILURE"},
    {0x80070057, "E_INVALIDARG"},
    {0x80071392, "ERROR_OBJECT_ALREADY_EXISTS"},
    {0x80072030, "ERROR_DS_NO_SUCH_OBJECT"},
    {0x80072032, "ERROR_DS_INVALID_DN_SYNTAX"},
    {0x80072035, "ERROR_DS_UNWILLING_TO_PERFORM"},
    {0x8007203A, "ERROR_DS_SERVER_DOWN"},
};

}  // namespace

std::string DescribeHresult(std::uint32_t code) {
    const auto* found = std::ranges::find(kNames, code, &CodeName::code);
    if (found == std::end(kNames)) {
        return Hex(code);
    }
    const bool failed = (code & 0x80000000U) != 0;
    return failed ? Hex(code) + " (" + std::string(found->name) + ")" : std::string(found->name);
}

}  // namespace machine
