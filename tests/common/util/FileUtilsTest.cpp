// Files on a real disk, and libraries. Here <windows.h> comes after the functions' header, whose
// names its macros must not change.
// clang-format off
#include "common/util/FileUtils.h"
#include <windows.h>
// clang-format on

#if !defined(MoveFile) || !defined(DeleteFile)
#error "<windows.h> defines both names"
#endif

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common/sys/DllProxy.h"
#include "machine/ImportTable.h"
#include "tests/common/sys/Outcome.h"
#include "tests/support/ScratchFolder.h"

namespace {

using namespace sys_tests;

// What the file system tells.
bool numbersFiles = true;
enum class Paths { kTrue, kNone, kOddOnes } namesPaths = Paths::kTrue;

/// Stands in for file systems that tell less than others, or another final path each time, for the
/// life of the object.
class ReticentFileSystem {
private:
    static inline decltype(&GetFileInformationByHandle) information = nullptr;
    static inline decltype(&GetFinalPathNameByHandleW) finalPath = nullptr;

    static BOOL WINAPI Information(HANDLE file, BY_HANDLE_FILE_INFORMATION* told) {
        const BOOL result = information(file, told);
        if (!numbersFiles) {
            told->nFileIndexHigh = told->nFileIndexLow = 0;
        }
        return result;
    }
    static DWORD WINAPI FinalPath(HANDLE file, LPWSTR path, DWORD size, DWORD flags) {
        const DWORD length = namesPaths == Paths::kNone ? 0 : finalPath(file, path, size, flags);
        if (namesPaths == Paths::kOddOnes && length < size) {
            path[length - 1] = static_cast<wchar_t>(reinterpret_cast<std::uintptr_t>(file));
        }
        return length;
    }

    const std::vector<machine::Hook> hooks_ = {
        {"GetFileInformationByHandle", reinterpret_cast<void*>(&Information),
         reinterpret_cast<void**>(&information)},
        {"GetFinalPathNameByHandleW", reinterpret_cast<void*>(&FinalPath),
         reinterpret_cast<void**>(&finalPath)}};
    const machine::ImportTable patched_{GetModuleHandleA(nullptr), hooks_};
};

TEST(FileUtils, MoveNeverReplaces) {
    const support::ScratchFolder folder;
    const std::string source = folder.Write("source", "content");
    const std::string existing = folder.Write("existing", "kept");
    const std::string subfolder = std::string("folder");
    std::filesystem::create_directory(subfolder);
    struct Case {
        std::string from;
        std::string to;
        const char* message;
        int line;
        int code;
    };
    const Case cases[] = {
        {source, existing, "Destination file exists ", 97, 0},
        {std::string("missing"), std::string("x"), "Source file does not exist ", 100,
         ERROR_FILE_NOT_FOUND},
        {subfolder, std::string("x"), "Source file does not exist ", 100, ERROR_FILE_NOT_FOUND},
        {source, subfolder, "File Move Failed ", 104, ERROR_ALREADY_EXISTS},
    };
    for (const Case& c : cases) {
        SetLastError(0);
        EXPECT_EQ(OutcomeOf([&] { util::MoveFile(c.from, c.to); }),
                  FileFailure(c.message, c.line, c.code))
            << c.from << " -> " << c.to;
    }
    EXPECT_EQ(support::ReadFile(existing), "kept");
    EXPECT_EQ(support::ReadFile(source), "content");

    util::MoveFile(source, std::string("folder\\moved"));
    EXPECT_FALSE(util::FileExists(source));
    EXPECT_EQ(support::ReadFile(std::string("folder\\moved")), "content");
}

TEST(FileUtils, DeleteTakesFilesAlone) {
    const support::ScratchFolder folder;
    const std::string file = folder.Write("file", "x");
    const std::string subfolder = std::string("folder");
    std::filesystem::create_directory(subfolder);
    EXPECT_EQ(OutcomeOf([&] { util::DeleteFile(file); }), Success());
    EXPECT_EQ(OutcomeOf([&] { util::DeleteFile(file); }),
              FileFailure("Delete failed - target does not exist", 136, ERROR_FILE_NOT_FOUND));
    SetLastError(0);
    EXPECT_EQ(OutcomeOf([&] { util::DeleteFile(subfolder); }),
              FileFailure("Delete failed - target does not exist", 136, 0));
}

TEST(FileUtils, AFileStandsAtItsOwnNameAlone) {
    const support::ScratchFolder folder;
    const std::string file = folder.Write("Name.ini", "x");
    char full[MAX_PATH];
    ASSERT_NE(GetFullPathNameA(file.c_str(), sizeof full, full, nullptr), 0U);
    std::string slashes = full;
    slashes.replace(slashes.rfind('\\'), 1, "/");
    for (const std::string& spelling :
         {file, std::string(full), slashes, std::string("NAME.INI"), std::string(".\\Name.ini")}) {
        EXPECT_TRUE(util::StandsAt(spelling, file)) << spelling;
        EXPECT_TRUE(util::StandsAt(file, spelling)) << spelling;
    }
    const std::string link = std::string("link");
    const std::string others[] = {link, folder.Write("other", "x"), std::string("missing")};
    {
        const ReticentFileSystem reticent;
        for (const Paths names : {Paths::kTrue, Paths::kNone, Paths::kOddOnes}) {
            namesPaths = names;
            const std::string byAnotherPath = std::string("\\\\?\\") + full;
            EXPECT_TRUE(util::StandsAt(file, byAnotherPath));
            numbersFiles = false;
            EXPECT_TRUE(util::StandsAt(file, file));
            EXPECT_EQ(util::StandsAt(file, byAnotherPath), names == Paths::kTrue);
            for (const std::string& other : others) {
                EXPECT_FALSE(util::StandsAt(file, other)) << other;
            }
            numbersFiles = true;
        }
        namesPaths = Paths::kTrue;
    }
    std::filesystem::create_hard_link(file, link);
    for (const std::string& other : others) {
        EXPECT_FALSE(util::StandsAt(file, other)) << other;
        EXPECT_FALSE(util::StandsAt(other, file)) << other;
        EXPECT_EQ(util::IsSameFile(file, other), other == link) << other;
    }
    // Where nothing can be opened the paths speak for themselves.
    EXPECT_TRUE(util::StandsAt(std::string("missing"), std::string(".\\MISSING")));
    EXPECT_FALSE(util::StandsAt(std::string("missing"), std::string("missing too")));
    // Asking takes no lock that would keep the file from being deleted.
    EXPECT_EQ(OutcomeOf([&] { util::DeleteFile(file); }), Success());
}

TEST(FileUtils, PathsAreCutAtTheirLastSeparator) {
    struct Case {
        const char* path;
        const char* directory;
        const char* fileName;
    };
    const Case cases[] = {
        {"C:\\dir\\file.ini", "C:\\dir", "file.ini"},
        {"a\\b/c", "a\\b", "c"},
        {"file.ini", "", "file.ini"},
        {"\\file", "", "file"},
        {"dir\\", "dir", ""},
    };
    for (const Case& c : cases) {
        const util::SplitPath split = util::Split(c.path);
        EXPECT_EQ(split.directory, c.directory) << c.path;
        EXPECT_EQ(split.fileName, c.fileName) << c.path;
    }
    EXPECT_TRUE(util::FileExists(util::ExecutablePath()));
}

TEST(DllProxy, WithoutANameIsAnError) {
    void* slot = nullptr;
    sys::DllProxy nameless("");
    SetLastError(4711);
    EXPECT_EQ(OutcomeOf([&] { nameless.GetProcAddress(slot, "Decrypt"); }),
              DllFailure("DllProxy::Load - No Filename", 64, 0, 4711));
}

}  // namespace
