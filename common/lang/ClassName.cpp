#include "common/lang/ClassName.h"

#include <charconv>
#include <string_view>

namespace lang {

#ifdef __GNUC__

namespace {

/// "N6config7command6SetDnsE" becomes "config::command::SetDns". Enough for classes in namespaces;
/// the library's demangler knows everything else too and would be a sixth of the module.
std::string Demangle(std::string_view mangled) {
    if (mangled.starts_with('N')) {
        mangled.remove_prefix(1);
    }
    std::string name;
    for (;;) {
        std::size_t length = 0;
        const auto digits =
            std::from_chars(mangled.data(), mangled.data() + mangled.size(), length);
        mangled.remove_prefix(static_cast<std::size_t>(digits.ptr - mangled.data()));
        if (length == 0 || length > mangled.size()) {
            return name;
        }
        name += name.empty() ? "" : "::";
        name += mangled.substr(0, length);
        mangled.remove_prefix(length);
    }
}

}  // namespace

std::string ClassName(const std::type_info& type) {
    return "class " + Demangle(type.name());
}

#else

// Microsoft's library puts the word class in front by itself.
std::string ClassName(const std::type_info& type) {
    return type.name();
}

#endif

}  // namespace lang
