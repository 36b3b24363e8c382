#pragma once

#include "common/config/command/IConfigureCommand.h"

namespace config {

class ConfigBuilder;

/// Prepares a command list for its run: drops what has nothing to do, binds adapter sections to the
/// machine's adapters, orders, and marks where the run stops for a restart.
class Analyzer {
public:
    virtual void BeforeAnalyze(command::CommandList& commands) = 0;
    virtual void AnalyzePlatform(command::CommandList& commands) = 0;
    virtual void AfterAnalyze(command::CommandList& commands) = 0;
    /// True when this analyzer has decided whether `command` requires a restart; `answer` then says
    /// so. False for no opinion, with `answer` left alone.
    virtual bool RequiresReboot(command::IConfigureCommand& command, bool& answer) = 0;
    virtual ~Analyzer() = default;

    /// The analysis, in place. Throws what asking the system throws; no command has run then, and
    /// the list is good for destruction only.
    void Analyze(command::CommandList& commands);

protected:
    Analyzer() = default;

private:
    bool NeedsRestart(command::IConfigureCommand& command);
};

/// Present and unused: the factory always chooses the other variant.
class DefaultAnalyzer : public Analyzer {
public:
    void BeforeAnalyze(command::CommandList& commands) override;
    void AnalyzePlatform(command::CommandList& commands) override;
    void AfterAnalyze(command::CommandList& commands) override;
    bool RequiresReboot(command::IConfigureCommand& command, bool& answer) override;
};

/// Waits after static addressing, and renames before it joins: the run stops for a restart right
/// after the rename, and the join runs when the same configuration comes again.
class WindowsVistaAnalyzer : public Analyzer {
public:
    void BeforeAnalyze(command::CommandList& commands) override;
    void AnalyzePlatform(command::CommandList& commands) override;
    void AfterAnalyze(command::CommandList& commands) override;
    bool RequiresReboot(command::IConfigureCommand& command, bool& answer) override;
};

/// Runs the analysis that suits this platform on the builder's command list.
void Analyze(ConfigBuilder& builder);

}  // namespace config
