#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace check_tests {

/// Small files that are near to good ones: one line of `oneOddOf` is missing or another stands in
/// its place. The account, the domain and the unit are those of the machines of the cases.
class RandomFile {
public:
    RandomFile(unsigned seed, int oneOddOf) : random_(seed), oneOddOf_(oneOddOf) {}

    std::string Make() {
        std::string text;
        Mostly(text, Pick({"", "", "[Global]\nRebootAfterConfig=true\n"}),
               {"[Global]\nRebootAfterConfig=false\n", "lost\n", "[Other]\nDomain=x\n"});
        if (Below(3) != 0) {
            Mostly(text, "[Networking]\n", {"[networking]\n", "[Global]\n"});
            AddNetworking(text);
        }
        bool hasRoutes = false;
        const int adapters = Below(4);
        const char* const sections[] = {"[TCP/IP]\n", "[NicEntry1]\n", "[NicEntry2]\n"};
        for (int i = 0; i < adapters; ++i) {
            Mostly(text, sections[i], {"[tcp/ip]\n", "[TCP/IP]\n", "[NicEntry1]\n"});
            AddAdapter(text, 5 + i, hasRoutes);
        }
        return text;
    }

    int Below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }

private:
    const char* Pick(const std::vector<const char*>& choices) {
        return choices[static_cast<std::size_t>(Below(static_cast<int>(choices.size())))];
    }

    void Mostly(std::string& text, const std::string& good,
                const std::vector<const char*>& others) {
        text += Below(oneOddOf_) != 0 ? good : Below(2) == 0 ? "" : Pick(others);
    }

    void AddNetworking(std::string& text) {
        if (Below(4) != 0) {
            Mostly(text, "DomainUsername=eravbw\nDomainPassword=6-rZ-avbW\n",
                   {"DomainUsername=u\n", "DomainPassword=p\n"});
        }
        const int wish = Below(4);
        if (wish == 0) {
            Mostly(text, "Workgroup=True\n", {"Workgroup=yes\n", "; comment\n", "no equals\n"});
            Mostly(text, "Domain=SALES\n", {"Domain=\n", "Domain=A*B\n", "\t \n"});
        } else if (wish == 1) {
            Mostly(text, "Workgroup=False\n", {"Workgroup=\n", "=\n"});
            Mostly(text, "DNSDomain=corp.example\n", {"DNSDomain=\n", "DNSDomain=lab.example\n"});
        }
        if (Below(2) == 0) {
            Mostly(text, Pick({"DSOrganizationalUnit=East/Sales\n", "DSOrganizationalUnit=West\n"}),
                   {"DSOrganizationalUnit=/\n", "DSOrganizationalUnit=No\n"});
        }
        if (Below(2) == 0) {
            Mostly(text, "ComputerName=PC-7\n", {"ComputerName=PC 7\n", "ComputerName=pc-8\n"});
        }
    }

    /// One section's routes undo another's, so only one has some.
    void AddAdapter(std::string& text, int host, bool& hasRoutes) {
        Mostly(text, "Description=lan\n", {"description=\n", "Description=7,8\n"});
        if (Below(2) == 0) {
            Mostly(text, "DHCP=true\n", {"DHCP=\n", "DHCP=TRUE ; x\n"});
        } else {
            const std::string own = "Address=10.0.0." + std::to_string(host) + "\n";
            Mostly(text, "DHCP=false\n", {"DHCP=0\n", "Dhcp=x\n"});
            Mostly(text, own, {"Address=10.0.0.5,10.0.0.6\n", "Address=10.5\n"});
            Mostly(text, "Netmask=255.255.255.0\n", {"Netmask=255.0.255.0\n", "Netmask=1,2\n"});
            Mostly(text, "Gateway=10.0.0.1\n", {"Gateway=\n", "Gateway=10.9.0.1\n"});
        }
        Mostly(text, "DNS-Server-Count=1\n",
               {"DNS-Server-Count=2\n", "DNS-Server-Count=100001\n", "DNS-Server-Count=-5\n"});
        Mostly(text, "DNS-Server0=10.0.0.2\n",
               {"DNS-Server0=0.0.0.0\n", "DNS-Server1=10.0.0.2\n", "DNS-Server0=127.0.0.1\n"});
        Mostly(text, "DNS-SuffixSearchOrder=corp.example\n",
               {"DNS-SuffixSearchOrder=\n", "DNS-SuffixSearchOrder=1,2,3,4,5,\n",
                "DNS-SuffixSearchOrder=other.example\n"});
        const bool routes = !hasRoutes && Below(2) == 0;
        Mostly(text, routes ? "Static-Route-Count=1\n" : "Static-Route-Count=-1\n",
               {"Static-Route-Count=2\n", "Static-Route-Count=1000000\n"});
        if (routes) {
            hasRoutes = true;
            Mostly(
                text, "Route0=10.9.0.0,255.255.0.0,10.0.0.9,x,5,\n",
                {"Route0=10.9.0.0,255.255.0.0\n", "Route0=,\n", "more\n", "Route1=1,2,3,4,5,6\n"});
        }
    }

    std::mt19937 random_;
    int oneOddOf_;
};

}  // namespace check_tests
