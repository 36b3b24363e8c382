#pragma once

#include <cstdint>
#include <string>

namespace config {

namespace command {
class ConfigureNic;
class SetStatic;
class SetStaticRoute;
}  // namespace command

class ConfigBuilder;

/// Gives meaning to the events of one scope: turns them into new commands, or amends the command
/// made just before. Errors are ConfigError, and what asking the system or resolving a host name
/// throws.
class BuilderRule {
public:
    virtual ~BuilderRule() = default;
    virtual void HandleEvent(std::uint32_t kind, const std::string& value) = 0;
    /// The scope's end has come. Not the destructor's work, because it may throw; a rule that is
    /// destroyed without its end leaves its work undone.
    virtual void Finish() {}

    BuilderRule(const BuilderRule&) = delete;
    BuilderRule& operator=(const BuilderRule&) = delete;

protected:
    explicit BuilderRule(ConfigBuilder& builder) : builder_(builder) {}
    ConfigBuilder& Builder() const noexcept { return builder_; }

private:
    ConfigBuilder& builder_;
};

/// The bottom scope: computer name and membership.
class DefaultRule : public BuilderRule {
public:
    explicit DefaultRule(ConfigBuilder& builder) : BuilderRule(builder) {}
    void HandleEvent(std::uint32_t kind, const std::string& value) override;
};

/// One adapter; amends the ConfigureNic that was appended last.
class NicRule : public BuilderRule {
public:
    explicit NicRule(ConfigBuilder& builder);
    void HandleEvent(std::uint32_t kind, const std::string& value) override;

private:
    enum class Mode : std::int32_t { kUnknown = -1, kDhcp = 0, kStatic = 1 };

    command::ConfigureNic* target_;
    Mode mode_ = Mode::kUnknown;
};

/// The addresses and masks of a static adapter.
class IpInterfaceRule : public BuilderRule {
public:
    explicit IpInterfaceRule(ConfigBuilder& builder);
    void HandleEvent(std::uint32_t kind, const std::string& value) override;

private:
    command::SetStatic* target_ = nullptr;  // none when the adapter was not set static just before
};

/// One static route. Routes of consecutive scopes collect in one command. A scope without values
/// still leaves that command; one without any route deletes every route of the machine but its
/// first default one.
class StaticRouteRule : public BuilderRule {
public:
    explicit StaticRouteRule(ConfigBuilder& builder);
    void HandleEvent(std::uint32_t kind, const std::string& value) override;
    void Finish() override;

private:
    command::SetStaticRoute* target_;
    bool hasValues_ = false;
    std::string destination_;
    std::string mask_;
    std::string gateway_;
    std::string field4_;  // kept, not used
    std::uint32_t metric_ = 0;
};

}  // namespace config
