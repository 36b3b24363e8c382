// The figures of all sweeps of the program, printed at its end.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace sweep {

using Figures = std::map<std::string, std::uint64_t>;

/// The figures by name of the sweep of that title, made on first use.
Figures& FiguresOf(const std::string& title);

/// What is under way, for the last words of a program that crashes. The text is copied.
void NotePoint(const std::string& text);

}  // namespace sweep
