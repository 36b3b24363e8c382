// The methods of the simulated WMI classes: parameters in, ReturnValue out; the work is the
// model's.
#include "machine/cim/Schema.h"
#include "machine/model/Identity.h"
#include "machine/model/Network.h"

namespace machine::cim {
namespace {

/// Adapter methods on a vanished instance never get here: the path was resolved before.
Adapter& AdapterOf(const Target& target) {
    return *FindAdapter(target.state,
                        static_cast<std::uint32_t>(std::get<std::int32_t>(target.key)));
}

std::string TextOf(const Properties& in, std::string_view name) {
    const Property* property = FindProperty(in, name);
    const auto* text = property == nullptr ? nullptr : std::get_if<std::string>(&property->value);
    return text == nullptr ? std::string() : *text;
}

std::optional<TextList> GivenList(const Properties& in, std::string_view name) {
    const Property* property = FindProperty(in, name);
    const auto* list = property == nullptr ? nullptr : std::get_if<TextList>(&property->value);
    return list == nullptr ? std::nullopt : std::optional(*list);
}

/// Where nothing and a list without anything are one.
TextList ListOf(const Properties& in, std::string_view name) {
    return GivenList(in, name).value_or(TextList());
}

std::uint32_t NumberOf(const Properties& in, std::string_view name) {
    const Property* property = FindProperty(in, name);
    const auto* number =
        property == nullptr ? nullptr : std::get_if<std::int32_t>(&property->value);
    return number == nullptr ? 0 : static_cast<std::uint32_t>(*number);
}

model::Credentials CredentialsOf(const Properties& in) {
    return {TextOf(in, "UserName"), TextOf(in, "Password")};
}

/// 1 is success as well: done, and a restart is needed.
std::uint32_t Answer(const Target& target, std::uint32_t code) {
    return code == model::kSucceeded && target.state.system.adapterChangesNeedRestart ? 1 : code;
}

}  // namespace

std::vector<Method> AdapterMethods() {
    return {
        {"EnableDHCP",
         false,
         {},
         [](const Target& target, const Properties&) {
             return Answer(target, model::EnableDhcp(target.state, AdapterOf(target)));
         }},
        {"EnableStatic",
         false,
         {{"IPAddress", Type::kTexts}, {"SubnetMask", Type::kTexts}},
         [](const Target& target, const Properties& in) {
             const std::uint32_t code =
                 model::EnableStatic(target.state, AdapterOf(target), ListOf(in, "IPAddress"),
                                     ListOf(in, "SubnetMask"));
             if (code == model::kSucceeded || code == model::kDhcpNotConfigured) {
                 target.milliseconds = target.state.system.versions.staticTakes;
             }
             return Answer(target, code);
         }},
        {"SetGateways",
         false,
         {{"DefaultIPGateway", Type::kTexts}, {"GatewayCostMetric", Type::kUInt16s}},
         [](const Target& target, const Properties& in) {
             return Answer(target, model::SetGateways(target.state, AdapterOf(target),
                                                      ListOf(in, "DefaultIPGateway")));
         }},
        {"SetDNSServerSearchOrder",
         false,
         {{"DNSServerSearchOrder", Type::kTexts}},
         [](const Target& target, const Properties& in) {
             return Answer(target, model::SetDnsServers(target.state, AdapterOf(target),
                                                        ListOf(in, "DNSServerSearchOrder")));
         }},
        {"SetDNSSuffixSearchOrder",
         true,
         {{"DNSDomainSuffixSearchOrder", Type::kTexts}},
         [](const Target& target, const Properties& in) {
             return Answer(target, model::SetDnsSuffixes(
                                       target.state, GivenList(in, "DNSDomainSuffixSearchOrder")));
         }},
    };
}

std::vector<Method> ComputerMethods() {
    return {
        {"Rename",
         false,
         {{"Name", Type::kText}, {"Password", Type::kText}, {"UserName", Type::kText}},
         [](const Target& target, const Properties& in) {
             return model::Rename(target.state, TextOf(in, "Name"), CredentialsOf(in));
         }},
        {"JoinDomainOrWorkgroup",
         false,
         {{"Name", Type::kText},
          {"Password", Type::kText},
          {"UserName", Type::kText},
          {"AccountOU", Type::kText},
          {"FJoinOptions", Type::kUInt32}},
         [](const Target& target, const Properties& in) {
             return model::Join(target.state, TextOf(in, "Name"), CredentialsOf(in),
                                TextOf(in, "AccountOU"), NumberOf(in, "FJoinOptions"));
         }},
        {"UnjoinDomainOrWorkgroup",
         false,
         {{"Password", Type::kText}, {"UserName", Type::kText}, {"FUnjoinOptions", Type::kUInt32}},
         [](const Target& target, const Properties& in) {
             return model::Unjoin(target.state, CredentialsOf(in), NumberOf(in, "FUnjoinOptions"));
         }},
    };
}

}  // namespace machine::cim
