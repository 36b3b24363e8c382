#include "tests/cases/harness/PresentedFile.h"

#include <fstream>
#include <iterator>
#include <utility>

namespace e2e {

std::string ReadFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

PresentedFile::PresentedFile(const AgentFolder& agent, std::string name, std::string text,
                             Stands stands)
    : text_(std::move(text)),
      stands_(stands),
      inbox_(agent.Inbox() / name),
      home_(agent.Home() / name) {}

std::string PresentedFile::Present() const {
    const std::filesystem::path& place = stands_ == Stands::Home ? home_ : inbox_;
    if (stands_ != Stands::Nowhere) {
        WriteFile(place, text_);
    }
    return place.string();
}

std::string PresentedFile::WhereIsIt() const {
    const bool inInbox = std::filesystem::exists(inbox_);
    const bool atHome = std::filesystem::is_regular_file(home_) && ReadFile(home_) == text_;
    if (inInbox && ReadFile(inbox_) != text_) {
        return "changed";
    }
    if (inInbox) {
        return atHome ? "in both places" : "kept";
    }
    return atHome ? "put away" : "gone";
}

}  // namespace e2e
