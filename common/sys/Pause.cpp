#include "common/sys/Pause.h"

#include <windows.h>

namespace sys {

void Pause(std::uint32_t milliseconds) {
    ::Sleep(milliseconds);
}

}  // namespace sys
