#include "tests/support/Sample.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace support {

std::uint64_t SampleOf(std::uint64_t few, std::uint64_t many, std::uint64_t all) {
    const char* const wish = std::getenv("TOOLBOX_SAMPLE");
    const std::string sample = wish == nullptr ? "" : wish;
    if (sample != "" && sample != "full" && sample != "all") {
        throw std::invalid_argument("TOOLBOX_SAMPLE is neither \"full\" nor \"all\"");
    }
#ifdef TOOLBOX_CHECKED
    many = (many + 19) / 20;  // under the guard allocator all is slower
#endif
    return sample == "all" ? all : sample == "full" ? many : few;
}

}  // namespace support
