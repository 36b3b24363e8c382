#include "machine/file/ShownText.h"

#include "machine/CodePage.h"
#include "machine/file/JsonReader.h"

namespace machine::file {

std::string ShownText(const std::string& utf8) {
    if (const auto text = FromUtf8(utf8)) {
        return *text;
    }
    const std::string quoted = Json(utf8).dump(-1, ' ', true);
    return quoted.substr(1, quoted.size() - 2);
}

std::string FromShownText(const std::string& text) {
    // Only what no name of the code page could be: one that looks like an escape stays as it is.
    const Json read = Json::parse('"' + ToUtf8(text) + '"', nullptr, false);
    return read.is_string() && !FromUtf8(read.get_ref<const std::string&>())
               ? read.get<std::string>()
               : ToUtf8(text);
}

}  // namespace machine::file
