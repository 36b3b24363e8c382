#include "common/lang/Pause.h"

#include <windows.h>

namespace lang {

void Pause(std::uint32_t milliseconds) {
    ::Sleep(milliseconds);
}

}  // namespace lang
