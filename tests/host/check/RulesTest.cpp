#include "host/check/Rules.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using host::check::Rule;

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string TableRow(const Rule& rule) {
    const char* const levels[] = {"warning", "error", "error or warning"};
    std::string row = "| `" + std::string(rule.code) + "` | " +
                      levels[static_cast<std::size_t>(rule.level)] + " | ";
    for (const char character : std::string(rule.meaning) + " | " + std::string(rule.remedy)) {
        row += character == '|' && !row.ends_with(' ') ? "\\|" : std::string(1, character);
    }
    return row + " |\n";
}

TEST(CheckRules, TheDocumentHasTheirTable) {
    std::string table = "|---|---|---|---|\n";
    for (const Rule& rule : host::check::Rules()) {
        table += TableRow(rule);
    }
    const std::string document = ReadFile(TOOLBOX_SOURCE_DIR "/docs/check-findings.md");
    EXPECT_NE(document.find(table + "\n"), std::string::npos) << table;
}

TEST(CheckRules, EachHasFindings) {
    std::string sources;
    for (const auto& file : std::filesystem::directory_iterator(TOOLBOX_SOURCE_DIR "/host/check")) {
        sources += file.path().extension() == ".cpp" ? ReadFile(file.path()) : "";
    }
    for (const Rule& rule : host::check::Rules()) {
        const std::string code = '"' + std::string(rule.code) + '"';
        EXPECT_NE(sources.find(code), std::string::npos) << code;
    }
}

}  // namespace
