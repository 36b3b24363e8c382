#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/check/Rules.h"
#include "host/reading/File.h"

namespace host::check {

using reading::Place;

/// One fault of a configuration file. Texts are in the system code page and hold no secret.
struct Finding {
    Severity severity;
    Code code;  ///< what kind of fault
    Place place;
    std::string message;
    std::string remedy = {};  ///< where there is more to say than the message does
};

/// Gathers findings. Beyond a limit they are only counted.
class Findings {
public:
    static constexpr std::size_t kKept = 1000;

    void Error(Code code, const Place& place, std::string message) {
        Add({Severity::kError, code, place, std::move(message)});
    }
    void Warning(Code code, const Place& place, std::string message, std::string remedy = {}) {
        Add({Severity::kWarning, code, place, std::move(message), std::move(remedy)});
    }
    void Add(Finding finding);

    /// Puts them into the order of the file; at one place the errors come first.
    void Sort();

    const std::vector<Finding>& List() const noexcept { return list_; }
    /// All that were added, those that are not kept included.
    std::size_t Errors() const noexcept { return errors_; }
    std::size_t Warnings() const noexcept { return warnings_; }

private:
    std::vector<Finding> list_;
    std::size_t errors_ = 0;
    std::size_t warnings_ = 0;
};

/// `"text"`, cut where it is long.
std::string Quoted(std::string_view text);

}  // namespace host::check
