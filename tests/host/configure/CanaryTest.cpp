// A password that is known to the machine and the configuration appears in nothing that the program
// writes, and neither does the account's name, which the file has enciphered.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machine/Cipher.h"
#include "machine/MachineFile.h"
#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string kPassword = "Canary-Sings-42-Times-A-Day";  // no short string
const std::string kUser = "songbird";

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
        for (const std::string& secret :
             {kPassword, kUser, machine::Encipher(kPassword), machine::Encipher(kUser)}) {
            EXPECT_THAT(text, Not(HasSubstr(secret))) << where;
        }
    }

    /// Runs the program in both formats and searches all that it prints and the file that it
    /// writes; returns its data.
    std::string Run(const Arguments& arguments, const char* written = nullptr) {
        std::string data;
        for (const char* const format : {"text", "json"}) {
            files_.Write("here.ini", Configuration("ComputerName=CAGE-1\n"));
            const std::string where = testing::PrintToString(arguments);
            const auto outcome = host_tests::RunHost(With(arguments, {"--format", format}));
            ExpectSilent(outcome.data + outcome.notes, where);
            if (written != nullptr) {
                ExpectSilent(ReadFile(written), where + ", " + written);
            }
            data += outcome.data;
        }
        return data;
    }

    Files files_;
    std::string machine_ = files_.Write("canary.json", machine::FormatState(Machine()));
};

TEST_F(Canary, Configure) {
    const std::string join = files_.Write(
        "join.ini",
        Configuration("Workgroup=false\nDNSDomain=corp.example\nDSOrganizationalUnit=East/Sales\n"
                      "ComputerName=CAGE-1\n"));
    const Arguments start = {"configure", join, "--machine", machine_, "--log"};
    for (const Arguments& more :
         std::initializer_list<Arguments>{{"--plan"},
                                          {"--plan", "--until-done"},
                                          {"--until-done", "--fail", "JoinDomainOrWorkgroup=1326"},
                                          {"--fail", "Rename=5"},
                                          {"--fail", "Decrypt"},
                                          {"--fail", "Put#3"}}) {
        Run(With(With(start, more), {"--report", "page.html"}), "page.html");
    }
    Run(With(start, {"--trace", "calls.jsonl", "--fail", "call:20+"}), "calls.jsonl");
    Run(With(start, {"--until-done", "--trace", "calls.trace.json"}), "calls.trace.json");
    // The canary would sing: the account really joins the machine.
    EXPECT_THAT(Run(With(start, {"--until-done", "--trace", "calls.jsonl", "--save-machine", "s"}),
                    "calls.jsonl"),
                HasSubstr("CAGE-1 in East/Sales"));
    // The account is there by name: the machine file that was given names it too.
    EXPECT_THAT(ReadFile("s"), AllOf(HasSubstr(kUser), Not(HasSubstr(kPassword))));
}

TEST_F(Canary, MovesInTheDirectory) {
    machine::State member = Machine();
    member.membership = machine::Membership::OfDomain("CORP", "corp.example");
    member.domains[0].computers.push_back(member.computerName);
    const Arguments move = {
        "configure",  files_.Write("move.ini", Configuration("DSOrganizationalUnit=East/Sales\n")),
        "--machine",  files_.Write("member.json", machine::FormatState(member)),
        "--log",      "--trace",
        "calls.jsonl"};
    EXPECT_THAT(Run(move, "calls.jsonl"), HasSubstr("MoveHere"));
    Run(With(move, {"--plan", "--details", "--undo-file", "back.ini"}), "back.ini");
    Run({"init", "--machine", "member.json", "--output", "it.ini"}, "it.ini");
    Run(With(move, {"--fail", "ADsOpenObject"}), "calls.jsonl");
}

TEST_F(Canary, OnThisMachine) {
    // It has no "LibCrypto.dll": every request fails, and the file is put away.
    Run({"configure", "here.ini", "--this-machine", "--plan", "--log"});
    Run({"configure", "here.ini", "--this-machine", "--yes", "--log"});
    EXPECT_TRUE(std::filesystem::remove(host_tests::BesideProgram("here.ini")));
    Run({"send", "Internal", "Configure", "--yes", "Filename=here.ini"});
    std::filesystem::remove(host_tests::BesideProgram("here.ini"));
    // A module that does decipher names the account in its log.
    Run({"--module", host_tests::BesideProgram("odd_module.dll"), "send",
         "Name=PC7 {User=" + kUser + "}", "Success"});
}

TEST_F(Canary, TheOtherSubcommands) {
    // The keys where they do nothing, twice, and misspelt: nothing of them is worth showing.
    const std::string odd = files_.Write(
        "odd.ini",
        "[TCP/IP]\nDomainPassword=" + kPassword + "\n" +
            Configuration("DomainPassword=" + kPassword + "\nDomainPasword=" + kPassword + "\n"));
    for (const Arguments& arguments : std::initializer_list<Arguments>{
             {"check", odd},
             {"configure", odd, "--machine", machine_, "--plan", "--log"},
             {"configure", odd, "--machine", odd},
             {"configure", odd, "--no-such-option"},
             {"version", "--module", odd}}) {
        Run(arguments);
    }
    Run({"snapshot", "--output", "snapshot.json"}, "snapshot.json");
}

}  // namespace
