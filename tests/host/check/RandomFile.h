#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace check_tests {

/// Small files that are near to good ones: lines drawn from good and bad ones, so that many files
/// have no error and many have several.
class RandomFile {
public:
    explicit RandomFile(unsigned seed) : random_(seed) {}

    std::string Make() {
        std::string text;
        for (int sections = Below(4); sections >= 0; --sections) {
            text += Pick({"[TCP/IP]\n", "[NicEntry1]\n", "[NicEntry2]\n", "[Networking]\n",
                          "[Global]\n", "[tcp/ip]\n", "[Other]\n"});
            Below(4) != 0 ? AddAdapter(text) : AddLines(text);
        }
        return text;
    }

    int Below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }

private:
    const char* Pick(const std::vector<const char*>& choices) {
        return choices[static_cast<std::size_t>(Below(static_cast<int>(choices.size())))];
    }

    /// A line that is there mostly, and good mostly.
    void Mostly(std::string& text, const char* good, const std::vector<const char*>& others) {
        const int choice = Below(12);
        text += choice == 0 ? "" : choice == 1 ? Pick(others) : good;
    }

    void AddAdapter(std::string& text) {
        Mostly(text, "Description=lan\n", {"description=\n", "Description=7,8\n"});
        if (Below(2) == 0) {
            Mostly(text, "DHCP=true\n", {"DHCP=\n", "DHCP=TRUE ; x\n"});
        } else {
            Mostly(text, "DHCP=false\n", {"DHCP=0\n", "Dhcp=x\n"});
            Mostly(text, "Address=10.0.0.5\n", {"Address=10.0.0.5,10.0.0.6\n", "Address=10.5\n"});
            Mostly(text, "Netmask=255.255.255.0\n", {"Netmask=255.0.255.0\n", "Netmask=1,2\n"});
            Mostly(text, "Gateway=10.0.0.1\n", {"Gateway=\n", "Gateway=10.9.0.1\n"});
        }
        Mostly(text, "DNS-Server-Count=1\n",
               {"DNS-Server-Count=2\n", "DNS-Server-Count=100001\n", "DNS-Server-Count=-5\n"});
        Mostly(text, "DNS-Server0=10.0.0.2\n",
               {"DNS-Server0=0.0.0.0\n", "DNS-Server1=10.0.0.2\n", "DNS-Server0=127.0.0.1\n"});
        Mostly(text, "DNS-SuffixSearchOrder=corp.example\n",
               {"DNS-SuffixSearchOrder=\n", "DNS-SuffixSearchOrder=1,2,3,4,5,\n"});
        Mostly(text, Pick({"Static-Route-Count=1\n", "Static-Route-Count=-1\n"}),
               {"Static-Route-Count=2\n", "Static-Route-Count=1000000\n"});
        Mostly(text, "Route0=10.9.0.0,255.255.0.0,10.0.0.9,x,5,\n",
               {"Route0=10.9.0.0,255.255.0.0\n", "Route0=,\n", "more\n", "Route1=1,2,3,4,5,6\n"});
    }

    void AddLines(std::string& text) {
        for (int lines = Below(6); lines > 0; --lines) {
            text +=
                Pick({"ComputerName=PC-1\n", "Workgroup=True\n", "Domain=SALES\n",
                      "Workgroup=False\n", "DNSDomain=corp.example\n", "; comment\n",
                      "DSOrganizationalUnit=East/Sales\n", "DomainUsername=u\n",
                      "DomainUsername=eravbw\nDomainPassword=6-rZ-avbW\n", "no equals\n",
                      "RebootAfterConfig=false\n", "\t \n", "=\n", "Domain=\n", "DNSDomain=\n"});
        }
    }

    std::mt19937 random_;
};

}  // namespace check_tests
