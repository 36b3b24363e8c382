#include "common/config/Factory.h"

namespace config {

Factory& Factory::Select() {
    static WindowsVistaFactory windowsVista;
    // Made and never chosen: the variant for a platform that needs neither of the other's steps.
    [[maybe_unused]] static DefaultFactory standard;
    return windowsVista;
}

}  // namespace config
