// What needs Windows' own peers: reading every key of a file beside the system's profile functions,
// and loading the module beside other libraries. Imports as little as it can, so that a library is
// loaded with what it needs.
//
//     profile_bench config.dll

#include <windows.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Sample.h"
#include "bench/Table.h"
#include "toolbox/config/IniFile.h"

namespace {

using bench::Sample;

void Require(bool right, const std::string& what) {
    if (!right) {
        throw std::runtime_error(what);
    }
}

void CompareReaders() {
    char folder[MAX_PATH];
    const std::string temporary(folder, GetTempPathA(sizeof folder, folder));
    const Sample sample(temporary + "profile-bench.ini", 5, 9);
    const auto ownReader = [&sample] {
        IniFile file;
        Require(file.Load(sample.Path(), false) == IniFile::kSuccess, "cannot load");
        std::string value;
        for (const Sample::Setting& setting : sample.Settings()) {
            Require(file.GetValue(setting.section, setting.key, value) == IniFile::kSuccess &&
                        value == setting.value,
                    "IniFile: a value is wrong");
        }
    };
    const auto profile = [&sample] {
        char value[100];
        for (const Sample::Setting& setting : sample.Settings()) {
            const DWORD length =
                GetPrivateProfileStringA(setting.section.c_str(), setting.key.c_str(), "", value,
                                         sizeof value, sample.Path().c_str());
            Require(setting.value == std::string(value, length), "a profile value is wrong");
        }
    };
    bench::Compare("all 45 keys of 2 KB",
                   {{"IniFile", ownReader}, {"GetPrivateProfileStringA", profile}}, 1);
}

bench::Subject Loading(const std::string& name, const std::string& path) {
    Require(GetModuleHandleA(path.c_str()) == nullptr, path + " is loaded already");
    return {name, [path] {
                const HMODULE library = LoadLibraryA(path.c_str());
                Require(library != nullptr, "cannot load " + path);
                FreeLibrary(library);
            }};
}

}  // namespace

int main(int argc, char** argv) {
    try {
        Require(argc == 2, "usage: profile_bench config.dll");
        CompareReaders();
        const std::vector<bench::Subject> libraries = {Loading("config.dll", argv[1]),
                                                       Loading("winhttp.dll", "winhttp.dll"),
                                                       Loading("wininet.dll", "wininet.dll")};
        bench::Compare("load and free", libraries, 1);
        for (const char* const needed : {"activeds.dll", "netapi32.dll", "ole32.dll",
                                         "oleaut32.dll", "secur32.dll", "ws2_32.dll"}) {
            Require(LoadLibraryA(needed) != nullptr, needed);
        }
        bench::Compare("load and free, imports loaded", libraries, 1);
        return 0;
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
