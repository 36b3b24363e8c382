// IniFile beside other readers: loading a file, and loading it and looking 50 values up. Each
// reader reads the same file from memory-backed storage through its own function for files.

#include <SimpleIni.h>
#include <benchmark/benchmark.h>
#include <ini.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/Sample.h"
#include "toolbox/config/IniFile.h"

namespace {

using bench::Sample;
using Settings = std::vector<Sample::Setting>;

/// Each reader: Load takes a path; Has says whether that key has that value.
class OwnReader {
public:
    bool Load(const std::string& path) { return file_.Load(path, false) == IniFile::kSuccess; }
    bool Has(const Sample::Setting& wanted) {
        return file_.GetValue(wanted.section, wanted.key, value_) == IniFile::kSuccess &&
               value_ == wanted.value;
    }

private:
    IniFile file_;
    std::string value_;
};

class InihReader {
public:
    bool Load(const std::string& path) { return ini_parse(path.c_str(), Add, &sections_) == 0; }
    bool Has(const Sample::Setting& wanted) {
        const auto section = sections_.find(wanted.section);
        if (section == sections_.end()) {
            return false;
        }
        const auto found = section->second.find(wanted.key);
        return found != section->second.end() && found->second == wanted.value;
    }

private:
    using Sections =
        std::map<std::string, std::map<std::string, std::string, std::less<>>, std::less<>>;
    static int Add(void* user, const char* section, const char* name, const char* value) {
        auto& sections = *static_cast<Sections*>(user);
        auto found = sections.find(std::string_view(section));
        if (found == sections.end()) {
            found = sections.emplace_hint(found, section, Sections::mapped_type());
        }
        found->second.try_emplace(name, value);
        return 1;
    }

    Sections sections_;
};

template <class Ini>
class SimpleIniReader {
public:
    bool Load(const std::string& path) { return ini_.LoadFile(path.c_str()) == SI_OK; }
    bool Has(const Sample::Setting& wanted) {
        const char* const value = ini_.GetValue(wanted.section.c_str(), wanted.key.c_str());
        return value != nullptr && value == wanted.value;
    }

private:
    Ini ini_;
};

/// What reading a file line by line costs at least, with nothing stored.
std::size_t CountLines(const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) {
        return 0;
    }
    const auto size = static_cast<std::size_t>(std::ftell(file.get()));
    std::rewind(file.get());
    const std::unique_ptr<char[]> bytes(new char[size]);
    if (std::fread(bytes.get(), 1, size, file.get()) != size) {
        return 0;
    }
    std::size_t lines = 0;
    std::string_view rest(bytes.get(), size);
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        ++lines;
    }
    return lines;
}

template <class Reader>
void Load(benchmark::State& state, const Sample& sample, const Settings& lookUps) {
    for (auto round : state) {
        Reader reader;
        bool right = reader.Load(sample.Path());
        for (const Sample::Setting& wanted : lookUps) {
            right = right && reader.Has(wanted);
        }
        if (!right) {
            state.SkipWithError("a value is wrong");
        }
        benchmark::ClobberMemory();
    }
}

void Scan(benchmark::State& state, const Sample& sample, const Settings& /*lookUps*/) {
    for (auto round : state) {
        if (CountLines(sample.Path()) != sample.Lines()) {
            state.SkipWithError("cannot read");
        }
    }
}

void Register(const std::string& size, int sections, int keys) {
    const auto sample = std::make_shared<const Sample>(
        "/dev/shm/ini-file-bench-" + std::to_string(getpid()) + "-" + size, sections, keys);
    for (const std::size_t lookUps : {0U, 50U}) {
        const std::string group = (lookUps == 0 ? "load/" : "load and 50 look-ups/") + size + "/";
        const auto add = [&](const std::string& name, auto function) {
            benchmark::RegisterBenchmark(
                (group + name).c_str(),
                [function, sample, wanted = sample->Some(lookUps)](benchmark::State& state) {
                    function(state, *sample, wanted);
                });
        };
        add("IniFile", Load<OwnReader>);
        add("inih into a map", Load<InihReader>);
        add("SimpleIni", Load<SimpleIniReader<CSimpleIniA>>);
        add("SimpleIni with case", Load<SimpleIniReader<CSimpleIniCaseA>>);
        if (lookUps == 0) {
            add("line scan", Scan);
        }
    }
}

[[maybe_unused]] const bool kRegistered = [] {
    Register("2 KB", 5, 9);
    Register("9 MB", 1000, 200);
    return true;
}();

}  // namespace
