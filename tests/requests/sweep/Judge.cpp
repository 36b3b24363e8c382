#include "tests/requests/sweep/Judge.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "common/util/Strings.h"

namespace sweep {

namespace {

using Reply = std::map<std::string, std::string>;

/// Calls whose failure the module passes over: it goes on with what it knew before, so the request
/// may end well and yet otherwise than without the failure.
constexpr std::string_view kSilent[] = {
    "Get",                        // a property that cannot be read keeps its value
    "LsaQueryInformationPolicy",  // a policy that tells nothing belongs to no member
    "NetWkstaGetInfo",            // the workgroup stays unknown
    "GetComputerObjectNameA",     // the unit stays unknown
    "Decrypt",                    // the account stays empty
    "GetFileAttributesA",         // a file that cannot be looked at is not there
    "GetModuleFileNameA",         // the program's folder is unknown
};

bool IsSilent(const machine::TraceEntry& call) {
    return !call.injected || std::ranges::find(kSilent, call.function) != std::end(kSilent);
}

std::string LastLine(const requests::RunResult& run, std::size_t fromEnd) {
    return run.log.size() > fromEnd ? run.log[run.log.size() - 1 - fromEnd] : std::string();
}

bool Contains(const std::vector<std::string>& lines, const std::string& part) {
    return std::ranges::any_of(
        lines, [&part](const std::string& line) { return line.find(part) != std::string::npos; });
}

class Examination {
public:
    Examination(const Ending& ending, const Ending& clean) : ending_(ending), clean_(clean) {}

    Verdict Run() {
        const requests::RunResult& run = ending_.run;
        verdict_.passedOver = std::ranges::all_of(run.calls, IsSilent);
        if (!run.escaped.empty()) {
            verdict_.answer = "passed on";
            Complain(run.escaped + " passed on to the host");
        } else if (run.result == 1) {
            ExamineAnswer();
        } else if (run.result == 0 && run.reply.empty()) {
            verdict_.answer = "no file";
            Expect(Contains(run.log, "does not exist"), "no answer, and the file was not missing");
            Expect(ending_.file == "kept", "the file is " + ending_.file);
        } else {
            ExamineEscape();
        }
        if (verdict_.answer == "Success" || verdict_.answer == "Reboot") {
            verdict_.harmless = run.reply == clean_.run.reply && ending_.file == clean_.file &&
                                ending_.machine == clean_.machine;
            Expect(verdict_.harmless || verdict_.passedOver,
                   "a failure that must not be passed over was");
        }
        Expect(run.comBlocks == 0, "COM memory was not given back");
        for (const std::string& what : run.unexpected) {
            Complain("not served: " + what);
        }
        return std::move(verdict_);
    }

private:
    void Complain(std::string what) { verdict_.complaints.push_back(std::move(what)); }
    void Expect(bool holds, const std::string& otherwise) {
        if (!holds) {
            Complain(otherwise);
        }
    }

    void ExamineAnswer() {
        const Reply& reply = ending_.run.reply;
        if (reply == Reply{{"Result", "Reboot"}}) {
            verdict_.answer = "Reboot";
            Expect(ending_.file == "kept", "a restart is to come, and the file is " + ending_.file);
            return;
        }
        if (reply == Reply{{"Result", "Success"}}) {
            verdict_.answer = "Success";
        } else if (reply == Reply{{"Result", "Failure"},
                                  {"Status-Module", "Tovrune"},
                                  {"Status-Code", "3"}}) {
            verdict_.answer = "Failure for a suppressed restart";
        } else {
            verdict_.answer = "Failure";
            ExamineFailure();
        }
        Expect(ending_.file == "put away", "the file is " + ending_.file);
    }

    /// The reply, the log and what was thrown tell the same.
    void ExamineFailure() {
        const Reply& reply = ending_.run.reply;
        const std::string codeText = reply.contains("Status-Code") ? reply.at("Status-Code") : "";
        std::int32_t code = 0;
        const auto [end, error] =
            std::from_chars(codeText.data(), codeText.data() + codeText.size(), code);
        const bool isAnswer = reply.size() == 3 && reply.contains("Result") &&
                              reply.at("Result") == "Failure" && reply.contains("Status-Module") &&
                              reply.at("Status-Module") == "Win32" && error == std::errc();
        if (!isAnswer) {
            Complain("the reply is none that there is");
            return;
        }
        Expect(Contains(ending_.run.errors, "(error = " + codeText),
               "no error was thrown with the code " + codeText);
        const std::string hexadecimal = util::Format("err=%x", static_cast<unsigned>(code));
        const bool isLogged = std::ranges::any_of(ending_.run.log, [&](const std::string& line) {
            return line.starts_with("0 Configure::HandleMessage(): caught ") &&
                   line.ends_with(hexadecimal);
        });
        Expect(isLogged, "no line of the log says " + hexadecimal);
    }

    /// Putting the file away failed once more after a failure.
    void ExamineEscape() {
        verdict_.answer = "Failure, file not put away";
        ExamineFailure();
        Expect(LastLine(ending_.run, 1) ==
                   "0 Toolbox-Main:103 Toolbox::DoMagic caught an unhandled exception",
               "the log does not say that an error was not handled");
        Expect(
            LastLine(ending_.run, 0).starts_with("0 Exception Details: common\\util\\FileUtils:"),
            "the log does not say which");
        Expect(ending_.file == "kept" || ending_.file == "in both places",
               "the file is " + ending_.file);
    }

    const Ending& ending_;
    const Ending& clean_;
    Verdict verdict_;
};

}  // namespace

Verdict Judge(const Ending& ending, const Ending& clean) {
    return Examination(ending, clean).Run();
}

}  // namespace sweep
