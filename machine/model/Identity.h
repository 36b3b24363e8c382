// The name and the membership of the simulated machine: what the methods of Win32_ComputerSystem do
// to it. Every method gives a Windows error code (0: done) and changes nothing unless it gives 0.
// Name and membership change at the next restart (ApplyRestart), the directory and what the machine
// says of its membership at once.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "machine/State.h"

namespace machine::model {

enum IdentityCode : std::uint32_t {
    kDone = 0,
    kUnitNotFound = 2,              ///< ERROR_FILE_NOT_FOUND: what a wrong AccountOU gives
    kNotAllowed = 5,                ///< ERROR_ACCESS_DENIED
    kWrongOptions = 87,             ///< ERROR_INVALID_PARAMETER
    kWrongSession = 1219,           // ERROR_SESSION_CREDENTIAL_CONFLICT
    kInvalidComputerName = 1210,    ///< ERROR_INVALID_COMPUTERNAME
    kNoSuchComputerAccount = 1317,  ///< ERROR_NO_SUCH_USER
    kWrongCredentials = 1326,       ///< ERROR_LOGON_FAILURE
    kNoAccountMapped = 1332,        // ERROR_NONE_MAPPED
    kNoSuchDomain = 1355,           ///< ERROR_NO_SUCH_DOMAIN
    kNoWorkstationService = 2138,   // NERR_WkstaNotStarted
    kAccountExists = 2224,          ///< NERR_UserExists
    kAlreadyJoined = 2691,          ///< NERR_SetupAlreadyJoined
    kNotJoined = 2692,              ///< NERR_SetupNotJoined
    kInvalidWorkgroup = 2695,       ///< NERR_InvalidWorkgroupName
    kReuseRefused = 2732,           // NERR_AccountReuseBlockedByPolicy
    kQuotaExceeded = 8557,          // ERROR_DS_MACHINE_ACCOUNT_QUOTA_EXCEEDED
};

enum JoinOption : std::uint32_t {
    kJoinDomain = 0x1,
    kCreateAccount = 0x2,
    kDeleteAccount = 0x4,
    kJoinIfJoined = 0x20,
    kJoinWithNewName = 0x400,
    kAllJoinOptions = 0x7FF,
};

struct Credentials {
    std::string userName;
    std::string password;
};

/// The name that Windows makes of a host name: capitals, at most 15 characters.
std::string NetBiosName(std::string_view hostName);

/// The membership that the machine says it has, to the LSA policy and to WMI: a join or a leave
/// counts from the call on, although it takes effect at the restart.
const Membership& ShownMembership(const State& state);

std::uint32_t Rename(State& state, const std::string& newName, const Credentials& credentials);
std::uint32_t Join(State& state, const std::string& name, const Credentials& credentials,
                   const std::string& accountOu, std::uint32_t options);
std::uint32_t Unjoin(State& state, const Credentials& credentials, std::uint32_t options);

}  // namespace machine::model
