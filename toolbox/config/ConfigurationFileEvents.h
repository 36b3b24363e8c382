#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/config/Event.h"
#include "common/sys/CryptoDll.h"
#include "toolbox/config/IniFile.h"

/// Reads a loaded configuration file into the stream of configuration events.
///
/// One text serves every look-up, and a look-up that finds nothing leaves it as it was. In an
/// adapter section most look-ups are not examined, so that a missing key sends the text of the key
/// that was found before it. Configurations in the field rely on what follows from that; nothing
/// here mends it.
class ConfigurationFileEvents {
public:
    /// A value that the file holds is a view into the reader's memory.
    using Sink =
        std::function<void(std::uint32_t kind, std::uint32_t type, std::string_view value)>;
    /// Makes the cipher of a [Networking] section, at whose end it is destroyed. Never null.
    using MakeCipher = std::unique_ptr<sys::CryptoDll> (*)();

    /// Told of every look-up; `found` is null where there is no such key.
    using LookUp = std::function<void(std::string_view section, std::string_view key,
                                      const IniFile::Entry* found)>;

    /// A count in the file above this is refused.
    static constexpr std::int32_t kMaximumCount = 100000;

    /// `file` must outlive this object and not be loaded again meanwhile.
    ConfigurationFileEvents(IniFile& file, Sink sink, MakeCipher makeCipher);

    /// For whoever wants to know which key an event comes from; the module does not.
    void ObserveLookUps(LookUp observer) { observer_ = std::move(observer); }

    /// Whether the file says that a needed restart is not to be reported. To be called first: this
    /// look-up uses the shared text too.
    bool SuppressesReboot();

    /// Walks the sections in file order. Throws what the sink and the cipher throw, and
    /// config::ConfigError for a count that is out of range.
    void SendSections();

    /// What the module makes of a section.
    enum class SectionKind { kIgnored, kAdapter, kNetworking };
    /// Names are matched with case here, although look-ups disregard it.
    static SectionKind KindOf(std::string_view section);
    /// One step of SendSections: the section of that name as the walk spells it.
    void SendSection(std::string_view section);

    /// Destination, mask, gateway, one that is not used, metric.
    static constexpr std::size_t kRouteFields = 5;
    /// What becomes of a route's text: the fields that are sent, and what is left; all trimmed.
    struct RouteFields {
        std::vector<std::string_view> sent;
        std::string_view rest;
    };
    /// Only what a comma follows is a field, and a text that begins with a comma has none.
    static RouteFields SplitRoute(std::string_view text);

private:
    using Kind = config::Event::Kind;
    using Type = config::Event::Type;

    bool Find(std::string_view section, std::string_view key);
    void Send(Kind kind, Type type, std::string_view value = {});
    void SendValue(Kind kind, std::string_view value);
    void SendList(Kind kind);
    std::int32_t Count() const;

    void SendNetworking(std::string_view section);
    bool SendMembership(std::string_view section);
    void SendAdapter(std::string_view section);
    void SendStaticAddressing(std::string_view section);
    void SendRoutes(std::string_view section);
    void SendRouteFields();

    IniFile& file_;
    Sink sink_;
    MakeCipher makeCipher_;
    LookUp observer_;        // empty unless set
    std::string_view text_;  // what the last look-up that found something found
};
