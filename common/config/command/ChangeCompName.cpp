#include "common/config/command/ChangeCompName.h"

#include "common/config/command/MethodResult.h"
#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"
#include "common/util/Strings.h"

namespace config::command {

bool ChangeCompName::IsNeeded() {
    std::string current;
    sys::getComputerName(current);
    return !util::NoCaseEqual(current, name_);
}

void ChangeCompName::Execute() {
    CheckMethodResult(sys::renameComputer(name_, UserName(), Password()), "ChangeCompName",
                      "Configuring computer name failed", 45);
}

std::string ChangeCompName::GetDescription() {
    return "Name=" + name_ + " " + AccountText();
}

}  // namespace config::command
