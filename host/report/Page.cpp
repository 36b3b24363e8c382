#include "host/report/Page.h"

#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdlib>

#include "ReportTexts.h"
#include "common/util/Strings.h"
#include "host/report/Html.h"

namespace host::report {

std::string MakePage(std::string_view title, std::string_view content) {
    Html escaped;
    escaped.Text(title);
    std::string page;
    // In one walk: what is put in is not looked at again.
    for (std::string_view rest = embedded::kPageHtml; !rest.empty();) {
        const std::size_t open = rest.find("{{");
        page += rest.substr(0, open);
        if (open == std::string_view::npos) {
            break;
        }
        const std::size_t close = rest.find("}}", open);
        const std::string_view slot = rest.substr(open + 2, close - open - 2);
        page += slot == "title"   ? std::string_view(escaped.Written())
                : slot == "style" ? embedded::kStyleCss
                                  : content;
        rest.remove_prefix(close + 2);
    }
    return page;
}

std::string DateText() {
    namespace chrono = std::chrono;
    std::int64_t seconds =
        chrono::duration_cast<chrono::seconds>(chrono::system_clock::now().time_since_epoch())
            .count();
    // Whoever wants the same bytes again sets it.
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing here changes the environment.
    if (const char* const fixed = std::getenv("SOURCE_DATE_EPOCH")) {
        const std::string_view text = fixed;
        std::from_chars(text.data(), text.data() + text.size(), seconds);
    }
    const chrono::sys_seconds time{chrono::seconds(seconds)};
    const chrono::sys_days day = chrono::floor<chrono::days>(time);
    const chrono::year_month_day date(day);
    const chrono::hh_mm_ss clock(time - day);
    return util::Format("%04d-%02u-%02u %02d:%02d UTC", static_cast<int>(date.year()),
                        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                        static_cast<int>(clock.hours().count()),
                        static_cast<int>(clock.minutes().count()));
}

}  // namespace host::report
