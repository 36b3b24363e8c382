#include "host/check/Sarif.h"

#include <windows.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "common/util/Strings.h"
#include "host/Files.h"
#include "host/Text.h"
#include "toolbox/config/ModuleVersion.h"

namespace host::check {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kBase = "%SRCROOT%";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

Json Message(const std::string& utf8) {
    return {{"text", utf8}};
}

const char* LevelName(bool isError) {
    return isError ? "error" : "warning";
}

Json DescribeRules() {
    Json rules = Json::array();
    for (const Rule& rule : Rules()) {
        const Json meaning = Message(std::string(rule.meaning));
        rules.push_back(
            {{"id", rule.code},
             {"shortDescription", meaning},
             {"fullDescription", meaning},
             {"help", Message(std::string(rule.remedy))},
             {"defaultConfiguration", {{"level", LevelName(rule.Allows(Severity::kError))}}}});
    }
    return rules;
}

/// The path as a part of a URI. A colon is one of a drive in front and is encoded elsewhere: it
/// would end a scheme.
std::string Encoded(std::string_view path, bool hasDrive) {
    constexpr std::string_view kPlain = "-._~/";
    std::string encoded;
    for (const char character : ToUtf8(path)) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isDrive = hasDrive && character == ':' && encoded.size() == 1;
        if (util::IsLetter(character) || (character >= '0' && character <= '9') || isDrive ||
            kPlain.find(character) != std::string_view::npos) {
            encoded += character;
        } else {
            encoded += character == '\\' ? "/" : util::Format("%%%02X", unsigned{byte});
        }
    }
    return encoded;
}

/// Where a file is: relative to the current folder, if it is below it.
Json Location(const std::string& path) {
    std::string folder = FullPath(".");
    folder += folder.ends_with('\\') ? "" : "\\";
    const std::string full = FullPath(path);
    if (full.size() > folder.size() && util::NoCaseEqual(full.substr(0, folder.size()), folder)) {
        return {{"uri", Encoded(full.substr(folder.size()), false)}, {"uriBaseId", kBase}};
    }
    if (full.starts_with("\\\\")) {
        return {{"uri", "file:" + Encoded(full, false)}};
    }
    return {{"uri", "file:///" + Encoded(full, true)}};
}

/// Counts columns as readers of the log do: in UTF-16 units of the file, which they take for UTF-8
/// where it can be that.
class Columns {
public:
    explicit Columns(std::string_view bytes)
        : codePage_(Units(CP_UTF8, MB_ERR_INVALID_CHARS, bytes) > 0 ? CP_UTF8 : CP_ACP),
          hasMark_(bytes.starts_with(kUtf8Mark)) {}

    Json Region(const reading::File& file, const Place& place) const {
        if (place.line == 0) {
            return {{"startLine", 1}, {"endLine", std::max<std::size_t>(file.LineCount(), 1)}};
        }
        const std::string_view line = file.Line(place.line);
        const auto column = [&](std::size_t bytes) {
            // The mark is no part of the text.
            const bool withMark = hasMark_ && place.line == 1;
            const std::string_view before = line.substr(withMark ? kUtf8Mark.size() : 0);
            bytes -= std::min(bytes, line.size() - before.size());
            return Units(codePage_, 0, before.substr(0, bytes)) + 1;
        };
        const std::size_t start = place.column - 1;
        return {{"startLine", place.line},
                {"startColumn", column(start)},
                {"endLine", place.line},
                {"endColumn", column(start + place.length)}};
    }

private:
    static int Units(UINT codePage, DWORD flags, std::string_view text) {
        return text.empty() ? 0
                            : MultiByteToWideChar(codePage, flags, text.data(),
                                                  static_cast<int>(text.size()), nullptr, 0);
    }

    UINT codePage_;
    bool hasMark_;
};

/// With what to do about it, as sentences.
std::string Sentences(const Finding& finding) {
    const auto sentence = [](const std::string& text) {
        return text + (text.ends_with('?') || text.ends_with('.') ? "" : ".");
    };
    return ToUtf8(sentence(finding.message) +
                  (finding.remedy.empty() ? "" : " Help: " + sentence(finding.remedy)));
}

Json Notification(const char* level, const std::string& text) {
    return {{"level", level}, {"message", Message(ToUtf8(text))}};
}

}  // namespace

void SarifLog::Add(const std::string& name, const std::string& path, const CheckedFile& checked) {
    Json location = path.empty() ? Json{{"description", Message(ToUtf8(name))}} : Location(path);
    location["index"] = artifacts_.size();
    const Columns columns(checked.file.Bytes());
    for (const Finding& finding : checked.findings.List()) {
        const Json physical{{"artifactLocation", location},
                            {"region", columns.Region(checked.file, finding.place)}};
        results_.push_back({{"ruleId", finding.code.Text()},
                            {"ruleIndex", finding.code.Position()},
                            {"level", LevelName(finding.severity == Severity::kError)},
                            {"message", Message(Sentences(finding))},
                            {"locations", Json::array({{{"physicalLocation", physical}}})}});
    }
    const std::size_t all = checked.findings.Errors() + checked.findings.Warnings();
    if (all > checked.findings.List().size()) {
        notifications_.push_back(Notification(
            "warning", name + " has " + std::to_string(all - checked.findings.List().size()) +
                           " more findings, which this log leaves out."));
    }
    location.erase("index");
    artifacts_.push_back({{"location", location}, {"roles", {"analysisTarget"}}});
}

void SarifLog::AddFailure(const std::string& why) {
    notifications_.push_back(Notification("error", why));
    successful_ = false;
}

Json SarifLog::Finish(int exitCode) {
    const std::string version =
        util::Format("%d.%d.%d", MODULE_VERSION_MAJOR, MODULE_VERSION_MINOR, MODULE_VERSION_BUILD);
    Json run{
        {"tool",
         {{"driver",
           {{"name", "toolbox-host"}, {"semanticVersion", version}, {"rules", DescribeRules()}}}}},
        {"invocations", Json::array({{{"executionSuccessful", successful_},
                                      {"exitCode", exitCode},
                                      {"toolExecutionNotifications", std::move(notifications_)}}})},
        {"originalUriBaseIds",
         {{kBase, {{"description", Message("The folder that toolbox-host was run in.")}}}}},
        {"artifacts", std::move(artifacts_)},
        {"columnKind", "utf16CodeUnits"},
        {"results", std::move(results_)}};
    return {{"$schema",
             "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/"
             "sarif-schema-2.1.0.json"},
            {"version", "2.1.0"},
            {"runs", Json::array({std::move(run)})}};
}

}  // namespace host::check
