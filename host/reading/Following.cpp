#include "host/reading/Following.h"

#include <algorithm>
#include <memory>
#include <string>

#include "common/config/ConfigBuilder.h"
#include "common/logging/LogSink.h"
#include "common/sys/CryptoDll.h"
#include "toolbox/config/ConfigurationFileEvents.h"

namespace host::reading {

namespace {

namespace Kinds = config::Event;

/// Loads no library and deciphers nothing.
class NoCipher : public sys::CryptoDll {
public:
    int Decrypt(const std::string& /*enciphered*/, std::string& /*plain*/) override { return 0; }
};

class Follower {
public:
    Follower(IniFile& file, std::vector<Section>& sections,
             const std::function<Entry*(std::size_t line)>& entryAt)
        : sections_(sections),
          entryAt_(entryAt),
          events_(
              file,
              [this](std::uint32_t kind, std::uint32_t type, std::string_view value) {
                  OnEvent(kind, type, value);
              },
              []() -> std::unique_ptr<sys::CryptoDll> { return std::make_unique<NoCipher>(); }) {
        events_.ObserveLookUps([this](std::string_view, std::string_view key,
                                      const IniFile::Entry* found) { OnLookUp(key, found); });
    }

    std::optional<Refusal> Follow() {
        const auto global = std::ranges::find(sections_, SectionRole::kGlobal, &Section::role);
        section_ = global == sections_.end() ? nullptr : &*global;
        events_.SuppressesReboot();
        for (Section& section : sections_) {
            section_ = &section;
            section.reached = !refusal_ || section.role == SectionRole::kGlobal;
            try {
                events_.SendSection(section.name);
            } catch (const config::ConfigError& error) {
                section.cutShort = true;
                Refuse(error);
            }
        }
        return refusal_;
    }

private:
    void OnLookUp(std::string_view key, const IniFile::Entry* found) {
        if (section_ == nullptr) {
            return;  // [Global] is looked for and is not there
        }
        if (found != nullptr) {
            held_ = entryAt_(found->line);
            held_->found = true;
        }
        section_->lookUps.push_back({std::string(key), found != nullptr, held_, {}});
    }

    void OnEvent(std::uint32_t kind, std::uint32_t type, std::string_view value) {
        const bool ofAccount = kind == Kinds::DOMAIN_USER || kind == Kinds::DOMAIN_PASSWORD;
        section_->lookUps.back().events.push_back({kind, type, ofAccount ? "***" : value});
        if (refusal_) {
            return;
        }
        try {
            BuildScope(kind, type);
        } catch (const config::ConfigError& error) {
            Refuse(error);
        }
    }

    /// The module's builder refuses what makes no sense in a scope. It is given the scopes alone:
    /// their values it would compare with this machine.
    void BuildScope(std::uint32_t kind, std::uint32_t type) {
        if (kind == Kinds::NIC) {
            inAdapter_ = type == Kinds::BEGIN;
            builder_.ConfigEvent(kind, type, {});
        } else if (!inAdapter_) {
            builder_.ConfigEvent(Kinds::IGNORED, Kinds::VALUE, {});
        }
    }

    void Refuse(const config::ConfigError& error) {
        if (!refusal_) {
            refusal_ = {error.Kind(), section_};
        }
    }

    std::vector<Section>& sections_;
    const std::function<Entry*(std::size_t line)>& entryAt_;
    ConfigurationFileEvents events_;
    logging::NullLogSink log_;
    config::ConfigBuilder builder_{log_};
    bool inAdapter_ = false;
    Section* section_ = nullptr;  // that the module is in
    Entry* held_ = nullptr;       // whose text it holds
    std::optional<Refusal> refusal_;
};

}  // namespace

std::optional<Refusal> FollowModule(IniFile& file, std::vector<Section>& sections,
                                    const std::function<Entry*(std::size_t line)>& entryAt) {
    return Follower(file, sections, entryAt).Follow();
}

}  // namespace host::reading
