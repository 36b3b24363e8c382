// Whole programs: a plan by toolbox-host beside netplan's making of files from the equal network
// description. Leaves machines and configurations of several sizes in the folder.
//
//     program_bench FOLDER toolbox-host.exe ./run

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Table.h"
#include "common/util/Strings.h"

namespace {

namespace fs = std::filesystem;

/// Runs the program with its output thrown away; it must end with that code.
void Run(const std::vector<std::string>& words, int expected) {
    std::vector<char*> arguments;
    for (const std::string& word : words) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    for (const int descriptor : {0, 1, 2}) {
        posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
    }
    pid_t child = 0;
    const int failure =
        posix_spawnp(&child, arguments[0], &files, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    int status = -1;
    if (failure != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) != expected) {
        throw std::runtime_error(words[0] + " " + words[1] + " did not end with code " +
                                 std::to_string(expected));
    }
}

void Write(const fs::path& file, const std::string& text) {
    fs::create_directories(fs::absolute(file).parent_path());
    if (!(std::ofstream(file, std::ios::binary) << text)) {
        throw std::runtime_error("cannot write " + file.string());
    }
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
}

/// The same adapters three times: as they are, as they shall be for the module, and for netplan.
void Describe(int adapters) {
    std::string machine;
    std::string configuration;
    std::string plan = "network:\n  version: 2\n  ethernets:\n";
    for (int i = 1; i <= adapters; ++i) {
        machine += util::Format(
            R"(%s{"index": %d, "connectionName": "Ethernet %d", "caption": "[%08d] Adapter",
               "settingId": "{6C7F1A52-90B4-4C1E-9D57-0A1B2C3D%04d}", "dhcpEnabled": true,
               "pnpDeviceId": "PCI\\VEN_8086&DEV_100E\\%d", "manufacturer": "Example",
               "pciLocation": "PCI bus %d, device 0, function 0", "adapterType": "Ethernet 802.3",
               "macAddress": "02:00:00:00:00:%02d", "dnsHostName": "BENCH",
               "ipAddress": ["10.0.%d.99"], "ipSubnet": ["255.255.255.0"], "dhcpLease":
               {"ipAddress": ["10.0.%d.99"], "ipSubnet": ["255.255.255.0"]}})",
            i > 1 ? "," : "", i, i, i, i, i, i, i, i, i);
        configuration += util::Format(
            "[NicEntry%d]\nDescription=Adapter %d\nDHCP=false\nAddress=10.0.%d.2\n"
            "Netmask=255.255.255.0\nGateway=10.0.%d.1\nDNS-Server-Count=2\n"
            "DNS-Server0=10.0.%d.3\nDNS-Server1=10.0.%d.4\nDNS-SuffixSearchOrder=corp.example\n"
            "Static-Route-Count=-1\n",
            i, i, i, i, i, i);
        plan += util::Format(
            "    eth%d:\n      addresses: [10.0.%d.2/24]\n"
            "      routes: [{to: default, via: 10.0.%d.1}]\n"
            "      nameservers: {addresses: [10.0.%d.3, 10.0.%d.4], search: [corp.example]}\n",
            i, i, i, i, i);
    }
    const std::string name = std::to_string(adapters);
    Write(name + ".json", R"({"computerName": "BENCH", "adapters": [)" + machine + "]}");
    Write(name + ".ini", configuration);
    Write(name + "/etc/netplan/network.yaml", plan);
}

/// Routes for both programs; the machine has none.
void DescribeRoutes(int routes) {
    std::string configuration = util::Format(
        "[NicEntry1]\nDescription=Adapter 1\nDHCP=true\nDNS-Server-Count=0\n"
        "DNS-SuffixSearchOrder=corp.example\nStatic-Route-Count=%d\n",
        routes);
    std::string plan =
        "network:\n  version: 2\n  ethernets:\n    eth1:\n      addresses: [10.0.1.2/24]\n"
        "      routes:\n";
    for (int i = 0; i < routes; ++i) {
        configuration += util::Format("Route%d=172.%d.%d.0,255.255.255.0,10.0.1.1,,1,\n", i,
                                      16 + i / 256, i % 256);
        plan += util::Format("        - {to: 172.%d.%d.0/24, via: 10.0.1.1, metric: 1}\n",
                             16 + i / 256, i % 256);
    }
    Write("routes.ini", configuration);
    Write("routes/etc/netplan/network.yaml", plan);
}

/// A folder of that many machines of 2 adapters.
std::string DescribeFleet(int machines) {
    Describe(2);
    const std::string folder = "fleet-" + std::to_string(machines);
    fs::create_directories(folder);
    for (int i = 1; i <= machines; ++i) {
        for (const std::string ending : {".ini", ".json"}) {
            fs::copy_file("2" + ending, folder + "/" + std::to_string(i) + ending,
                          fs::copy_options::overwrite_existing);
        }
    }
    return folder;
}

/// A run of the largest takes long enough to need few of them.
void MeasureFleets(const std::string& host) {
    std::vector<bench::Subject> fleets;
    for (const int machines : {10, 100, 1000}) {
        const auto run = [&host, folder = DescribeFleet(machines)] {
            constexpr int kChanges = 2;
            Run({"wine", host, "fleet", folder}, kChanges);
        };
        fleets.push_back({"fleet", run, static_cast<double>(machines)});
    }
    bench::Compare("per machine of 10, 100, 1,000", fleets, 1, 3);
}

void Measure(const std::string& host, const std::string& run) {
    bench::Compare("./run, with nothing to build",
                   {{"./run --help",
                     [&] {
                         Run({run, "--help"}, 0);
                     }},
                    {"toolbox-host --help",
                     [&] {
                         Run({"wine", host, "--help"}, 0);
                     }}},
                   1);
    const auto plan = [&host](const std::string& machine, const std::string& configuration) {
        constexpr int kChanges = 2;
        Run({"wine", host, "configure", "--plan", "--machine", machine, configuration}, kChanges);
    };
    constexpr int kRoutes = 10'000;
    Describe(1);
    DescribeRoutes(kRoutes);
    bench::Compare("whole process, 10,000 routes",
                   {{"netplan generate",
                     [&] {
                         Run({"netplan", "generate", "--root-dir", "routes"}, 0);
                     }},
                    {"configure --plan", [&] { plan("1.json", "routes.ini"); }}},
                   1);
    std::vector<bench::Subject> sizes;
    for (const int adapters : {8, 64, 500}) {
        Describe(adapters);
        const std::string name = std::to_string(adapters);
        sizes.push_back({"configure --plan", [&plan, name] { plan(name + ".json", name + ".ini"); },
                         static_cast<double>(adapters)});
    }
    bench::Compare("per adapter of 8, 64, 500", sizes, 1);
    MeasureFleets(host);
    for (const int adapters : {1, 8, 64}) {
        Describe(adapters);
        const std::string name = std::to_string(adapters);
        constexpr int kChanges = 2;
        bench::Compare("whole process, " + name + " adapters",
                       {{"configure --plan",
                         [&] {
                             Run({"wine", host, "configure", "--plan", "--machine", name + ".json",
                                  name + ".ini"},
                                 kChanges);
                         }},
                        {"netplan generate",
                         [&] {
                             Run({"netplan", "generate", "--root-dir", name}, 0);
                         }},
                        {"toolbox-host --help",
                         [&] {
                             Run({"wine", host, "--help"}, 0);
                         }},
                        {"netplan --help",
                         [&] {
                             Run({"netplan", "--help"}, 0);
                         }}},
                       1);
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 4) {
            throw std::runtime_error("usage: program_bench FOLDER toolbox-host.exe ./run");
        }
        const std::string host = fs::absolute(argv[2]).string();
        const std::string run = fs::absolute(argv[3]).string();
        fs::create_directories(argv[1]);
        fs::current_path(argv[1]);
        Measure(host, run);
        return 0;
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
