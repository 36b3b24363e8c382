#include "machine/route/RouteChild.h"

#include <atomic>
#include <cstring>
#include <system_error>
#include <utility>

#include "machine/RealCalls.h"
#include "machine/Text.h"
#include "machine/WideText.h"
#include "machine/route/RouteCommand.h"
#include "machine/route/RouteExchange.h"

namespace machine {
namespace {

constexpr std::uint32_t answerCapacity = 256;

std::string NewName() {
    static std::atomic<std::uint32_t> count = 0;
    return "Local\\toolbox-simulated-route-" + std::to_string(GetCurrentProcessId()) + "-" +
           std::to_string(++count);
}

std::string OrdersFor(const State& state, std::optional<std::uint32_t> forcedExitCode) {
    std::string orders = forcedExitCode ? "exit " + std::to_string(*forcedExitCode) : "run";
    for (const PersistedRoute& route : state.routes) {
        orders += "\n" + FormatRoute(route);
    }
    return orders;
}

// The process's own environment as a block of narrow texts.
std::string OwnEnvironment() {
    std::string block;
    wchar_t* strings = GetEnvironmentStringsW();
    for (const wchar_t* text = strings; text != nullptr && *text != L'\0';
         text += std::wcslen(text) + 1) {
        block += Narrow(text);
        block += '\0';
    }
    FreeEnvironmentStringsW(strings);
    return block;
}

}  // namespace

RouteChild::RouteChild(const State& state, std::optional<std::uint32_t> forcedExitCode)
    : name_(NewName()) {
    const std::string orders = OrdersFor(state, forcedExitCode);
    const auto size = static_cast<DWORD>(sizeof(RouteExchange) + orders.size() + answerCapacity);
    mapping_ =
        CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size, name_.c_str());
    view_ = mapping_ == nullptr
                ? nullptr
                : static_cast<char*>(MapViewOfFile(mapping_, FILE_MAP_ALL_ACCESS, 0, 0, size));
    if (view_ == nullptr) {
        const std::error_code error(static_cast<int>(GetLastError()), std::system_category());
        Close();
        throw std::system_error(error, "no memory to share with the route program");
    }
    auto* exchange = reinterpret_cast<RouteExchange*>(view_);
    *exchange = {RouteExchange::expectedMagic, static_cast<std::uint32_t>(orders.size()),
                 answerCapacity, 0};
    std::memcpy(exchange->Orders(), orders.data(), orders.size());
}

RouteChild::~RouteChild() {
    Close();
}

RouteChild::RouteChild(RouteChild&& other) noexcept
    : name_(std::move(other.name_)),
      mapping_(std::exchange(other.mapping_, nullptr)),
      view_(std::exchange(other.view_, nullptr)),
      process_(std::exchange(other.process_, nullptr)) {}

RouteChild& RouteChild::operator=(RouteChild&& other) noexcept {
    std::swap(name_, other.name_);
    std::swap(mapping_, other.mapping_);
    std::swap(view_, other.view_);
    std::swap(process_, other.process_);
    return *this;
}

void RouteChild::Close() noexcept {
    if (view_ != nullptr) {
        UnmapViewOfFile(view_);
    }
    for (const HANDLE handle : {mapping_, process_}) {
        if (handle != nullptr) {
            Real().CloseHandle(handle);
        }
    }
}

std::string RouteChild::Environment(const char* given) const {
    std::string block;
    if (given == nullptr) {
        block = OwnEnvironment();
    } else {
        for (; *given != '\0'; given += std::strlen(given) + 1) {
            block.append(given, std::strlen(given) + 1);
        }
    }
    block += std::string(routeVariable) + "=" + name_ + '\0';
    return block;  // the string's own terminator ends the block
}

void RouteChild::Started(HANDLE process) {
    const HANDLE self = GetCurrentProcess();
    Real().DuplicateHandle(self, process, self, &process_, 0, FALSE, DUPLICATE_SAME_ACCESS);
}

bool RouteChild::Ended() const {
    return process_ == nullptr || Real().WaitForSingleObject(process_, 0) != WAIT_TIMEOUT;
}

void RouteChild::WaitForEnd() const {
    constexpr DWORD longest = 10'000;  // milliseconds
    if (process_ != nullptr) {
        Real().WaitForSingleObject(process_, longest);
    }
}

void RouteChild::Apply(State& state) const {
    auto* exchange = reinterpret_cast<RouteExchange*>(view_);
    if (exchange->answerSize <= exchange->answerCapacity) {
        ApplyChange(state.routes, ParseChange({exchange->Answer(), exchange->answerSize}));
    }
}

}  // namespace machine
