// Every kind of finding, with what it means and what to do: the one home of these texts. Programs
// know a finding by its rule's code.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace host::check {

enum class Severity { kWarning, kError };

struct Rule {
    /// How grave its findings are; some depend on what else stands in the file.
    enum class Level { kWarning, kError, kEither };

    std::string_view code;
    Level level;
    std::string_view meaning;
    std::string_view remedy;

    constexpr bool Allows(Severity severity) const noexcept {
        return level == Level::kEither ||
               (level == Level::kError) == (severity == Severity::kError);
    }
};

namespace rules {

constexpr auto kWarning = Rule::Level::kWarning;
constexpr auto kError = Rule::Level::kError;
constexpr auto kEither = Rule::Level::kEither;

inline constexpr Rule kAll[] = {
    // The file as a whole, and its lines.
    {"unreadable", kError, "The file cannot be read; the module finds nothing in it.",
     "See that the file is there and may be read."},
    {"empty-file", kWarning, "The file is empty; the module changes nothing and succeeds.",
     "Write what the machine is to have, or send no request."},
    {"nothing-to-do", kWarning, "No section asks for anything; the module changes nothing.",
     "Add [Networking] or an adapter section, or see whether a header is misspelt."},
    {"utf-16", kError, "The file is UTF-16; the module reads bytes and finds no section in it.",
     "Save it as ANSI."},
    {"utf-8", kError,
     "A text has UTF-8 characters beyond ASCII; the module takes each of their bytes for a "
     "character.",
     "Save the file as ANSI, in the code page of the machine."},
    {"byte-order-mark", kEither,
     "The file begins with a byte-order mark, which the module takes for text: it does not see a "
     "header after it.",
     "Save the file without a byte-order mark."},
    {"nul-byte", kError, "A zero byte, which no text has.", "Write the file anew as plain text."},
    {"binary", kError, "A control character, which no text has.",
     "Write the file anew as plain text."},
    {"line-ends", kError,
     "The lines end with a carriage return alone; the module sees a single line.",
     "Save the file with the line ends of Windows or Unix."},
    {"carriage-return", kError,
     "A carriage return stands within a line; the module drops the rest of the line.",
     "Take it out, or make two lines of it."},
    {"no-equals-sign", kWarning,
     "A line has no \"=\"; the module adds it to the value of the line before, or ignores it.",
     "Write key=value, or begin the line with \";\" for a comment."},
    {"no-closing-bracket", kWarning,
     "A header has no \"]\"; the module takes the whole line as the section's name.",
     "Close the bracket."},
    {"behind-header", kWarning, "Text after a header's bracket, which the module ignores.",
     "Move it to a line of its own, or begin it with \";\"."},
    {"comment-in-value", kWarning,
     "A comment follows a value; the module takes it as part of the value.",
     "Give the comment a line of its own."},
    {"quoted-value", kWarning, "The module takes the quotes as a part of the value.",
     "Write the value without quotes."},
    {"percent-sign", kWarning,
     "A \"%\", as of a variable; nothing expands it, the module takes the text as it is.",
     "Write the text that is meant."},
    // Sections and keys.
    {"outside-sections", kWarning, "The key stands before the first header; the module ignores it.",
     "Move it into its section."},
    {"unknown-section", kEither,
     "The module ignores a section of that name; an error where the name is near to one that it "
     "knows.",
     "Correct the name, in its exact letter case, or take the section out."},
    {"repeated-section", kWarning,
     "An adapter section stands twice; the module makes one adapter of both.",
     "Number the sections: [TCP/IP], [NicEntry1], [NicEntry2]."},
    {"unknown-key", kEither,
     "The module ignores a key of that name; an error where the name is near to one that it "
     "knows.",
     "Correct the name, or take the key out."},
    {"misplaced-key", kError, "The key belongs in another kind of section; here it is ignored.",
     "Move it there."},
    {"repeated-key", kWarning, "The key stands twice in its section; the first one counts.",
     "Leave the one that is meant."},
    {"unused-key", kWarning, "The module does not use the key, because of what another one says.",
     "Take it out, or change the other key."},
    {"reused-text", kEither,
     "A key is missing, and the module takes the text of one that it read before; an error where "
     "that text is none for this key.",
     "Write the key with the value that is meant."},
    // Values.
    {"odd-switch", kWarning, "A value that is neither true nor false; the module takes it for one.",
     "Write true or false."},
    {"odd-count", kWarning, "A count that is not a whole number; the module takes a part of it.",
     "Write the number alone."},
    {"count-out-of-range", kError, "A count above 100000, at which the module gives the file up.",
     "Write how many there are."},
    {"bad-name", kError, "No valid name of a computer, workgroup or domain.",
     "Computer: at most 15 letters, digits and inner hyphens, not digits alone. Workgroup: at "
     "most 15 characters, none of \"/\\[]:|<>+=;,?*. Domain: a name of labels and dots."},
    {"bad-unit", kError, "The organisational unit has an empty component.",
     "Write it as a path (East/Sales) or as a distinguished name (OU=Sales,OU=East)."},
    {"odd-unit", kWarning,
     "The organisational unit is neither a path nor a distinguished name; each part between "
     "slashes is taken as a unit's name.",
     "Write it as a path (East/Sales) or as a distinguished name (OU=Sales,OU=East)."},
    {"empty-unit", kWarning,
     "The organisational unit is empty: a machine that joins is put where the domain puts new "
     "ones, a member is moved to CN=Computers.",
     "Name the unit, or take the key out."},
    {"bad-address", kError, "No IPv4 address, or none that Windows takes in this place.",
     "Write four numbers from 0 to 255 with dots between them, without blanks."},
    {"odd-address", kWarning, "The module reads the address as another than it looks.",
     "Write it in full, without leading zeros."},
    {"bad-mask", kError, "No subnet mask, or none that Windows takes in this place.",
     "Write ones from the left, such as 255.255.255.0."},
    {"bad-suffix", kError, "No DNS suffix; Windows refuses the list.",
     "Write domain names with commas between them, without blanks."},
    {"bad-metric", kError, "A metric outside of 1 to 9999, which the route program refuses.",
     "Write a number from 1 to 9999."},
    {"odd-metric", kWarning, "A metric that is not a whole number; the module takes a part of it.",
     "Write the number alone."},
    // [Networking] and the restart.
    {"no-domain", kWarning,
     "The name of the workgroup or domain is missing or empty, so that the membership does not "
     "become what \"Workgroup\" seems to ask for.",
     "Workgroup=True wants \"Domain\", Workgroup=False wants \"DNSDomain\"."},
    {"no-account", kWarning, "A join or a move without an account.",
     "Write \"DomainUsername\" and \"DomainPassword\", enciphered."},
    {"no-password", kWarning, "The account has no password; the module uses an empty one.",
     "Write \"DomainPassword\", enciphered."},
    {"suppressed-restart", kWarning,
     "RebootAfterConfig=false where a restart may be needed: the module answers \"Failure\", and "
     "between a rename and a join it stops for good.",
     "Write RebootAfterConfig=true, or leave the key out."},
    // Adapter sections.
    {"no-description", kError, "Without \"Description\" the module sets nothing of the section.",
     "Write Description= with any text."},
    {"address-mask-count", kError, "Addresses and masks are not as many; Windows refuses them.",
     "Write a mask for each address."},
    {"gateway-count", kError, "More than five gateways, which Windows refuses.",
     "Write at most five."},
    {"gateway-outside", kEither,
     "A gateway in none of the networks of the addresses: an error for the adapter's own, which "
     "Windows refuses; a warning for a route's, which another adapter may reach.",
     "Correct the gateway, the address or its mask."},
    {"missing-server", kWarning,
     "There are fewer DNS servers than the count says; the module sets those that there are.",
     "Write the missing ones, or the right count."},
    {"missing-last-server", kWarning,
     "The last DNS server of the count is missing; the module then sets neither DNS suffixes nor "
     "routes of the section.",
     "Write the missing ones, or the right count."},
    {"skipped-server", kWarning, "The module passes over the DNS server 0.0.0.0.",
     "Take it out, and lower the count."},
    {"suffix-conflict", kWarning,
     "Two sections set different DNS suffixes, which are the machine's: every request sets the "
     "one list and then the other.",
     "Write the same list in each section."},
    // Static routes.
    {"missing-route", kEither,
     "A route of the count is missing, and the module makes it of the text before; an error where "
     "that is no route.",
     "Write the missing route, or the right count."},
    {"no-route", kWarning, "A text that no route comes of.",
     "Write destination,mask,gateway,,metric, with a comma after the metric too."},
    {"incomplete-route", kError, "A route without all its fields, which the route program refuses.",
     "Write destination,mask,gateway,,metric, with a comma after the metric too."},
    {"behind-metric", kWarning, "Text after a route's metric, which the module ignores.",
     "Take it out."},
    {"route-bits", kError,
     "A route's destination has bits outside its mask; the route program refuses it.",
     "Write the network's address, or another mask."},
    {"default-route", kError,
     "A default route in the list, which is added on every request and refused once it is there.",
     "Write it as \"Gateway\"."},
    {"repeated-route", kError, "The same route twice; the route program refuses the second.",
     "Leave one."},
    {"several-route-sections", kError,
     "Two sections set routes; each deletes those of the other, because routes are the machine's.",
     "Write all routes into one section, and Static-Route-Count=-1 into the others."},
    // With --machine: what that machine makes of the file.
    {"no-pci-adapter", kWarning,
     "The machine has no PCI adapter with IP: every adapter section fails.",
     "Give the machine a PCI adapter that is in use, or take the sections out."},
    {"too-few-adapters", kWarning, "No PCI adapter with IP is left for a section; it fails.",
     "Take the section out, or give another adapter IP before the request."},
    {"shifted-adapter", kWarning,
     "A section gets another adapter than its place suggests, because one before has no IP.",
     "Make the sections those of the adapters with IP, in their order."},
    {"ipv6-gateway", kWarning,
     "An adapter has a gateway of IPv6, which the module reads as a host's name or as "
     "255.255.255.255.",
     "Switch router discovery off on that interface, or take IPv6 off the adapter."},
    {"ipv6-address", kWarning, "An adapter's first address is one of IPv6, which the module reads.",
     "Give the adapter an IPv4 address, or take IPv6 off it."},
    {"gateway-left-behind", kWarning,
     "EnableDHCP leaves a gateway that was set by hand beside the lease's.",
     "Delete its route by hand after the request."},
    {"lease-decides", kWarning,
     "The DNS servers are the lease's too; whether they are set by hand depends on how soon the "
     "lease comes.",
     "Write DNS-Server-Count=0 to leave them to the lease."},
    {"static-on-static", kWarning,
     "On some versions of Windows EnableStatic on a static adapter answers 81 although it sets "
     "the address, and the module stops.",
     "Send the file again: with the address in place the module gets past this."},
    {"policy-suffixes", kWarning,
     "A policy sets the DNS suffixes and wins over those of the file; every request sets them "
     "again.",
     "Change the policy, or write its list."},
    {"default-routes", kWarning,
     "The machine has a second persistent default route, or another one to 0.0.0.0, that the list "
     "does not have; its deletion takes all default routes.",
     "Keep one gateway that is set by hand and no other route to 0.0.0.0, or write "
     "Static-Route-Count=-1."},
    {"default-routes-next-time", kWarning,
     "After this request the machine has such a route, and the next request deletes all default "
     "routes.",
     "Keep one gateway that is set by hand and no other route to 0.0.0.0, or write "
     "Static-Route-Count=-1."},
    {"refused-route", kWarning,
     "A default route of the list is there already; the module adds it again, and route refuses "
     "it.",
     "Leave the first default route out of the list."},
    {"shared-destination", kWarning,
     "The machine has several persistent routes to a destination, not all of them in the list; the "
     "deletion of one takes all.",
     "Send the file again: the next request adds what is missing."},
    {"not-elevated", kWarning, "The agent has no administrator's token; nothing can be changed.",
     "Let the agent run as a service or elevated."},
};

consteval const Rule* Find(std::string_view code) {
    for (const Rule& rule : kAll) {
        if (rule.code == code) {
            return &rule;
        }
    }
    throw "no rule has this code";  // ends the compilation
}

}  // namespace rules

/// In the order of the documentation.
constexpr std::span<const Rule> Rules() noexcept {
    return rules::kAll;
}

/// The rule of a finding, written as its code: a code without a rule does not compile.
class Code {
public:
    // NOLINTNEXTLINE(google-explicit-constructor,hicpp-explicit-conversions): it is written as text
    consteval Code(const char* text) : rule_(rules::Find(text)) {}

    std::string_view Text() const noexcept { return rule_->code; }
    const Rule& GetRule() const noexcept { return *rule_; }
    /// In Rules().
    std::size_t Position() const noexcept { return static_cast<std::size_t>(rule_ - rules::kAll); }

    bool operator==(const Code&) const = default;

private:
    const Rule* rule_;
};

}  // namespace host::check
