// The directory of the simulated machine: distinguished names, accounts, computer objects and their
// moves.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "machine/State.h"

namespace machine::model {

/// HRESULTs of the directory service. That each stands for what it stands for here is platform
/// knowledge.
enum DirectoryCode : std::uint32_t {
    kDirectoryOk = 0,
    kBadPathname = 0x80005000,  ///< E_ADS_BAD_PATHNAME
    kAccessDenied =
        0x80070005,  ///< E_ACCESSDENIED; an LDAP server's "insufficient rights" becomes this
    kLogonFailure = 0x8007052E,        ///< ERROR_LOGON_FAILURE
    kNoSuchObject = 0x80072030,        ///< ERROR_DS_NO_SUCH_OBJECT
    kInvalidDnSyntax = 0x80072032,     ///< ERROR_DS_INVALID_DN_SYNTAX
    kReferral = 0x8007202B,            ///< ERROR_DS_REFERRAL
    kUnwillingToPerform = 0x80072035,  ///< ERROR_DS_UNWILLING_TO_PERFORM
    kServerDown = 0x8007203A,          ///< ERROR_DS_SERVER_DOWN
    kAlreadyExists = 0x80071392,       ///< ERROR_OBJECT_ALREADY_EXISTS
};

/// The domain of this DNS or flat name; null when the directory has none.
Domain* FindDomain(State& state, std::string_view name);

/// The account behind a logon name, "CORP\name", "corp.example\name", "name@corp.example" or
/// "name"; null when the name, its domain or the password is wrong.
Account* Authenticate(Domain& domain, std::string_view logonName, std::string_view password);

/// A container that may hold computer objects, or the domain itself.
struct Container {
    Domain* domain = nullptr;
    TextList* computers = nullptr;  ///< null for the domain itself, which holds none
};

/// The container of an ADSI path, "LDAP://OU=Sales,DC=corp,DC=example"; a DirectoryCode when there
/// is none.
std::uint32_t FindContainer(State& state, std::string_view adsPath, Container& container);
/// The same for a distinguished name alone.
std::uint32_t FindContainerByDn(State& state, std::string_view dn, Container& container);

/// A computer object, wherever in the domain it is.
struct ComputerObject {
    TextList* container = nullptr;
    std::size_t position = 0;
    std::string distinguishedName;
};
std::optional<ComputerObject> FindComputer(Domain& domain, std::string_view name);

/// Binds to a container with an account, as ADsOpenObject does.
std::uint32_t Bind(State& state, std::string_view adsPath, std::string_view logonName,
                   std::string_view password, Container& container, Account& account);

/// Moves the computer object of the source path into the container that the account is bound to.
/// `newName` may be empty: the name stays.
std::uint32_t MoveComputer(State& state, std::string_view destinationPath, const Account& account,
                           std::string_view sourcePath, std::string_view newName);

/// The distinguished name of the machine's own computer object; nothing outside a domain.
std::optional<std::string> OwnDistinguishedName(State& state);

}  // namespace machine::model
