#pragma once

#include <string>
#include <string_view>

namespace host::report {

/// The page with its style built in: it asks for nothing from anywhere. `content` is HTML, `title`
/// a text in the system code page.
std::string MakePage(std::string_view title, std::string_view content);

/// "2026-11-22 01:05 UTC": the time in SOURCE_DATE_EPOCH where that is a number, or else now.
std::string DateText();

}  // namespace host::report
