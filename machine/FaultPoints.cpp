#include <algorithm>

#include "machine/FaultPlan.h"
#include "machine/Text.h"

namespace machine {
namespace {

using enum FaultPoint::Kind;

constexpr FaultPoint Hresult(std::string_view name, std::uint32_t code) {
    return {name, code, kResult, true};
}

constexpr FaultPoint Code(std::string_view name, std::uint32_t code) {
    return {name, code, kResult, false};
}

constexpr FaultPoint OutcomeOf(std::string_view name, std::uint32_t code) {
    return {name, code, kOutcome, false};
}

std::vector<FaultPoint> Sorted(std::vector<FaultPoint> points) {
    std::ranges::sort(points, {}, &FaultPoint::name);
    return points;
}

}  // namespace

const std::vector<FaultPoint>& FaultPoints() {
    // The default codes are what these calls most often fail with on a real machine.
    static const std::vector<FaultPoint> kPoints = Sorted({
        Hresult("ADsOpenObject", 0x8007203A),         // the server is not operational
        Hresult("CoCreateInstance", 0x80040154),      // REGDB_E_CLASSNOTREG
        Hresult("CoInitialize", 0x8007000E),          // E_OUTOFMEMORY
        Hresult("CoInitializeEx", 0x8007000E),        // E_OUTOFMEMORY
        Hresult("CoInitializeSecurity", 0x80070005),  // E_ACCESSDENIED
        Hresult("CoSetProxyBlanket", 0x80070005),     // E_ACCESSDENIED
        Code("CloseHandle", 6),                       // ERROR_INVALID_HANDLE
        Hresult("ConnectServer", 0x80041003),         // WBEM_E_ACCESS_DENIED
        Code("CreateFileA", 5),                       // ERROR_ACCESS_DENIED
        Code("CreatePipe", 8),                        // ERROR_NOT_ENOUGH_MEMORY
        Code("CreateProcessA", 2),                    // ERROR_FILE_NOT_FOUND
        Code("Decrypt", 1),
        Code("DeleteFileA", 5),                         // ERROR_ACCESS_DENIED
        Code("DuplicateHandle", 6),                     // ERROR_INVALID_HANDLE
        OutcomeOf("EnableDHCP", 81),                    // unable to configure the DHCP service
        OutcomeOf("EnableStatic", 66),                  // invalid subnet mask
        Hresult("ExecMethod", 0x80041001),              // WBEM_E_FAILED
        Hresult("ExecQuery", 0x80041001),               // WBEM_E_FAILED
        Hresult("Get", 0x80041001),                     // WBEM_E_FAILED
        Code("GetComputerObjectNameA", 1355),           // ERROR_NO_SUCH_DOMAIN
        Code("GetExitCodeProcess", 6),                  // ERROR_INVALID_HANDLE
        Code("GetFileAttributesA", 5),                  // ERROR_ACCESS_DENIED
        Code("GetFileInformationByHandle", 6),          // ERROR_INVALID_HANDLE
        Code("GetFinalPathNameByHandleW", 3),           // ERROR_PATH_NOT_FOUND
        Code("GetFullPathNameA", 206),                  // ERROR_FILENAME_EXCED_RANGE
        Hresult("GetMethod", 0x80041002),               // WBEM_E_NOT_FOUND
        Code("GetModuleFileNameA", 122),                // ERROR_INSUFFICIENT_BUFFER
        Hresult("GetObject", 0x80041002),               // WBEM_E_NOT_FOUND
        Code("GetProcAddress", 127),                    // ERROR_PROC_NOT_FOUND
        Code("GetStdHandle", 6),                        // ERROR_INVALID_HANDLE
        OutcomeOf("JoinDomainOrWorkgroup", 1355),       // ERROR_NO_SUCH_DOMAIN
        Code("LoadLibraryA", 126),                      // ERROR_MOD_NOT_FOUND
        Code("LsaClose", 0xC0000008),                   // STATUS_INVALID_HANDLE
        Code("LsaOpenPolicy", 0xC0000022),              // STATUS_ACCESS_DENIED
        Code("LsaQueryInformationPolicy", 0xC0000022),  // STATUS_ACCESS_DENIED
        Code("MoveFileA", 5),                           // ERROR_ACCESS_DENIED
        Hresult("MoveHere", 0x80070005),                // E_ACCESSDENIED
        Code("NetWkstaGetInfo", 2138),                  // NERR_WkstaNotStarted
        Hresult("Next", 0x80041001),                    // WBEM_E_FAILED
        Code("PeekNamedPipe", 109),                     // ERROR_BROKEN_PIPE
        Hresult("Put", 0x80041005),                     // WBEM_E_TYPE_MISMATCH
        Code("ReadFile", 109),                          // ERROR_BROKEN_PIPE
        Code("RegCloseKey", 6),                         // ERROR_INVALID_HANDLE
        Code("RegCreateKeyExA", 5),                     // ERROR_ACCESS_DENIED
        Code("RegOpenKeyExA", 5),                       // ERROR_ACCESS_DENIED
        Code("RegQueryValueExA", 2),                    // ERROR_FILE_NOT_FOUND
        OutcomeOf("Rename", 5),                         // ERROR_ACCESS_DENIED
        OutcomeOf("SetDNSServerSearchOrder", 70),       // invalid IP address
        OutcomeOf("SetDNSSuffixSearchOrder", 73),       // invalid domain name
        OutcomeOf("SetGateways", 71),                   // invalid gateway IP address
        Code("SetHandleInformation", 6),                // ERROR_INVALID_HANDLE
        Code("SetStdHandle", 6),                        // ERROR_INVALID_HANDLE
        Hresult("SpawnInstance", 0x80041006),           // WBEM_E_OUT_OF_MEMORY
        Code("TerminateProcess", 5),                    // ERROR_ACCESS_DENIED
        OutcomeOf("UnjoinDomainOrWorkgroup", 5),        // ERROR_ACCESS_DENIED
        Code("WSAStartup", 10091),                      // WSASYSNOTREADY
        Code("WaitForSingleObject", 6),                 // ERROR_INVALID_HANDLE
        Code("WriteFile", 109),                         // ERROR_BROKEN_PIPE
        Code("gethostbyname", 11002),                   // WSATRY_AGAIN
        OutcomeOf("route", 1),
    });
    return kPoints;
}

const FaultPoint* FindFaultPoint(std::string_view name) {
    const auto& points = FaultPoints();
    const auto found = std::ranges::find_if(
        points, [name](const FaultPoint& point) { return EqualNoCase(point.name, name); });
    return found == points.end() ? nullptr : &*found;
}

}  // namespace machine
