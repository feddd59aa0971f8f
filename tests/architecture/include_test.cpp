// Arrows between folders point down only.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

/// What the files of a folder may include, itself aside.
std::map<std::string, Names> const ALLOWED = {
    {"common", {}},
    {"core", {"common"}},
    {"sysmod", {"common"}},
    {"infomgr", {"common", "sysmod"}},
    {"command", {"common", "core", "sysmod"}},
    {"storage", {"common", "core", "sysmod", "command"}},
    {"flash", {"common", "core", "sysmod", "command", "storage"}},
    {"src", {"common", "core", "infomgr", "command", "storage", "flash"}},
    {"simulator", {}},
};

/// Narrower rules for single files and folders: path prefix of the file, prefix of what it includes from a
/// folder that is restricted for it.
struct Restriction {
    char const* file;
    char const* folder;
    Names only;
};
Restriction const RESTRICTIONS[] = {
    // Commands file outcomes in an operation's return, and know nothing else of the device model.
    {"command/", "core/", {"core/operation_return.h", "core/tolkmod.h"}},
    // The front end speaks to the library through core and the Interface:: names.
    {"src/", "command/", {"command/commandmod.h"}},
    {"src/", "storage/", {"storage/storagemod.h", "storage/controller_models.h", "storage/vocabulary/"}},
    {"src/", "flash/", {"flash/flashmod.h", "flash/progress.h", "flash/vocabulary"}},
    {"src/", "infomgr/", {"infomgr/info_mgr_api.h", "infomgr/request_records.h"}},
    {"storage/schema/", "storage/", {"storage/schema/", "storage/vocabulary/"}},
    {"storage/vocabulary/", "storage/", {"storage/vocabulary/", "storage/controller_models.def"}},
    // A machine is an independent witness; its doors meet the product at two seams.
    {"simulator/", "sysmod/", {"sysmod/system_calls.h"}},
    {"simulator/", "common/", {"common/sleep.h"}},
};

/// Files that stand outside the rules, each with its reason.
Names const DOORS = {"simulator/in_process_door.h", "simulator/in_process_door.cpp"};

std::string folderOf(std::string const& path) {
    return path.substr(0, path.find('/'));
}

bool startsWithOneOf(std::string const& path, Names const& prefixes) {
    for (std::string const& prefix : prefixes) {
        if (path.compare(0, prefix.size(), prefix) == 0) {
            return true;
        }
    }
    return false;
}

void checkInclude(std::string const& file, std::string const& included) {
    std::string const from = folderOf(file);
    std::string const to = folderOf(included);
    if (from != to && DOORS.count(file) == 0) {
        EXPECT_EQ(ALLOWED.at(from).count(to), 1U) << file << " includes " << included;
    }
    for (Restriction const& rule : RESTRICTIONS) {
        if (file.compare(0, std::string(rule.file).size(), rule.file) == 0 &&
            included.compare(0, std::string(rule.folder).size(), rule.folder) == 0) {
            EXPECT_TRUE(startsWithOneOf(included, rule.only)) << file << " includes " << included;
        }
    }
}

/// The library has its own shared pointer, whose count isn't atomic; the one that is stays where it is
/// needed.
void checkBoost(std::string const& file, std::string const& line) {
    static std::regex const pattern("^\\s*#\\s*include\\s*<boost/");
    EXPECT_TRUE(folderOf(file) == "infomgr" || !std::regex_search(line, pattern)) << file << ": " << line;
}

TEST(Architecture, IncludesPointDown) {
    static std::regex const pattern("^\\s*#\\s*include\\s*\"([^\"]+)\"");
    std::size_t includes = 0;
    for (auto const& [folder, allowed] : ALLOWED) {
        for (auto const& entry : fs::recursive_directory_iterator(fs::path(KSL_SOURCE_DIR) / folder)) {
            std::string const extension = entry.path().extension();
            if (extension != ".h" && extension != ".cpp" && extension != ".def") {
                continue;
            }
            std::string const file = fs::relative(entry.path(), KSL_SOURCE_DIR).string();
            std::ifstream stream(entry.path());
            std::string line;
            while (std::getline(stream, line)) {
                std::smatch match;
                checkBoost(file, line);
                if (std::regex_search(line, match, pattern)) {
                    ++includes;
                    ASSERT_EQ(ALLOWED.count(folderOf(match[1])), 1U)
                        << file << ": includes are written from the top: " << match[1];
                    checkInclude(file, match[1]);
                }
            }
        }
    }
    EXPECT_GT(includes, 300U) << "the search found too little to mean anything";
}

}  // namespace
