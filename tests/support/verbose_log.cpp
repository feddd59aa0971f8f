#include "tests/support/verbose_log.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <regex>

namespace {

/// The verbose log with what differs from run to run replaced by words: the image's address and the time of
/// day. The list of a device's attributes, which has tests of its own, becomes one line.
std::string steadyLog(PackageRun const& package) {
    std::string log = package.verboseLog();
    log = std::regex_replace(log, std::regex("Setting buffer address to [0-9]+ for 0x[0-9a-f]+"),
                             "Setting buffer address to ADDRESS for ADDRESS");
    log = std::regex_replace(log, std::regex("(return code [0-9]): .*\n"), "$1: TIME\n");
    std::string steady;
    bool inAttributes = false;
    for (std::size_t at = 0; at < log.size();) {
        std::size_t const end = std::min(log.find('\n', at), log.size() - 1) + 1;
        std::string const line = log.substr(at, end - at);
        bool const isAttribute = line.compare(0, 3, "   ") == 0 && line.find(" = ") != std::string::npos;
        if (!isAttribute) {
            steady += line;
        } else if (!inAttributes) {
            steady += "   (attributes)\n";
        }
        inAttributes = isAttribute;
        at = end;
    }
    return steady;
}

}  // namespace

void expectTranscript(std::string const& text, std::string const& name) {
    std::string const file = std::string(KSL_SOURCE_DIR) + "/tests/program/transcripts/" + name;
    if (std::getenv("KSL_REWRITE_LOGS") != nullptr) {
        writeText(file, text);
        ADD_FAILURE() << "wrote " << file;
        return;
    }
    EXPECT_EQ(text, readText(file)) << file;
}

void expectVerboseLog(PackageRun const& package, std::string const& name) {
    expectTranscript(steadyLog(package), name + ".log");
}
