// What a module throws inside itself, seen from outside: an error that its handler catches leaves
// no message in any log line.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace requests {

/// Records the errors that the image throws on this thread while the object lives; one at a time.
class ThrownErrors {
public:
    /// Whether this build knows how its compiler's exceptions look.
    static bool CanBeSeen() noexcept;

    explicit ThrownErrors(HMODULE image);
    ~ThrownErrors();
    ThrownErrors(const ThrownErrors&) = delete;
    ThrownErrors& operator=(const ThrownErrors&) = delete;

    /// In the order thrown; an error thrown on and on as it is counts once. Members of the module's
    /// family read "SetStatic:68 Configuring static IP addresses failed (error = 4, value = 66)",
    /// with a category where their class has one; others by the name of their type.
    const std::vector<std::string>& Texts() const noexcept { return texts_; }

private:
    static LONG CALLBACK Look(EXCEPTION_POINTERS* exception);
    void Note(std::string text);

    static ThrownErrors* active_;
    HMODULE image_;
    DWORD thread_;
    void* handler_;
    std::vector<std::string> texts_;
};

}  // namespace requests
