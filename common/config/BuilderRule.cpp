#include "common/config/BuilderRule.h"

#include <memory>
#include <utility>

#include "common/config/ConfigBuilder.h"
#include "common/config/Event.h"
#include "common/config/command/ChangeCompName.h"
#include "common/config/command/ConfigureNic.h"
#include "common/config/command/JoinDomain.h"
#include "common/config/command/JoinWorkgroup.h"
#include "common/config/command/MoveOu.h"
#include "common/config/command/SetDhcp.h"
#include "common/config/command/SetDns.h"
#include "common/config/command/SetDnsSuffix.h"
#include "common/config/command/SetGateway.h"
#include "common/config/command/SetStatic.h"
#include "common/config/command/SetStaticRoute.h"
#include "common/err/GeneralError.h"
#include "common/sys/Domain.h"
#include "common/util/Strings.h"

namespace config {

namespace {

using command::ExactCast;

ConfigError RuleError(const char* message, std::int32_t line, ErrorKind kind) {
    return {"common\\config\\BuilderRule", message, line, kind};
}

std::uint32_t ParseNumber(const std::string& value) {
    return static_cast<std::uint32_t>(util::StringToInt(value));
}

bool IsCurrentDomain(sys::Domain& domain, const std::string& name) {
    return domain.IsDomainMember() && (util::NoCaseEqual(domain.DomainName(), name) ||
                                       util::NoCaseEqual(domain.DnsDomainName(), name));
}

/// Adds `value` to the adapter's last command if that is of this class, else to a new one: values
/// of one kind in a row share a command.
template <typename Command>
void AddToLast(command::ConfigureNic& nic, const std::string& value) {
    if (auto* const last = ExactCast<Command>(nic.Last())) {
        last->Add(value);
        return;
    }
    auto added = std::make_unique<Command>();
    added->Add(value);
    nic.Append(std::move(added));
}

}  // namespace

void DefaultRule::HandleEvent(std::uint32_t kind, const std::string& value) {
    switch (kind) {
        case Event::COMPUTER_NAME:
            Builder().AppendCommand(std::make_unique<command::ChangeCompName>(value));
            break;
        case Event::WORKGROUP:
            Builder().AppendCommand(
                std::make_unique<command::JoinWorkgroup>(Builder().Domain(), value));
            break;
        case Event::DOMAIN:
            if (!IsCurrentDomain(Builder().Domain(), value)) {
                Builder().AppendCommand(
                    std::make_unique<command::JoinDomain>(Builder().Domain(), value));
            }
            break;
        case Event::ORGANIZATIONAL_UNIT:
            if (auto* const join = ExactCast<command::JoinDomain>(Builder().LastCommand())) {
                join->SetOrganizationalUnit(value);
            } else {
                Builder().AppendCommand(
                    std::make_unique<command::MoveOu>(Builder().Domain(), value));
            }
            break;
        case Event::DOMAIN_USER:
            if (auto* const last = dynamic_cast<command::DomainCommand*>(Builder().LastCommand())) {
                last->SetUserName(value);
            }
            break;
        case Event::DOMAIN_PASSWORD:
            if (auto* const last = dynamic_cast<command::DomainCommand*>(Builder().LastCommand())) {
                last->SetPassword(value);
            }
            break;
        case Event::IGNORED:
            break;
        default:
            throw RuleError("Invalid config event being handled by Default scope", 203,
                            ErrorKind::kUnexpectedEvent);
    }
}

NicRule::NicRule(ConfigBuilder& builder)
    : BuilderRule(builder), target_(dynamic_cast<command::ConfigureNic*>(builder.LastCommand())) {
    if (target_ == nullptr) {
        throw RuleError("Configure commands are corrupted", 216, ErrorKind::kUnspecified);
    }
}

void NicRule::HandleEvent(std::uint32_t kind, const std::string& value) {
    switch (kind) {
        case Event::NIC_BUS:
            target_->SetBus(ParseNumber(value));
            break;
        case Event::NIC_DEVICE:
            target_->SetDevice(ParseNumber(value));
            break;
        case Event::NIC_FUNCTION:
            target_->SetFunction(ParseNumber(value));
            break;
        case Event::DHCP:
            mode_ = Mode::kDhcp;
            target_->Append(std::make_unique<command::SetDhcp>());
            break;
        case Event::STATIC:
            mode_ = Mode::kStatic;
            target_->Append(std::make_unique<command::SetStatic>());
            break;
        case Event::GATEWAY:
            if (mode_ != Mode::kStatic) {
                throw RuleError("Attempting to configure a DHCP nic with static information", 222,
                                ErrorKind::kUnexpectedEvent);
            }
            AddToLast<command::SetGateway>(*target_, value);
            break;
        case Event::DNS_SUFFIX:
            AddToLast<command::SetDnsSuffix>(*target_, value);
            break;
        case Event::DNS_SERVER:
            if (value != "0.0.0.0") {
                AddToLast<command::SetDns>(*target_, value);
            }
            break;
        default:
            throw RuleError("Invalid config event being handled by NIC scope", 312,
                            ErrorKind::kUnexpectedEvent);
    }
}

IpInterfaceRule::IpInterfaceRule(ConfigBuilder& builder) : BuilderRule(builder) {
    if (auto* const nic = ExactCast<command::ConfigureNic>(builder.LastCommand())) {
        target_ = dynamic_cast<command::SetStatic*>(nic->Last());
    }
}

void IpInterfaceRule::HandleEvent(std::uint32_t kind, const std::string& value) {
    if (target_ == nullptr) {
        throw RuleError(
            "IpInterface being called without a previous event to set the NIC as static", 347,
            ErrorKind::kUnspecified);
    }
    switch (kind) {
        case Event::IP_ADDRESS:
            target_->AddAddress(value);
            break;
        case Event::SUBNET_MASK:
            target_->AddMask(value);
            break;
        default:
            throw RuleError("Invalid config event being handled by IpInterface scope", 361,
                            ErrorKind::kUnexpectedEvent);
    }
}

StaticRouteRule::StaticRouteRule(ConfigBuilder& builder)
    : BuilderRule(builder), target_(ExactCast<command::SetStaticRoute>(builder.LastCommand())) {
    if (target_ == nullptr) {
        auto added = std::make_unique<command::SetStaticRoute>();
        target_ = added.get();
        builder.AppendCommand(std::move(added));
    }
}

void StaticRouteRule::HandleEvent(std::uint32_t kind, const std::string& value) {
    if (target_ == nullptr) {
        throw RuleError(
            "StaticRoute event being called without a static route command in the queue", 413,
            ErrorKind::kUnspecified);
    }
    hasValues_ = true;
    switch (kind) {
        case Event::IP_ADDRESS:
            destination_ = value;
            break;
        case Event::SUBNET_MASK:
            mask_ = value;
            break;
        case Event::GATEWAY:
        case Event::ROUTE_GATEWAY:
            gateway_ = value;
            break;
        case Event::ROUTE_FIELD4:
            field4_ = value;
            break;
        case Event::ROUTE_METRIC:
            metric_ = ParseNumber(value);
            break;
        default:
            // Borrowed from the IP interface scope: operators know this line for both.
            throw RuleError("Invalid config event being handled by IpInterface scope", 444,
                            ErrorKind::kUnexpectedEvent);
    }
}

void StaticRouteRule::Finish() {
    if (hasValues_) {
        target_->AddRoute({ipc::IPv4Address(destination_), ipc::IPv4Address(mask_),
                           ipc::IPv4Address(gateway_), static_cast<std::int32_t>(metric_)});
    }
}

}  // namespace config
