#include "tests/requests/harness/ThrownErrors.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <typeinfo>
#include <utility>

#ifdef __GNUC__
#include <cxxabi.h>
#include <unwind.h>

#include <cstdlib>
#endif

#include "common/err/GeneralError.h"
#include "common/util/Strings.h"

namespace requests {

ThrownErrors* ThrownErrors::active_ = nullptr;

#ifdef __GNUC__

namespace {

// How GCC raises a C++ exception on 64-bit Windows: a structured exception of this code whose first
// parameter is the unwinder's header. The thrown object follows the header; in front of it lies the
// runtime's own record, which begins with the type.
constexpr DWORD kGccThrow = 0x20474343;
constexpr std::size_t kRecordSize = 80;

bool LiesIn(const void* address, HMODULE image) {
    const auto* const base = reinterpret_cast<const std::byte*>(image);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto* const place = static_cast<const std::byte*>(address);
    return place >= base && place < base + nt->OptionalHeader.SizeOfImage;
}

std::string Describe(const err::CGeneralError& error, const std::string& more) {
    return util::Format("%s:%d %s (error = %d", error.SourceFile(), error.Line(), error.Message(),
                        error.Code()) +
           more + ")";
}

template <class Error>
const Error& As(const void* object) {
    return *static_cast<const Error*>(object);
}

std::string Describe(const std::type_info& type, const void* object) {
    const std::string name = type.name();
    if (name == typeid(config::ConfigError).name()) {
        const auto& error = As<config::ConfigError>(object);
        return Describe(error,
                        error.Value() == 0 ? "" : util::Format(", value = %d", error.Value()));
    }
    for (const std::type_info* const categorized :
         {&typeid(sys::DomainError), &typeid(sys::RegistryError), &typeid(sys::CDllProxyError),
          &typeid(proc::ChildProcessError), &typeid(util::CFileIOError)}) {
        if (name == categorized->name()) {
            const auto& error = As<err::CategorizedError>(object);
            return Describe(error, util::Format(", category = %d", error.Category()));
        }
    }
    for (const std::type_info* const general :
         {&typeid(CTBXAPIError), &typeid(sys::CWmiError), &typeid(ipc::CIPAddressError)}) {
        if (name == general->name()) {
            return Describe(As<err::CGeneralError>(object), "");
        }
    }
    int status = 0;
    char* const readable = abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status);
    std::string text = readable != nullptr ? readable : name;
    std::free(readable);
    return text;
}

}  // namespace

bool ThrownErrors::CanBeSeen() noexcept {
    return true;
}

LONG CALLBACK ThrownErrors::Look(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (record.ExceptionCode == kGccThrow && record.NumberParameters > 0 && active_ != nullptr &&
        active_->thread_ == GetCurrentThreadId()) {
        const auto* const header =
            reinterpret_cast<const _Unwind_Exception*>(record.ExceptionInformation[0]);
        const auto* const type = *reinterpret_cast<const std::type_info* const*>(
            reinterpret_cast<const std::byte*>(header) - kRecordSize);
        if (LiesIn(type, active_->image_)) {
            active_->Note(Describe(*type, header + 1));
        }
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

#else

bool ThrownErrors::CanBeSeen() noexcept {
    return false;
}

LONG CALLBACK ThrownErrors::Look(EXCEPTION_POINTERS*) {
    return EXCEPTION_CONTINUE_SEARCH;
}

#endif

ThrownErrors::ThrownErrors(HMODULE image)
    : image_(image),
      thread_(GetCurrentThreadId()),
      handler_(AddVectoredExceptionHandler(1, &ThrownErrors::Look)) {
    active_ = this;
}

ThrownErrors::~ThrownErrors() {
    active_ = nullptr;
    RemoveVectoredExceptionHandler(handler_);
}

void ThrownErrors::Note(std::string text) {
    if (texts_.empty() || texts_.back() != text) {
        texts_.push_back(std::move(text));
    }
}

}  // namespace requests
