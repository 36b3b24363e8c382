#pragma once

#include <cstdint>
#include <string>

/// What sys::Domain asks the system for.
namespace sys {

/// What the system knows of the machine's membership. What it does not say keeps its value.
struct Membership {
    bool& isMember;
    std::string& domain;  // the flat name
    std::string& dnsDomain;
    std::string& workgroup;  // asked for where the machine is no member
};

/// Asks the local security authority and the workstation service. Throws DomainError when the
/// security policy cannot be opened.
void ReadMembership(const Membership& membership);

/// The distinguished name of the machine's own computer object; empty where the system gives none.
/// Throws DomainError.
std::string ReadComputerObjectName();

/// Moves the object of one LDAP path into the container of another, with that account, and calls
/// CoInitialize and CoUninitialize for it. Returns the static text of what failed, or null when
/// nothing did; `result` is the HRESULT of the last step either way. Throws ComError when memory
/// for a text is short.
const char* MoveComputerObject(const std::string& source, const std::string& destination,
                               const std::string& account, const std::string& password,
                               std::int32_t& result);

}  // namespace sys
