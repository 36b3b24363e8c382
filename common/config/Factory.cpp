#include "common/config/Factory.h"

namespace config {

Factory& Factory::Select() {
    static WindowsVistaFactory windowsVista;
    // Kept beside the other, by design: the variant for platforms without its two steps.
    [[maybe_unused]] static DefaultFactory standard;
    return windowsVista;
}

}  // namespace config
