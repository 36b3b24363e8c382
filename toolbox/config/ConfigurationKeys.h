#pragma once

#include <string_view>

/// The sections and keys of a configuration file, as they are documented; the module disregards the
/// case of a key.
namespace config::key {

inline constexpr std::string_view kGlobal = "Global";
inline constexpr std::string_view kRebootAfterConfig = "RebootAfterConfig";

inline constexpr std::string_view kNetworking = "Networking";
inline constexpr std::string_view kDomainUsername = "DomainUsername";
inline constexpr std::string_view kDomainPassword = "DomainPassword";
inline constexpr std::string_view kWorkgroup = "Workgroup";
inline constexpr std::string_view kDomain = "Domain";
inline constexpr std::string_view kDnsDomain = "DNSDomain";
inline constexpr std::string_view kDsOrganizationalUnit = "DSOrganizationalUnit";
inline constexpr std::string_view kComputerName = "ComputerName";

inline constexpr std::string_view kTcpIp = "TCP/IP";
inline constexpr std::string_view kNicEntry = "NicEntry";  ///< anywhere in a section's name
inline constexpr std::string_view kDescription = "Description";
inline constexpr std::string_view kDhcp = "DHCP";
inline constexpr std::string_view kAddress = "Address";
inline constexpr std::string_view kNetmask = "Netmask";
inline constexpr std::string_view kGateway = "Gateway";
inline constexpr std::string_view kDnsServerCount = "DNS-Server-Count";
inline constexpr std::string_view kDnsServer = "DNS-Server";  ///< a number from 0 follows
inline constexpr std::string_view kDnsSuffixSearchOrder = "DNS-SuffixSearchOrder";
inline constexpr std::string_view kStaticRouteCount = "Static-Route-Count";
inline constexpr std::string_view kRoute = "Route";  ///< a number from 0 follows

}  // namespace config::key
