#include "host/check/NetworkingCheck.h"

#include <algorithm>

#include "common/config/Event.h"
#include "common/util/Strings.h"

namespace host::check {

namespace Event = config::Event;

void NetworkingCheck::Check() {
    CheckMembership();
    CheckOrganizationalUnit();
    CheckAccount();
    const LookUp* const name = Reading().Find("ComputerName");
    if (name != nullptr && name->found) {
        ReportValue(*name, CheckComputerName(name->text));
    }
}

bool NetworkingCheck::Sends(std::uint32_t kind) const {
    return std::any_of(Reading().lookUps.begin(), Reading().lookUps.end(),
                       [kind](const LookUp& lookUp) { return lookUp.Sends(kind); });
}

bool NetworkingCheck::MayRestart() const {
    return Sends(Event::COMPUTER_NAME) || Sends(Event::DOMAIN) || Sends(Event::WORKGROUP);
}

bool NetworkingCheck::RenamesAndJoins() const {
    return Sends(Event::COMPUTER_NAME) && Sends(Event::DOMAIN);
}

void NetworkingCheck::CheckMembership() {
    const LookUp* const choice = Reading().Find("Workgroup");
    if (choice == nullptr) {
        return;
    }
    if (!choice->found) {
        const std::string why = "without \"Workgroup\" it leaves workgroup and domain as they are";
        ReportUnused("Domain", why);
        ReportUnused("DNSDomain", why);
    } else if (util::NoCaseEqual(choice->text, "True")) {
        CheckWorkgroup(*choice);
    } else {
        CheckDomain(*choice);
    }
}

void NetworkingCheck::CheckWorkgroup(const LookUp& choice) {
    ReportUnused("DNSDomain",
                 "with Workgroup=True only \"Domain\" counts, as the workgroup's name");
    const LookUp* const name = Reading().Find("Domain");
    if (name == nullptr || !name->found) {
        Found().Warning("no-domain", ValueOf(choice),
                        "there is no \"Domain\" to name the workgroup: the module leaves the "
                        "membership as it is");
    } else if (name->text.empty()) {
        Found().Warning("no-domain", Source().KeyPlace(name->sourceLine),
                        "the workgroup's name is empty: the module leaves the membership as it is");
    } else {
        ReportValue(*name, CheckWorkgroupName(name->text));
    }
}

void NetworkingCheck::CheckDomain(const LookUp& choice) {
    if (!util::NoCaseEqual(choice.text, "False")) {
        Found().Warning("odd-switch", ValueOf(choice),
                        Quoted(choice.text) +
                            " is neither True nor False: the module takes it "
                            "as False and joins a domain");
    }
    const LookUp* const dns = Reading().Find("DNSDomain");
    const LookUp* const flat = Reading().Find("Domain");
    if (dns == nullptr || !dns->found) {
        const std::string why =
            "there is no \"DNSDomain\", not even an empty one, and without it "
            "the module joins no domain";
        if (Own("Domain") != nullptr) {
            ReportUnused("Domain", why);
        } else {
            Found().Warning("no-domain", ValueOf(choice), why);
        }
        return;
    }
    if (!dns->text.empty()) {
        ReportValue(*dns, CheckDomainName(dns->text));
        ReportUnused("Domain", "\"DNSDomain\" comes first");
    } else if (flat == nullptr || !flat->found) {
        Found().Warning("no-domain", Source().KeyPlace(dns->sourceLine),
                        "\"DNSDomain\" is empty and there is no \"Domain\": the module leaves the "
                        "membership as it is");
    } else if (flat->text.empty()) {
        Found().Warning("no-domain", Source().KeyPlace(flat->sourceLine),
                        "\"DNSDomain\" and \"Domain\" are both empty: the module moves the machine "
                        "into the workgroup \"WORKGROUP\"");
    } else {
        ReportValue(*flat, CheckDomainName(flat->text));
    }
}

void NetworkingCheck::CheckOrganizationalUnit() {
    const LookUp* const unit = Reading().Find("DSOrganizationalUnit");
    if (unit == nullptr || !unit->found) {
        return;
    }
    if (!unit->Sends(Event::ORGANIZATIONAL_UNIT)) {
        ReportUnused("DSOrganizationalUnit", "a workgroup has no organisational units");
        return;
    }
    if (unit->text.empty()) {
        Found().Warning("empty-unit", Source().KeyPlace(unit->sourceLine),
                        "the unit is empty: a machine that joins is put where the domain puts new "
                        "ones, a member is moved to \"CN=Computers\"");
    }
    ReportValue(*unit, CheckUnit(unit->text));
}

void NetworkingCheck::CheckAccount() {
    const LookUp* const user = Reading().Find("DomainUsername");
    const LookUp* const password = Reading().Find("DomainPassword");
    const bool hasUser = user != nullptr && user->found && !user->text.empty();
    const bool hasPassword = password != nullptr && password->found && !password->text.empty();
    const bool usesAccount = MayRestart() || Sends(Event::ORGANIZATIONAL_UNIT);
    if (!hasUser) {
        ReportUnused("DomainPassword", "there is no \"DomainUsername\" for it");
        if (Sends(Event::DOMAIN) || Sends(Event::ORGANIZATIONAL_UNIT)) {
            Found().Warning("no-account", HeaderPlace(),
                            "there is no \"DomainUsername\": the module joins or moves without "
                            "an account");
        }
        return;
    }
    if (!usesAccount) {
        const std::string why = "the section asks for nothing that an account is needed for";
        ReportUnused("DomainUsername", why);
        ReportUnused("DomainPassword", why);
    } else if (!hasPassword) {
        Found().Warning("no-password", Source().KeyPlace(user->sourceLine),
                        "there is no \"DomainPassword\": the module uses the account with an "
                        "empty one");
    }
}

}  // namespace host::check
