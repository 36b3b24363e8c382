// A password that is known to the machine and the configuration appears in nothing that the program
// writes, and neither does the account's name, which the file has enciphered.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machine/Cipher.h"
#include "tests/configure/Support.h"

namespace {

using namespace configure_tests;
using host_tests::Outcome;
using testing::HasSubstr;

constexpr const char* kPassword = "Canary-Sings-42";
constexpr const char* kUser = "songbird";

machine::State Machine() {
    machine::State state = machine::DefaultState();
    state.domains[0].accounts.push_back({kUser, kPassword, true, true});
    return state;
}

std::string Configuration(const std::string& rest) {
    return "[Networking]\nDomainUsername=" + machine::Encipher(kUser) +
           "\nDomainPassword=" + machine::Encipher(kPassword) + "\n" + rest;
}

class Canary : public testing::Test {
protected:
    void ExpectSilent(const std::string& text, const std::string& where) {
        EXPECT_THAT(text, Not(HasSubstr(kPassword))) << where;
        EXPECT_THAT(text, Not(HasSubstr(kUser))) << where;
        EXPECT_THAT(text, Not(HasSubstr(machine::Encipher(kPassword)))) << where;
        EXPECT_THAT(text, Not(HasSubstr(machine::Encipher(kUser)))) << where;
    }

    /// Runs the program and searches all that it writes; returns its data.
    std::string Run(Arguments arguments) {
        const std::string where = testing::PrintToString(arguments);
        const Outcome outcome = host_tests::RunHost(arguments);
        ExpectSilent(outcome.data, where + ", data");
        ExpectSilent(outcome.notes, where + ", notes");
        return outcome.data;
    }

    Files files_;
    std::string machine_ = files_.Write("canary.json", Machine());
};

TEST_F(Canary, Configure) {
    const std::string join = files_.Write(
        "canary-join.ini",
        Configuration("Workgroup=false\nDNSDomain=corp.example\nDSOrganizationalUnit=East/Sales\n"
                      "ComputerName=CAGE-1\n"));
    const std::string saved = files_.Name("canary-saved.json");
    const std::string lines = files_.Name("canary.jsonl");
    const std::string timeline = files_.Name("canary.trace.json");
    for (const char* format : {"text", "json"}) {
        const Arguments start = {"configure", join, "--machine", machine_, "--format", format};
        const auto run = [&](const Arguments& more) {
            Arguments arguments = start;
            arguments.insert(arguments.end(), more.begin(), more.end());
            return Run(arguments);
        };
        run({"--plan", "--log"});
        run({"--log", "--trace", lines, "--save-machine", saved});
        run({"--plan", "--until-done", "--log"});
        // The canary would sing: the account really joins the machine.
        EXPECT_THAT(run({"--until-done", "--log", "--trace", lines, "--save-machine", saved}),
                    HasSubstr("CAGE-1 in East/Sales"));
        run({"--until-done", "--trace", timeline});
        run({"--until-done", "--log", "--fail", "JoinDomainOrWorkgroup=1326"});
        run({"--log", "--fail", "Rename=5"});
        run({"--log", "--fail", "Decrypt"});
        run({"--log", "--fail", "Put#3"});
        run({"--trace", lines, "--save-machine", saved, "--fail", "call:20+"});
        ExpectSilent(ReadFile(lines), "calls of a failing run");
        EXPECT_THAT(ReadFile(saved), Not(HasSubstr(kPassword)));
        run({"--until-done", "--trace", lines, "--save-machine", saved});
        ExpectSilent(ReadFile(lines), "lines of calls");
        ExpectSilent(ReadFile(timeline), "timeline of calls");
        // The account is there by name: the machine file that was given names it too.
        EXPECT_THAT(ReadFile(saved), AllOf(HasSubstr(kUser), Not(HasSubstr(kPassword))));
    }
}

TEST_F(Canary, MovesInTheDirectory) {
    machine::State member = Machine();
    member.membership = machine::Membership::OfDomain("CORP", "corp.example");
    member.domains[0].computers.push_back(member.computerName);
    const std::string machine = files_.Write("canary-member.json", member);
    const std::string move =
        files_.Write("canary-move.ini", Configuration("DSOrganizationalUnit=East/Sales\n"));
    const std::string lines = files_.Name("canary-move.jsonl");
    EXPECT_THAT(Run({"configure", move, "--machine", machine, "--log", "--trace", lines}),
                HasSubstr("MoveHere"));
    ExpectSilent(ReadFile(lines), "lines of calls");
    Run({"configure", move, "--machine", machine, "--log", "--fail", "ADsOpenObject"});
}

TEST_F(Canary, OnThisMachine) {
    // It has no "LibCrypto.dll": every request fails, and the file is put away.
    const std::string text = Configuration("ComputerName=CAGE-1\n");
    const std::string away = files_.Name(host_tests::BesideProgram("canary-here.ini"));
    for (const char* format : {"text", "json"}) {
        const auto file = [&] { return files_.Write("canary-here.ini", text); };
        Run({"configure", file(), "--this-machine", "--plan", "--log", "--format", format});
        Run({"configure", file(), "--this-machine", "--yes", "--log", "--format", format});
        EXPECT_TRUE(FileExists(away));
        Run({"send", "Internal", "Configure", "Filename=" + file(), "--format", format});
    }
    // A module that does decipher names the account in its log.
    Run({"--module", host_tests::BesideProgram("odd_module.dll"), "send",
         "Name=PC7 {User=" + std::string(kUser) + "}", "Success"});
}

TEST_F(Canary, TheOtherSubcommands) {
    // The keys where they do nothing, twice, and misspelt: nothing of them is worth showing.
    const std::string odd = files_.Write(
        "canary-odd.ini", "[TCP/IP]\nDomainPassword=" + std::string(kPassword) + "\n" +
                              Configuration("DomainPassword=" + std::string(kPassword) +
                                            "\nDomainPasword=" + kPassword + "\n"));
    const std::string snapshot = files_.Name("canary-snapshot.json");
    for (const char* format : {"text", "json"}) {
        for (const Arguments& arguments : std::initializer_list<Arguments>{
                 {"check", odd},
                 {"check", odd, "--strict"},
                 {"configure", odd, "--machine", machine_, "--plan", "--log"},
                 {"configure", odd, "--machine", odd},
                 {"configure", odd, "--no-such-option"},
                 {"snapshot"},
                 {"snapshot", "--output", snapshot},
                 {"version"},
                 {"version", "--module", odd},
                 {"update-info"}}) {
            Arguments all = arguments;
            all.insert(all.end(), {"--format", format});
            Run(all);
        }
        ExpectSilent(ReadFile(snapshot), "snapshot");
    }
}

}  // namespace
