#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/check/FileCheck.h"

namespace host::check {

/// What "check" finds as a log of SARIF 2.1.0, which services that scan code take. It names every
/// rule, those without findings too. Files below the current folder have relative addresses.
class SarifLog {
public:
    /// `path` is empty for what is no file ("standard input").
    void Add(const std::string& name, const std::string& path, const CheckedFile& checked);
    /// A file that could not be checked, and why.
    void AddFailure(const std::string& why);

    /// To be called once.
    nlohmann::ordered_json Finish(int exitCode);

private:
    using Json = nlohmann::ordered_json;

    Json artifacts_ = Json::array();
    Json results_ = Json::array();
    Json notifications_ = Json::array();
    bool successful_ = true;
};

}  // namespace host::check
