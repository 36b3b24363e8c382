#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace bench {

/// A configuration file of that many sections and keys, and what is in it.
class Sample {
public:
    struct Setting {
        std::string section;
        std::string key;
        std::string value;
    };

    Sample(std::string path, int sections, int keys) : path_(std::move(path)), lines_(0) {
        std::string text;
        for (int section = 0; section < sections; ++section) {
            const std::string name = "Adapter " + std::to_string(section);
            text += "[" + name + "]\n";
            for (int key = 0; key < keys; ++key) {
                settings_.push_back({name, "StaticAddress" + std::to_string(key),
                                     "10." + std::to_string(section % 256) + "." +
                                         std::to_string(key % 256) + ".1,255.255.255.0"});
                text += settings_.back().key + " = " + settings_.back().value + "\n";
            }
        }
        lines_ = static_cast<std::size_t>(std::ranges::count(text, '\n'));
        std::FILE* const file = std::fopen(path_.c_str(), "wb");
        if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size() ||
            std::fclose(file) != 0) {
            throw std::runtime_error("cannot write " + path_);
        }
    }
    ~Sample() { std::remove(path_.c_str()); }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    const std::string& Path() const noexcept { return path_; }
    std::size_t Lines() const noexcept { return lines_; }
    const std::vector<Setting>& Settings() const noexcept { return settings_; }
    /// That many, from all over the file.
    std::vector<Setting> Some(std::size_t count) const {
        std::vector<Setting> some;
        for (std::size_t i = 0; i < count; ++i) {
            some.push_back(settings_[i * 104729 % settings_.size()]);
        }
        return some;
    }

private:
    std::string path_;
    std::size_t lines_;
    std::vector<Setting> settings_;
};

}  // namespace bench
