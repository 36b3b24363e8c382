#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "common/ipc/IpAddress.h"

/// Windows Management Instrumentation ("root\cimv2") as the module's queries and methods see it, in
/// the module's own types. Every call opens a connection of its own and closes it before it
/// returns.
namespace sys {

using Result = std::int32_t;  // an HRESULT

/// What a failing query or method reports.
struct WmiFailure {
    const char* message;  // a static text: errors keep the pointer
    std::int32_t line;
};

struct WmiQuery {
    const char* text;  // ends in "Index=" where an adapter's index is to follow
    WmiFailure failure;
};

struct WmiMethod {
    const wchar_t* className;
    const wchar_t* name;
    WmiFailure failure;
};

/// One row of a query's answer. A property that cannot be read leaves its output alone; lists are
/// appended to. Throws ComError for a value that cannot be changed to text.
class WmiRow {
public:
    WmiRow(const WmiRow&) = delete;
    WmiRow& operator=(const WmiRow&) = delete;

    /// True when the property was read. A null text is an empty text.
    virtual bool ReadText(const wchar_t* property, std::string& text) = 0;
    virtual bool ReadInteger(const wchar_t* property, std::uint32_t& integer) = 0;
    /// False for everything but true, null included.
    virtual void ReadBoolean(const wchar_t* property, bool& flag) = 0;
    /// A null list is an empty list. Throws std::invalid_argument for what is no one-dimensional
    /// array.
    virtual void ReadTexts(const wchar_t* property, std::vector<std::string>& texts) = 0;
    /// The first element of a list that must be an array: null throws too. True when there is one.
    virtual bool ReadFirstText(const wchar_t* property, std::string& text) = 0;

    /// The same for addresses. A host name that does not resolve throws ipc::CIPAddressError.
    void ReadAddress(const wchar_t* property, ipc::IPv4Address& address);
    void ReadAddresses(const wchar_t* property, std::vector<ipc::IPv4Address>& addresses);
    void ReadFirstAddress(const wchar_t* property, ipc::IPv4Address& address);

protected:
    WmiRow() = default;
    ~WmiRow() = default;
};

enum class WmiRows { kFirst, kAll };

/// Runs a query, whose text may go on where the query's own ends, and calls `visit` for its rows.
/// Returns the HRESULT of the last read, or 0 when no row came. Throws CWmiError when the query
/// fails or a row cannot be fetched (the rows before it have been visited then), ComError when
/// memory for a text is short, and what `visit` throws.
Result RunWmiQuery(const WmiQuery& query, const std::string& text, WmiRows rows,
                   const std::function<void(WmiRow&)>& visit);

/// The in-parameters of a method call. Every Put throws CWmiError when the parameter is refused,
/// and ComError when memory for a text is short.
class WmiInParameters {
public:
    WmiInParameters(const WmiInParameters&) = delete;
    WmiInParameters& operator=(const WmiInParameters&) = delete;

    virtual void PutText(const wchar_t* name, const std::string& text) = 0;
    /// The same; the module's copy is overwritten before this returns. The one that WMI's object
    /// takes is WMI's.
    virtual void PutSecret(const wchar_t* name, const std::string& text) = 0;
    virtual void PutInteger(const wchar_t* name, std::int32_t value) = 0;
    virtual void PutTexts(const wchar_t* name, const std::vector<std::string>& texts) = 0;

    void PutAddresses(const wchar_t* name, const std::vector<ipc::IPv4Address>& addresses);

protected:
    WmiInParameters() = default;
    ~WmiInParameters() = default;
};

/// Asks for the computer's current name: the property "Name" of its only row.
inline constexpr const char* kComputerNameQuery = "select Name from Win32_ComputerSystem";

/// Calls a method on an object path and returns its "ReturnValue". `fill` may be null for a method
/// without in-parameters. Throws CWmiError when a step fails or memory for a text is short.
std::uint32_t RunWmiMethod(const WmiMethod& method, const std::string& objectPath,
                           const std::function<void(WmiInParameters&)>& fill);

/// The same on the computer's object, which is named by its current name; that is asked for over
/// the same connection, and failing to get it is the method's failure.
std::uint32_t RunComputerMethod(const WmiMethod& method,
                                const std::function<void(WmiInParameters&)>& fill);

/// The path of the computer's object.
std::string ComputerPath(const std::string& name);

}  // namespace sys
