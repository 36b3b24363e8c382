#include "host/configure/Json.h"

#include "host/Text.h"
#include "host/check/FindingText.h"
#include "host/configure/Closing.h"
#include "host/configure/Values.h"
#include "host/reading/Secrets.h"
#include "host/reading/SettingNames.h"

namespace host::configure {

namespace {

using Json = nlohmann::ordered_json;

Json Text(const std::string& text) {
    return ToUtf8(text);
}

Json List(const std::vector<std::string>& texts) {
    Json list = Json::array();
    for (const std::string& text : texts) {
        list.push_back(Text(text));
    }
    return list;
}

template <typename Items, typename Convert>
Json Array(const Items& items, Convert&& convert) {
    Json array = Json::array();
    for (const auto& item : items) {
        array.push_back(convert(item));
    }
    return array;
}

/// A member that stands only where there is something to say.
void AddText(Json& object, const char* name, const std::string& text) {
    if (!text.empty()) {
        object[name] = Text(text);
    }
}

Json OfCall(const ChangingCall& call) {
    Json json = {{"call", Text(call.name)}};
    json["succeeded"] = call.Succeeded();
    json["code"] = call.value;
    if (!call.reached) {
        json["result"] = Text(call.result);
    }
    return json;
}

Json OfRow(const Row& row) {
    const Setting& setting = row.setting;
    Json json = {{"setting", Identifier(setting.kind)},
                 {"fate", Identifier(row.fate)},
                 {"line", setting.at.place.line},
                 {"section", Text(setting.at.section)}};
    AddText(json, "key", setting.at.key);
    json["keys"] = Array(setting.keys, [](const reading::KeyPlace& key) {
        return Json{{"key", Text(key.key)}, {"line", key.place.line}};
    });
    if (row.index) {
        json["adapter"] = {{"index", *row.index}, {"label", Text(row.adapter)}};
    }
    json["current"] = row.current ? List(*row.current) : Json();
    json["wanted"] = List(row.wanted);
    if (row.left) {
        json["left"] = List(*row.left);
    }
    json["calls"] = Array(row.calls, OfCall);
    AddText(json, "reason", row.reason);
    json["notes"] = List(setting.notes);
    return json;
}

Json OfStep(const Step& step) {
    Json json = {{"command", Text(step.command)}, {"description", Text(step.description)}};
    if (step.index) {
        json["adapter"] = *step.index;
    }
    json["failed"] = step.failed;
    json["calls"] = Array(step.calls, OfCall);
    return json;
}

Json OfChange(const Change& change) {
    Json json = {{"where", Text(change.where)}};
    AddText(json, "what", change.what);
    json["before"] = Text(change.before);
    json["after"] = Text(change.after);
    return json;
}

const char* StageName(const Failure& failure) {
    switch (failure.stage) {
        case Stage::kReading:
            return "reading";
        case Stage::kAnalysing:
            return "analysing";
        case Stage::kRunning:
            return "running";
        case Stage::kPuttingAway:
            break;
    }
    return "puttingAway";
}

Json OfFailure(const Pass& pass) {
    if (!pass.story.failure) {
        return nullptr;
    }
    const Failure& failure = *pass.story.failure;
    Json json = {{"stage", StageName(failure)}};
    if (failure.step) {
        AddText(json, "command", pass.story.steps[*failure.step].command);
    }
    json["code"] = failure.code;
    if (failure.status) {
        json["statusCode"] = *failure.status;
    }
    AddText(json, "text", failure.text);
    AddText(json, "call", failure.call);
    if (const machine::Adapter* const adapter = AdapterOf(pass.run.before, failure.adapter)) {
        json["adapter"] = {{"index", adapter->index}, {"label", Text(AdapterLabel(*adapter))}};
    }
    json["configurationRefused"] = failure.configurationRefused;
    return json;
}

Json OfCounts(const Counts& counts) {
    return {{"changes", counts.changes},     {"alreadySet", counts.alreadySet},
            {"skipped", counts.skipped},     {"failed", counts.failed},
            {"waiting", counts.waiting},     {"notAttempted", counts.notAttempted},
            {"leftAlone", counts.leftAlone}, {"ignored", counts.ignored}};
}

Json OfReply(const Run& run) {
    Json reply = Json::object();
    for (const Field& field : run.reply) {
        const auto* const number = std::get_if<std::int32_t>(&field.value);
        reply[ToUtf8(field.name)] = number != nullptr ? Json(*number) : Text(field.Text());
    }
    return reply;
}

Json OfPass(const Pass& pass) {
    Json json = {{"settings", Array(pass.rows, OfRow)},
                 {"counts", OfCounts(CountRows(pass.rows))},
                 {"commands", Array(pass.story.steps, OfStep)},
                 {"madeEffectiveByRestart", Array(pass.restart, OfChange)},
                 {"changes", Array(pass.changes, OfChange)}};
    json["failure"] = OfFailure(pass);
    json["stoppedForRestart"] = pass.story.stoppedForRestart;
    json["handlerResult"] = pass.run.result;
    json["reply"] = OfReply(pass.run);
    json["log"] = Array(pass.run.log, [](const Mark& mark) {
        return Json{{"level", mark.line.level}, {"text", Text(mark.line.text)}};
    });
    return json;
}

Json OfRestart(const Outcome& outcome) {
    const Story& story = outcome.Last().story;
    Json json = {{"needed", story.stoppedForRestart},
                 {"reported", story.fileKept},
                 {"effects", List(RestartEffects(outcome.machine))}};
    if (outcome.afterRestart) {
        json["then"] = OfPass(*outcome.afterRestart);
    }
    return json;
}

}  // namespace

Json ToJson(const Result& result, const std::string& file, const std::string& machine) {
    const Outcome& outcome = result.outcome;
    const check::CheckedFile& checked = result.checked;
    Json json = {{"file", Text(file)}, {"machine", Text(machine)}};
    json["findings"] = Array(checked.findings.List(), [&checked](const check::Finding& finding) {
        const std::size_t line = finding.place.line;
        return check::ToJson(finding, line == 0 ? "" : reading::ShownLine(checked.file, line));
    });
    json["passes"] = Array(outcome.passes, OfPass);
    json["restart"] = OfRestart(outcome);
    if (outcome.furtherRun) {
        json["settled"] = outcome.Settled();
        json["furtherRun"] = OfPass(*outcome.furtherRun);
    }
    json["violations"] = List(outcome.violations);
    json["lockOuts"] = List(result.lockOuts);
    return json;
}

Json ToJson(const std::vector<std::string>& texts) {
    return List(texts);
}

}  // namespace host::configure
