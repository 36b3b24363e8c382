#include "host/configure/Codes.h"

#include <windows.h>

#include <algorithm>
#include <array>

#include "common/util/Strings.h"

namespace host::configure {

namespace {

struct Meaning {
    std::uint32_t code;
    const char* text;
};

// As the class documents its methods; Windows itself has no texts for them.
constexpr std::array kAdapterMethods = {
    Meaning{0, "done"},
    Meaning{1, "done, a restart is needed"},
    Meaning{64, "the method is not supported on this platform"},
    Meaning{65, "unknown failure"},
    Meaning{66, "invalid subnet mask"},
    Meaning{67, "an instance that was returned could not be processed"},
    Meaning{68, "invalid input parameter"},
    Meaning{69, "more than five gateways"},
    Meaning{70, "invalid IP address"},
    Meaning{71, "invalid gateway address"},
    Meaning{72, "the registry could not be read"},
    Meaning{73, "invalid domain name"},
    Meaning{74, "invalid host name"},
    Meaning{75, "no WINS server is defined"},
    Meaning{76, "invalid file"},
    Meaning{77, "invalid system path"},
    Meaning{78, "a file could not be copied"},
    Meaning{79, "invalid security parameter"},
    Meaning{80, "the TCP/IP service could not be configured"},
    Meaning{81, "the DHCP service could not be configured"},
    Meaning{82, "the DHCP lease could not be renewed"},
    Meaning{83, "the DHCP lease could not be released"},
    Meaning{84, "IP is not enabled on the adapter"},
    Meaning{85, "IPX is not enabled on the adapter"},
    Meaning{86, "frame or network number out of bounds"},
    Meaning{87, "invalid frame type"},
    Meaning{88, "invalid network number"},
    Meaning{89, "the network number is there already"},
    Meaning{90, "a parameter is out of bounds"},
    Meaning{91, "access denied"},
    Meaning{92, "out of memory"},
    Meaning{93, "it exists already"},
    Meaning{94, "path, file or object not found"},
    Meaning{95, "the service could not be notified"},
    Meaning{96, "the DNS service could not be notified"},
    Meaning{97, "the interface cannot be configured"},
    Meaning{98, "not every DHCP lease could be released or renewed"},
    Meaning{100, "DHCP is not enabled on the adapter"},
    Meaning{0x80041003, "access denied: the agent is not elevated"},
    Meaning{0x8004A024, "another program has locked the network configuration, which passes"},
};

// Windows finds the texts of WMI's codes in a library of its own, which is not everywhere.
constexpr std::array kWmiCodes = {
    Meaning{0x80041001, "WMI: general failure"},   Meaning{0x80041002, "WMI: not found"},
    Meaning{0x80041003, "WMI: access denied"},     Meaning{0x80041004, "WMI: the provider failed"},
    Meaning{0x80041005, "WMI: wrong type"},        Meaning{0x80041006, "WMI: out of memory"},
    Meaning{0x80041008, "WMI: invalid parameter"}, Meaning{0x8004100E, "WMI: invalid namespace"},
    Meaning{0x80041010, "WMI: invalid class"},     Meaning{0x80041017, "WMI: invalid query"},
};

// What joins, renames and the directory give: in words that say what to look at, and the same where
// Windows has no text at hand.
constexpr std::array kNetworkCodes = {
    Meaning{2, "not found"},
    Meaning{5, "access denied"},
    Meaning{87, "invalid parameter"},
    Meaning{1210, "the computer name is invalid"},
    Meaning{1317, "the domain has no such computer account"},
    Meaning{1326, "the account's name or password is wrong"},
    Meaning{1219, "another account is connected to the server already"},
    Meaning{1332, "the domain has no such computer account, and none is to be made"},
    Meaning{1355, "the domain does not exist or cannot be reached"},
    Meaning{2138, "the Workstation service has not been started"},
    Meaning{2224, "the account already exists"},
    Meaning{2691, "the machine is already joined to a domain"},
    Meaning{2692, "the machine is not joined to a domain"},
    Meaning{2693, "the machine is a domain controller"},
    Meaning{2695, "the workgroup name is invalid"},
    Meaning{2699, "the domain controller's name cannot be resolved"},
    Meaning{2732, "another account made the computer account, and this one may not take it over"},
    Meaning{8557, "the account may make no more computer accounts in the domain"},
    Meaning{0x80070005, "access denied"},
    Meaning{0x8007052E, "the account's name or password is wrong"},
    Meaning{0x80071392, "the object already exists"},
    Meaning{0x80072020, "the directory server wants a logon first"},
    Meaning{0x8007202B, "the object is in another domain, where this does not move it"},
    Meaning{0x80072030, "there is no such object in the directory"},
    Meaning{0x80072032, "the object's distinguished name is invalid"},
    Meaning{0x80072035, "the directory server refuses to do it"},
    Meaning{0x8007203A, "the directory server cannot be reached"},
    Meaning{0xC0000008, "invalid handle"},
    Meaning{0xC0000022, "access denied"},
    Meaning{10091, "the network subsystem is not ready"},
    Meaning{11001, "there is no host of that name"},
    Meaning{11002, "the name server does not answer"},
    Meaning{11004, "the host's name has no address"},
};

template <typename Table>
const char* Find(const Table& table, std::uint32_t code) {
    const auto found =
        std::ranges::find_if(table, [code](const Meaning& row) { return row.code == code; });
    return found == table.end() ? nullptr : found->text;
}

}  // namespace

std::string DescribeAdapterMethod(std::uint32_t returnValue) {
    const char* const known = Find(kAdapterMethods, returnValue);
    return known != nullptr ? known : "no meaning is known for this value";
}

std::string DescribeCode(std::uint32_t code) {
    if (const char* const known = Find(kWmiCodes, code)) {
        return known;
    }
    if (const char* const known = Find(kNetworkCodes, code)) {
        return known;
    }
    // The texts of the network services (2100 to 2999) lie in a library of their own.
    constexpr std::uint32_t kFirstNetworkCode = 2100;
    constexpr std::uint32_t kLastNetworkCode = 2999;
    const HMODULE networkTexts =
        code >= kFirstNetworkCode && code <= kLastNetworkCode
            ? LoadLibraryExA("netmsg.dll", nullptr, LOAD_LIBRARY_AS_DATAFILE)
            : nullptr;
    char buffer[512];
    const DWORD flags = FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM |
                        (networkTexts == nullptr ? 0UL : FORMAT_MESSAGE_FROM_HMODULE);
    const DWORD length =
        FormatMessageA(flags, networkTexts, code, 0, buffer, sizeof buffer, nullptr);
    if (networkTexts != nullptr) {
        FreeLibrary(networkTexts);
    }
    std::string text(buffer, length);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ' ||
                             text.back() == '.')) {
        text.pop_back();
    }
    std::ranges::replace(text, '\r', ' ');
    std::ranges::replace(text, '\n', ' ');
    return text.empty() ? "no text is known for this code" : text;
}

std::string CodeText(std::int64_t code) {
    return util::Format("%lld (0x%X)", static_cast<long long>(code),
                        static_cast<unsigned>(static_cast<std::uint64_t>(code)));
}

}  // namespace host::configure
