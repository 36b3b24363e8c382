#include "tests/requests/harness/PresentedFile.h"

#include <utility>

namespace requests {

PresentedFile::PresentedFile(const AgentFolder& agent, std::string name, std::string text,
                             Stands stands)
    : text_(std::move(text)),
      stands_(stands),
      inbox_(agent.Inbox() / name),
      home_(agent.Home() / name) {}

std::string PresentedFile::Present() const {
    const std::filesystem::path& place = stands_ == Stands::kHome ? home_ : inbox_;
    if (stands_ != Stands::kNowhere) {
        support::WriteFile(place, text_);
    }
    return place.string();
}

std::string PresentedFile::WhereIsIt() const {
    const bool inInbox = std::filesystem::exists(inbox_);
    const bool atHome =
        std::filesystem::is_regular_file(home_) && support::ReadFile(home_) == text_;
    if (inInbox && support::ReadFile(inbox_) != text_) {
        return "changed";
    }
    if (inInbox) {
        return atHome ? "in both places" : "kept";
    }
    return atHome ? "put away" : "gone";
}

}  // namespace requests
