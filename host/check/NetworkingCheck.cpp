#include "host/check/NetworkingCheck.h"

#include <algorithm>

#include "common/config/Event.h"
#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationKeys.h"

namespace host::check {

namespace Event = config::Event;
namespace key = config::key;

void NetworkingCheck::Check() {
    CheckMembership();
    CheckOrganizationalUnit();
    CheckAccount();
    const LookUp* const name = Section().Find(key::kComputerName);
    if (name != nullptr && name->found) {
        ReportValue(*name, CheckComputerName(name->Text()));
    }
}

bool NetworkingCheck::Sends(std::uint32_t kind) const {
    return std::any_of(Section().lookUps.begin(), Section().lookUps.end(),
                       [kind](const LookUp& lookUp) { return lookUp.Sends(kind); });
}

bool NetworkingCheck::MayRestart() const {
    return Sends(Event::COMPUTER_NAME) || Sends(Event::DOMAIN) || Sends(Event::WORKGROUP);
}

bool NetworkingCheck::RenamesAndJoins() const {
    return Sends(Event::COMPUTER_NAME) && Sends(Event::DOMAIN);
}

void NetworkingCheck::CheckMembership() {
    const LookUp* const choice = Section().Find(key::kWorkgroup);
    if (choice == nullptr) {
        return;
    }
    if (!choice->found) {
        const std::string why = "without \"Workgroup\" it leaves workgroup and domain as they are";
        ReportUnused(key::kDomain, why);
        ReportUnused(key::kDnsDomain, why);
    } else if (util::NoCaseEqual(choice->Text(), "True")) {
        CheckWorkgroup(*choice);
    } else {
        CheckDomain(*choice);
    }
}

void NetworkingCheck::CheckWorkgroup(const LookUp& choice) {
    ReportUnused(key::kDnsDomain,
                 "with Workgroup=True only \"Domain\" counts, as the workgroup's name");
    const LookUp* const name = Section().Find(key::kDomain);
    if (name == nullptr || !name->found) {
        Found().Warning("no-domain", OwnValueOf(choice),
                        "there is no \"Domain\" to name the workgroup: the module leaves the "
                        "membership as it is");
    } else if (name->Text().empty()) {
        Found().Warning("no-domain", name->source->keyPlace,
                        "the workgroup's name is empty: the module leaves the membership as it is");
    } else {
        ReportValue(*name, CheckWorkgroupName(name->Text()));
    }
}

void NetworkingCheck::CheckDomain(const LookUp& choice) {
    if (!util::NoCaseEqual(choice.Text(), "False")) {
        Found().Warning("odd-switch", OwnValueOf(choice),
                        Quoted(choice.Text()) +
                            " is neither True nor False: the module takes it "
                            "as False and joins a domain");
    }
    const LookUp* const dns = Section().Find(key::kDnsDomain);
    const LookUp* const flat = Section().Find(key::kDomain);
    if (dns == nullptr || !dns->found) {
        const std::string why =
            "there is no \"DNSDomain\", not even an empty one, and without it "
            "the module joins no domain";
        if (Own(key::kDomain) != nullptr) {
            ReportUnused(key::kDomain, why);
        } else {
            Found().Warning("no-domain", OwnValueOf(choice), why);
        }
        return;
    }
    if (!dns->Text().empty()) {
        ReportValue(*dns, CheckDomainName(dns->Text()));
        ReportUnused(key::kDomain, "\"DNSDomain\" comes first");
    } else if (flat == nullptr || !flat->found) {
        Found().Warning("no-domain", dns->source->keyPlace,
                        "\"DNSDomain\" is empty and there is no \"Domain\": the module leaves the "
                        "membership as it is");
    } else if (flat->Text().empty()) {
        Found().Warning("no-domain", flat->source->keyPlace,
                        "\"DNSDomain\" and \"Domain\" are both empty: the module moves the machine "
                        "into the workgroup \"WORKGROUP\"");
    } else {
        ReportValue(*flat, CheckDomainName(flat->Text()));
    }
}

void NetworkingCheck::CheckOrganizationalUnit() {
    const LookUp* const unit = Section().Find(key::kDsOrganizationalUnit);
    if (unit == nullptr || !unit->found) {
        return;
    }
    if (!unit->Sends(Event::ORGANIZATIONAL_UNIT)) {
        ReportUnused(key::kDsOrganizationalUnit, "a workgroup has no organisational units");
        return;
    }
    if (unit->Text().empty()) {
        Found().Warning("empty-unit", unit->source->keyPlace,
                        "the unit is empty: a machine that joins is put where the domain puts new "
                        "ones, a member is moved to \"CN=Computers\"");
    }
    ReportValue(*unit, CheckUnit(unit->Text()));
}

void NetworkingCheck::CheckAccount() {
    const LookUp* const user = Section().Find(key::kDomainUsername);
    const LookUp* const password = Section().Find(key::kDomainPassword);
    const bool hasUser = user != nullptr && user->found && !user->Text().empty();
    const bool hasPassword = password != nullptr && password->found && !password->Text().empty();
    const bool usesAccount = MayRestart() || Sends(Event::ORGANIZATIONAL_UNIT);
    if (!hasUser) {
        ReportUnused(key::kDomainPassword, "there is no \"DomainUsername\" for it");
        if (Sends(Event::DOMAIN) || Sends(Event::ORGANIZATIONAL_UNIT)) {
            Found().Warning("no-account", HeaderPlace(),
                            "there is no \"DomainUsername\": the module joins or moves without "
                            "an account");
        }
        return;
    }
    if (!usesAccount) {
        const std::string why = "the section asks for nothing that an account is needed for";
        ReportUnused(key::kDomainUsername, why);
        ReportUnused(key::kDomainPassword, why);
    } else if (!hasPassword) {
        Found().Warning("no-password", user->source->keyPlace,
                        "there is no \"DomainPassword\": the module uses the account with an "
                        "empty one");
    }
}

}  // namespace host::check
