#pragma once

#include <windows.h>

#include <wbemidl.h>

#include <cstdint>
#include <functional>
#include <string>

#include "common/err/GeneralError.h"
#include "common/sys/ComPointers.h"
#include "common/sys/WmiQueries.h"

/// The plumbing of Windows Management Instrumentation: one connection, one walk over a query's
/// rows, one method call.
namespace sys {

/// A connection to "root\cimv2". Its end releases the locator, then the services, then leaves COM,
/// also where the set-up stopped part way.
class ScopedWmiComInit {
public:
    /// Connects. A step that fails ends the set-up; whoever uses the connection finds no services,
    /// unless it was the last step (the security of the services), after which they serve as they
    /// are.
    ScopedWmiComInit();
    ~ScopedWmiComInit();
    ScopedWmiComInit(const ScopedWmiComInit&) = delete;
    ScopedWmiComInit& operator=(const ScopedWmiComInit&) = delete;

    /// Null where the set-up did not get as far.
    IWbemServices* Services() const noexcept { return services_.Get(); }
    /// The HRESULT of the set-up's last step.
    HRESULT SetupResult() const noexcept { return setupResult_; }

private:
    HRESULT Connect();

    ComPointer<IWbemLocator> locator_;
    ComPointer<IWbemServices> services_;
    HRESULT setupResult_;
};

/// What a failing query or method reports.
struct WmiFailure {
    const char* message;
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

/// One row of a query's answer.
class WmiRow {
public:
    explicit WmiRow(IWbemClassObject& object) : object_(object) {}

    /// Reads a property and hands it to `convert`; not where it cannot be read.
    void Read(const wchar_t* property, const std::function<void(const VARIANT&)>& convert);

    void ReadText(const wchar_t* property, std::string& text);
    void ReadAddress(const wchar_t* property, ipc::IPv4Address& address);

    /// The HRESULT of the last read.
    HRESULT LastResult() const noexcept { return lastResult_; }

private:
    IWbemClassObject& object_;
    HRESULT lastResult_ = S_OK;
};

enum class WmiRows { kFirst, kAll };

/// Runs a query and calls `visit` for its rows. Returns the HRESULT of the last read, or 0 when no
/// row came. Throws CWmiError when the query fails or a row cannot be fetched; the rows before it
/// have been visited then.
Result ForEachRow(const ScopedWmiComInit& connection, const WmiQuery& query,
                  const std::string& text, WmiRows rows, const std::function<void(WmiRow&)>& visit);

/// The in-parameters of a method call. Every Put throws CWmiError when the parameter is refused,
/// and ComError when memory for a text is short.
class WmiInParameters {
public:
    WmiInParameters(IWbemClassObject& object, const WmiFailure& failure)
        : object_(object), failure_(failure) {}

    void PutText(const wchar_t* name, const std::string& text);
    /// The same; the copy made for the call is overwritten after it.
    void PutSecret(const wchar_t* name, const std::string& text);
    void PutInteger(const wchar_t* name, std::int32_t value);
    void PutTexts(const wchar_t* name, const std::vector<std::string>& texts);
    void PutAddresses(const wchar_t* name, const std::vector<ipc::IPv4Address>& addresses);

private:
    void Put(const wchar_t* name, Variant& value);

    IWbemClassObject& object_;
    const WmiFailure& failure_;
};

/// Calls a method on an object path and returns its "ReturnValue". `fill` may be null for a method
/// without in-parameters. Throws CWmiError when a step fails or memory for a text is short.
std::uint32_t CallMethod(const ScopedWmiComInit& connection, const WmiMethod& method,
                         const std::string& objectPath,
                         const std::function<void(WmiInParameters&)>& fill);

/// The failure as an error, with the thread's last Windows error.
CWmiError MakeWmiError(const WmiFailure& failure, HRESULT result);

}  // namespace sys
