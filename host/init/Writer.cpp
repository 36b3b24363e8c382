#include "host/init/Writer.h"

#include <algorithm>

#include "common/util/Strings.h"
#include "machine/Text.h"

namespace host::init {

namespace {

constexpr std::size_t kColumns = 100;
constexpr std::string_view kMark = "; ";

}  // namespace

bool CanBeValue(std::string_view text) {
    return text.find_first_of("\r\n") == std::string_view::npos && util::TrimBlanks(text) == text;
}

bool CanBeList(const std::vector<std::string>& items) {
    return !items.empty() && CanBeValue(machine::Join(items, ",")) &&
           std::ranges::none_of(items, [](const std::string& item) {
               return item.empty() || item.find(',') != std::string::npos;
           });
}

void Writer::Comment(std::string_view text) {
    std::string shown(text);
    std::ranges::replace_if(
        shown, [](char character) { return static_cast<unsigned char>(character) < ' '; }, '?');
    std::string line;
    for (const std::string& word : machine::Split(shown, ' ')) {
        if (!line.empty() && kMark.size() + line.size() + 1 + word.size() > kColumns) {
            text_.append(kMark).append(line).append("\n");
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word;
    }
    text_.append(kMark).append(line).append("\n");
}

void Writer::Blank() {
    text_ += '\n';
}

void Writer::Section(std::string_view name) {
    Line("[" + std::string(name) + "]");
}

void Writer::Entry(std::string_view key, std::string_view value) {
    Line(std::string(key) + "=" + std::string(value));
}

void Writer::Entry(std::string_view key, const std::vector<std::string>& items) {
    Entry(key, machine::Join(items, ","));
}

void Writer::EntryAside(std::string_view key, std::string_view value) {
    Comment(std::string(key) + "=" + std::string(value));
}

void Writer::Line(std::string_view line) {
    text_.append(aside_ ? kMark : "").append(line).append("\n");
}

}  // namespace host::init
