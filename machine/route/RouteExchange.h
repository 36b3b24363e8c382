// The memory that a simulated machine and its route program share.
#pragma once

#include <cstdint>

namespace machine {

// The environment variable that names the memory.
inline constexpr char routeVariable[] = "TOOLBOX_SIMULATED_ROUTE";

// Behind it follow the orders (a line "run" or "exit CODE", then a line for each route), then the
// room for the answer (the change made, one line).
struct RouteExchange {
    static constexpr std::uint32_t expectedMagic = 0x45545552;

    std::uint32_t magic;
    std::uint32_t ordersSize;
    std::uint32_t answerCapacity;
    std::uint32_t answerSize;  // written last

    char* Orders() { return reinterpret_cast<char*>(this + 1); }
    char* Answer() { return Orders() + ordersSize; }
};

}  // namespace machine
