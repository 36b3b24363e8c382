// IniFile beside other readers: loading a file, and loading it and looking 50 values up. Each
// reader reads the same file from memory-backed storage through its own function for files.

#include <SimpleIni.h>
#include <benchmark/benchmark.h>
#include <ini.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "toolbox/config/IniFile.h"

namespace {

constexpr int kLookUps = 50;

/// A file of that many sections and keys, in /dev/shm so that no disk is measured.
class Sample {
public:
    Sample(int sections, int keys) : sections_(sections), keys_(keys) {
        std::string text;
        for (int section = 0; section < sections; ++section) {
            text += "[" + Section(section) + "]\n";
            for (int key = 0; key < keys; ++key) {
                text += Key(key) + " = " + Value(section, key) + "\n";
            }
        }
        path_ = "/dev/shm/ini-file-bench-" + std::to_string(getpid()) + "-" +
                std::to_string(text.size());
        std::FILE* const file = std::fopen(path_.c_str(), "wb");
        if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size() ||
            std::fclose(file) != 0) {
            throw std::runtime_error("cannot write " + path_);
        }
        for (int i = 0; i < kLookUps; ++i) {
            const int section = static_cast<int>(i * 7919LL % sections);
            const int key = static_cast<int>(i * 104729LL % keys);
            lookUps_.push_back({Section(section), Key(key), Value(section, key)});
        }
    }
    ~Sample() { std::remove(path_.c_str()); }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    struct LookUp {
        std::string section;
        std::string key;
        std::string value;
    };

    const std::string& Path() const noexcept { return path_; }
    const std::vector<LookUp>& LookUps() const noexcept { return lookUps_; }
    std::size_t Lines() const noexcept {
        return static_cast<std::size_t>(sections_) * static_cast<std::size_t>(keys_ + 1);
    }

private:
    static std::string Section(int number) { return "Adapter " + std::to_string(number); }
    static std::string Key(int number) { return "StaticAddress" + std::to_string(number); }
    static std::string Value(int section, int key) {
        return "10." + std::to_string(section % 256) + "." + std::to_string(key % 256) +
               ".1,255.255.255.0";
    }

    int sections_;
    int keys_;
    std::string path_;
    std::vector<LookUp> lookUps_;
};

/// Each reader: Load takes a path; Has says whether that key has that value.
class OwnReader {
public:
    bool Load(const std::string& path) { return file_.Load(path, false) == IniFile::kSuccess; }
    bool Has(const Sample::LookUp& wanted) {
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
    bool Has(const Sample::LookUp& wanted) {
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
    bool Has(const Sample::LookUp& wanted) {
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
void Load(benchmark::State& state, const Sample& sample) {
    for (auto round : state) {
        Reader reader;
        if (!reader.Load(sample.Path())) {
            state.SkipWithError("cannot load");
        }
        benchmark::ClobberMemory();
    }
}

template <class Reader>
void LoadAndLookUp(benchmark::State& state, const Sample& sample) {
    for (auto round : state) {
        Reader reader;
        bool right = reader.Load(sample.Path());
        for (const Sample::LookUp& wanted : sample.LookUps()) {
            right = right && reader.Has(wanted);
        }
        if (!right) {
            state.SkipWithError("a value is wrong");
        }
    }
}

void Scan(benchmark::State& state, const Sample& sample) {
    for (auto round : state) {
        if (CountLines(sample.Path()) != sample.Lines()) {
            state.SkipWithError("cannot read");
        }
    }
}

void Register(const std::string& size, const Sample& sample) {
    const auto add = [&](const std::string& name, auto function) {
        benchmark::RegisterBenchmark(name.c_str(), [function, &sample](benchmark::State& state) {
            function(state, sample);
        });
    };
    using SimpleIni = SimpleIniReader<CSimpleIniA>;
    using SimpleIniWithCase = SimpleIniReader<CSimpleIniCaseA>;
    add("load/" + size + "/IniFile", Load<OwnReader>);
    add("load/" + size + "/inih into a map", Load<InihReader>);
    add("load/" + size + "/SimpleIni", Load<SimpleIni>);
    add("load/" + size + "/SimpleIni with case", Load<SimpleIniWithCase>);
    add("load/" + size + "/line scan", Scan);
    add("load and 50 look-ups/" + size + "/IniFile", LoadAndLookUp<OwnReader>);
    add("load and 50 look-ups/" + size + "/inih into a map", LoadAndLookUp<InihReader>);
    add("load and 50 look-ups/" + size + "/SimpleIni", LoadAndLookUp<SimpleIni>);
    add("load and 50 look-ups/" + size + "/SimpleIni with case", LoadAndLookUp<SimpleIniWithCase>);
}

const Sample& SmallSample() {
    static const Sample sample(5, 9);
    return sample;
}

const Sample& LargeSample() {
    static const Sample sample(1000, 200);
    return sample;
}

[[maybe_unused]] const bool registered = [] {
    Register("2 KB", SmallSample());
    Register("9 MB", LargeSample());
    return true;
}();

}  // namespace
