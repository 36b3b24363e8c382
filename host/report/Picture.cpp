#include "host/report/Picture.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "host/Text.h"

namespace host::report {

namespace {

// Lengths in the picture's own units, which are pixels where there is room for it.
constexpr int kWidth = 344;
constexpr int kHead = 54;        // height of the part's own box
constexpr int kWire = 22;        // where the wire runs down
constexpr int kIndent = 40;      // where names of groups begin
constexpr int kTextIndent = 60;  // where values begin, behind their signs
constexpr int kWordEnd = 334;
constexpr int kLine = 18;
constexpr std::size_t kCharacters = 29;      // that a line of a value holds
constexpr std::size_t kMostLines = 4;        // of one value
constexpr std::size_t kHeadCharacters = 37;  // that the name of a part may take
constexpr std::size_t kMostEntries = 24;     // of one group: a picture of thousands shows nothing

struct Look {
    const char* style;
    const char* sign;  ///< in UTF-8
    const char* word;
};

const Look& LookOf(Mark mark) {
    static const Look kLooks[] = {{"same", "", ""},
                                  {"moved", "\u2195", "moved"},
                                  {"gone", "\u2212", "goes"},
                                  {"new", "+", "new"}};
    return kLooks[static_cast<std::size_t>(mark)];
}

/// How many bytes of the line take no more room than so many characters. Characters of the far
/// east take the room of two.
std::size_t BytesThatFit(std::string_view utf8, std::size_t characters) {
    std::size_t room = 0;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        const bool begins = (byte & 0xC0) != 0x80;
        room += begins ? (byte >= 0xE3 ? 2 : 1) : 0;
        if (room > characters) {
            return i;
        }
    }
    return utf8.size();
}

std::string Shortened(const std::string& utf8, std::size_t characters) {
    return BytesThatFit(utf8, characters) == utf8.size()
               ? utf8
               : utf8.substr(0, BytesThatFit(utf8, characters - 3)) + "...";
}

/// The text in lines of a value in UTF-8, broken at blanks where there are any.
std::vector<std::string> Wrapped(const std::string& text) {
    std::string rest = ToLine(text);
    std::vector<std::string> lines;
    while (lines.size() + 1 < kMostLines) {
        const std::size_t fits = BytesThatFit(rest, kCharacters);
        if (fits == rest.size()) {
            break;
        }
        const std::size_t blank = rest.rfind(' ', fits);
        const bool breaks = blank != std::string::npos && blank > 0;
        lines.push_back(rest.substr(0, breaks ? blank : fits));
        rest.erase(0, breaks ? blank + 1 : fits);
    }
    lines.push_back(Shortened(rest, kCharacters));
    return lines;
}

std::string Number(int number) {
    return std::to_string(number);
}

std::size_t Unshown(const Group& group) {
    return group.entries.size() - std::min(group.entries.size(), kMostEntries);
}

/// Changes first, where not everything can be shown.
std::vector<Entry> Shown(const Group& group) {
    std::vector<Entry> shown = group.entries;
    if (Unshown(group) != 0) {
        // No std::ranges here: this clang stumbles over the range that it gives back.
        std::stable_partition(shown.begin(), shown.end(),
                              [](const Entry& entry) { return entry.mark != Mark::kSame; });
        shown.resize(kMostEntries);
    }
    return shown;
}

std::string MoreText(const Group& group) {
    return "and " + std::to_string(Unshown(group)) + " more";
}

/// The picture in words: "Gateways: 192.0.2.1. DNS servers: none, 192.0.2.11 (new)."
std::string Description(const std::vector<Group>& groups) {
    std::string text;
    for (const Group& group : groups) {
        std::string list;
        for (const Entry& entry : Shown(group)) {
            const std::string word = LookOf(entry.mark).word;
            list +=
                (list.empty() ? "" : ", ") + entry.text + (word.empty() ? "" : " (" + word + ")");
        }
        if (Unshown(group) != 0) {
            list += ", " + MoreText(group);
        }
        text += std::string(text.empty() ? "" : " ") + group.name + ": " +
                (list.empty() ? "none" : list) + ".";
    }
    return text;
}

class Drawing {
public:
    Drawing(Html& html, const std::vector<Group>& groups) : html_(html), groups_(groups) {}

    /// Where the last group's name stands, and how high the whole is.
    std::pair<int, int> Measure() const {
        int top = kHead;
        int last = kHead;
        for (const Group& group : groups_) {
            last = top + kFirst;
            top += HeightOf(group);
        }
        return {last, top + 6};
    }

    void Draw(const Part& part, const std::string& when) {
        const std::string title = html_.NewId();
        const std::string description = html_.NewId();
        const auto [last, height] = Measure();
        const auto svg =
            html_.Open("svg", {{"viewBox", "0 0 " + Number(kWidth) + " " + Number(height)},
                               {"role", "img"},
                               {"aria-labelledby", title + " " + description}});
        html_.Leaf("title", when + ": " + part.name, {{"id", title}});
        html_.Leaf("desc", Description(groups_), {{"id", description}});
        html_.Empty("path",
                    {{"class", "wire"},
                     {"d", "M" + Number(kWire) + " " + Number(kHead) + "V" + Number(last)}});
        DrawHead(part, when);
        int top = kHead;
        for (const Group& group : groups_) {
            DrawGroup(group, top);
            top += HeightOf(group);
        }
    }

private:
    static constexpr int kFirst = 22;  // from the top of a group to the middle of its name

    static int HeightOf(const Group& group) {
        int height = kFirst + 8;
        for (const Entry& entry : Shown(group)) {
            height += static_cast<int>(Wrapped(entry.text).size()) * kLine + 6;
        }
        const bool hasRemark = group.entries.empty() || Unshown(group) != 0;
        return height + (hasRemark ? kLine + 4 : 0);
    }

    void DrawText(int x, int y, const std::string& style, const std::string& utf8) {
        html_.Leaf("text", Utf8{utf8}, {{"x", Number(x)}, {"y", Number(y)}, {"class", style}});
    }

    void DrawHead(const Part& part, const std::string& when) {
        html_.Empty("rect", {{"class", "head"},
                             {"x", "1"},
                             {"y", "1"},
                             {"width", Number(kWidth - 2)},
                             {"height", Number(kHead - 2)},
                             {"rx", "8"}});
        // A socket, or a screen on its foot.
        html_.Empty("path",
                    {{"class", "glyph"},
                     {"d", part.isAdapter ? "M12 17h20v20h-5v4h-10v-4h-5zM17 17v6M22 17v6M27 17v6"
                                          : "M11 16h22v17h-22zM22 33v6M16 40h12"}});
        DrawText(kIndent + 2, 23, "when", when);
        DrawText(kIndent + 2, 42, "name", Shortened(ToLine(part.name), kHeadCharacters));
    }

    void DrawGroup(const Group& group, int top) {
        const int middle = top + kFirst;
        html_.Empty("path",
                    {{"class", "wire"}, {"d", "M" + Number(kWire) + " " + Number(middle) + "h10"}});
        html_.Empty("circle",
                    {{"class", "node"}, {"cx", Number(kWire)}, {"cy", Number(middle)}, {"r", "4"}});
        DrawText(kIndent, middle + 4, "group", group.name);
        int y = middle + 12;
        for (const Entry& entry : Shown(group)) {
            y = DrawEntry(entry, y);
        }
        if (group.entries.empty()) {
            DrawText(kTextIndent, y + 13, "none", "none");
        } else if (Unshown(group) != 0) {
            DrawText(kTextIndent, y + 13, "none", MoreText(group));
        }
    }

    int DrawEntry(const Entry& entry, int y) {
        const Look& look = LookOf(entry.mark);
        const std::vector<std::string> lines = Wrapped(entry.text);
        const int height = static_cast<int>(lines.size()) * kLine;
        if (entry.mark != Mark::kSame) {
            html_.Empty("rect", {{"class", std::string("frame ") + look.style},
                                 {"x", Number(kIndent)},
                                 {"y", Number(y)},
                                 {"width", Number(kWidth - kIndent - 2)},
                                 {"height", Number(height + 2)},
                                 {"rx", "5"}});
            html_.Leaf("text", Utf8{look.sign},
                       {{"x", Number(kIndent + 7)},
                        {"y", Number(y + 14)},
                        {"class", std::string("sign ") + look.style}});
            html_.Leaf("text", std::string(look.word),
                       {{"x", Number(kWordEnd)},
                        {"y", Number(y + 14)},
                        {"class", std::string("word ") + look.style}});
        }
        for (std::size_t i = 0; i < lines.size(); ++i) {
            DrawText(kTextIndent, y + 14 + static_cast<int>(i) * kLine,
                     std::string("value ") + look.style, lines[i]);
        }
        return y + height + 6;
    }

    Html& html_;
    const std::vector<Group>& groups_;
};

}  // namespace

void DrawParts(Html& html, const std::vector<Part>& parts, const std::string& after) {
    for (const Part& part : parts) {
        const bool changes = part.Changes();
        const auto figure = html.Open("figure", {{"class", changes ? "changes" : "stays"}});
        {
            const auto caption = html.Open("figcaption");
            html.Leaf("strong", part.name);
            html.Text(changes ? " changes" : " stays as it is");
            if (!part.remark.empty()) {
                html.Text("; " + part.remark);
            }
        }
        const auto sides = html.Open("div", {{"class", "sides"}});
        Drawing(html, part.before).Draw(part, changes ? "Before" : "Before and after");
        if (changes) {
            html.Leaf("span", Utf8{"\u2192"}, {{"class", "becomes"}, {"aria-hidden", "true"}});
            Drawing(html, part.after).Draw(part, after);
        }
    }
}

}  // namespace host::report
