#include "host/report/Html.h"

#include <algorithm>
#include <iterator>

#include "host/Text.h"

namespace host::report {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

/// How many bytes of UTF-8 at the beginning make a character that is not seen and changes what is:
/// a control character, an embedding, an override or an isolate; 0 where they do not.
std::size_t UnseenAt(std::string_view utf8) {
    const auto byte = [&](std::size_t at) {
        return at < utf8.size() ? static_cast<unsigned char>(utf8[at]) : 0U;
    };
    if ((byte(0) < 0x20 && byte(0) != '\t') || byte(0) == 0x7F) {
        return 1;
    }
    if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) < 0xA0) {
        return 2;
    }
    const unsigned last = byte(2);
    const bool turns =
        (byte(1) == 0x80 && ((last >= 0xAA && last <= 0xAE) || last == 0x8E || last == 0x8F)) ||
        (byte(1) == 0x81 && last >= 0xA6 && last <= 0xA9);
    return byte(0) == 0xE2 && turns ? 3 : 0;
}

}  // namespace

Literal Heading(int level) {
    constexpr Literal kHeadings[] = {"h1", "h2", "h3", "h4", "h5", "h6"};
    constexpr int kLast = static_cast<int>(std::size(kHeadings));
    return kHeadings[std::clamp(level, 1, kLast) - 1];
}

Html::Element::~Element() {
    html_.written_.append("</").append(name_.text).append(">\n");
}

Html::Element Html::Open(const Literal& name, Attributes attributes) {
    Begin(name, attributes);
    return {*this, name};
}

void Html::Leaf(const Literal& name, std::string_view text, Attributes attributes) {
    Begin(name, attributes);
    Text(text);
    written_.append("</").append(name.text).append(">");
}

void Html::Leaf(const Literal& name, const Utf8& text, Attributes attributes) {
    Begin(name, attributes);
    Escape(text.text);
    written_.append("</").append(name.text).append(">");
}

void Html::Empty(const Literal& name, Attributes attributes) {
    Begin(name, attributes);
    written_.insert(written_.size() - 1, "/");
}

void Html::Text(std::string_view text) {
    Escape(ToLine(text));
}

std::string Html::NewId() {
    return "n" + std::to_string(++ids_);
}

void Html::Begin(const Literal& name, Attributes attributes) {
    written_.append("<").append(name.text);
    for (const Attribute& attribute : attributes) {
        written_.append(" ").append(attribute.name.text).append("=\"");
        Text(attribute.value);
        written_ += '"';
    }
    written_ += '>';
}

void Html::Escape(std::string_view utf8) {
    while (!utf8.empty()) {
        if (const std::size_t unseen = UnseenAt(utf8); unseen != 0) {
            written_ += kReplacement;
            utf8.remove_prefix(unseen);
            continue;
        }
        switch (utf8.front()) {
            case '&':
                written_ += "&amp;";
                break;
            case '<':
                written_ += "&lt;";
                break;
            case '>':
                written_ += "&gt;";
                break;
            case '"':
                written_ += "&quot;";
                break;
            case '\'':
                written_ += "&#39;";
                break;
            default:
                written_ += utf8.front();
        }
        utf8.remove_prefix(1);
    }
}

}  // namespace host::report
