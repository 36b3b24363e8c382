#pragma once

#include <windows.h>

#include <wbemidl.h>
#include <wrl/client.h>

namespace sys {

/// A connection to "root\cimv2". Its end releases the locator, then the services, then leaves COM,
/// also where the set-up stopped part way.
class ScopedWmiComInit {
public:
    /// Connects. A step that fails ends the set-up; whoever uses the connection finds no services,
    /// unless it was the last step (the security of the services), after which they serve as they
    /// are. Throws ComError, with COM not entered, when there is no memory for the namespace's
    /// text.
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

    Microsoft::WRL::ComPtr<IWbemLocator> locator_;
    Microsoft::WRL::ComPtr<IWbemServices> services_;
    HRESULT setupResult_;
};

}  // namespace sys
