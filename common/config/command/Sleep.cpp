#include "common/config/command/Sleep.h"

#include "common/sys/Pause.h"
#include "common/util/Strings.h"

namespace config::command {

void Sleep::Execute() {
    sys::Pause(milliseconds_);
}

std::string Sleep::GetDescription() {
    return util::Format("Duration=%u milliseconds", milliseconds_);
}

}  // namespace config::command
