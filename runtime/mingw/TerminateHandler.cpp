#include <cstdlib>
#include <exception>

namespace __gnu_cxx {

/// Replaces the library's handler, which names the error on a console that a service does not have
/// and carries a demangler for it.
void __verbose_terminate_handler() {
    std::abort();
}

}  // namespace __gnu_cxx
