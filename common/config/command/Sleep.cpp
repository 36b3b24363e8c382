#include "common/config/command/Sleep.h"

#include "common/lang/Pause.h"
#include "common/util/Strings.h"

namespace config::command {

void Sleep::Execute() {
    lang::Pause(milliseconds_);
}

std::string Sleep::GetDescription() {
    return util::Format("Duration=%u milliseconds", milliseconds_);
}

}  // namespace config::command
