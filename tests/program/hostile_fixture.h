#pragma once

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/package_run.h"

namespace hostile {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

/// The older controller of the package's machine before and after an update.
inline constexpr char OLD[] = "left 6.40/6.40 ok";
inline constexpr char FLASHED[] = "left 6.40/6.64 restart needed";

/// The package with two controllers, for runs that must end in order whatever was done to it.
class HostileInput : public ::testing::Test {
  protected:
    HostileInput() : package("two-controllers") {}

    /// Runs the program; whatever happens, it ends in order.
    RunResult run(Strings const& arguments, std::string const& input = "") {
        RunResult const result = package.flash(arguments, input);
        EXPECT_TRUE(result.status >= 0 && result.status <= 10) << result.status << "\n" << result.errors;
        for (std::string const& text : {result.errors, result.output}) {
            for (char const* word : {"Sanitizer", "runtime error"})
                EXPECT_EQ(std::string::npos, text.find(word)) << text.substr(0, 5000);
        }
        return result;
    }

    /// Commands that change a device.
    std::size_t writes() const {
        std::size_t count = 0;
        for (auto const& exchange : package.journal())
            count +=
                exchange.event == "exchange" && !exchange.block.empty() && exchange.block[0] == 0x27 ? 1 : 0;
        return count;
    }

    /// Firmware of the older controller is what it was; nothing was sent to change it.
    void expectUntouched() {
        EXPECT_EQ(0U, writes());
        EXPECT_EQ(OLD, package.firmware("left"));
        EXPECT_EQ("right 6.64/6.64 ok", package.firmware("right"));
    }

    void replace(char const* name, std::string const& text) const {
        fs::remove_all(file(name));
        writeText(file(name), text);
    }
    fs::path file(char const* name) const { return package.directory() / name; }

    PackageRun package;
};

}  // namespace hostile
