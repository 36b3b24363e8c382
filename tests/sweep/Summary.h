// The figures of all sweeps of the program, printed at its end.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace sweep {

struct Summary {
    std::string title;                             ///< "platform calls failing"
    std::uint64_t points = 0;                      ///< tried
    std::uint64_t possible = 0;                    ///< that there are
    std::uint64_t harmless = 0;                    ///< the request ended as if nothing had failed
    std::map<std::string, std::uint64_t> answers;  ///< by kind
    std::map<std::string, std::uint64_t> kept;     ///< left open on purpose, by name
    std::uint64_t leaks = 0;
};

/// The summary of that title, made on first use.
Summary& SummaryOf(const std::string& title);

/// What is under way, for the last words of a program that crashes. The text is copied.
void NotePoint(const std::string& text);

}  // namespace sweep
