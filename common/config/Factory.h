#pragma once

#include "common/config/Analyzer.h"

namespace config {

/// Gives the analyzer of one platform variant.
class Factory {
public:
    /// The analyzer that the factory holds.
    virtual Analyzer& GetAnalyzer() = 0;
    virtual ~Factory() = default;

    /// Always the WindowsVistaFactory; no operating-system version is asked for. Both factories are
    /// made at the first call and live until the module is unloaded.
    static Factory& Select();
};

class DefaultFactory : public Factory {
public:
    Analyzer& GetAnalyzer() override { return analyzer_; }

private:
    DefaultAnalyzer analyzer_;
};

class WindowsVistaFactory : public Factory {
public:
    Analyzer& GetAnalyzer() override { return analyzer_; }

private:
    WindowsVistaAnalyzer analyzer_;
};

}  // namespace config
