#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>

#include "src/CLI.h"

/// Reads a whole file; empty when there is none.
inline std::string readFile(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void writeFile(std::string const& path, std::string const& text) {
    std::ofstream(path, std::ios::binary) << text;
}

/// Makes a fresh working directory for the test and lets the one `cli` write its verbose log there instead of
/// /var/ksl; both are put back at the end.
class FrontEndTest : public ::testing::Test {
  protected:
    FrontEndTest() : m_before(std::filesystem::current_path()), m_cli(cli) {
        char name[] = "/tmp/frontend-XXXXXX";
        if (!mkdtemp(name)) std::abort();
        m_directory = name;
        std::filesystem::current_path(m_directory);
        cli = CLI(m_directory + "/verbose.log");
        cli.setVerbose(true);
    }
    ~FrontEndTest() override {
        cli = m_cli;
        std::filesystem::current_path(m_before);
        std::filesystem::remove_all(m_directory);
    }

    std::string const& directory() const { return m_directory; }
    /// What the verbose log received since the last call.
    std::string takeVerboseLog() {
        std::string text = readFile(m_directory + "/verbose.log");
        std::filesystem::remove(m_directory + "/verbose.log");
        return text;
    }

    /// Runs `work` with `input` typed at standard input, and returns what went to standard output and
    /// standard error, in the order in which it got there.
    template <class Work>
    std::string transcript(std::string const& input, Work work) {
        std::string const path = m_directory + "/transcript";
        std::istringstream typed(input);
        std::streambuf* const keyboard = std::cin.rdbuf(typed.rdbuf());
        std::fflush(stdout);
        int const out = dup(STDOUT_FILENO);
        int const err = dup(STDERR_FILENO);
        int const file = open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_APPEND, 0600);
        dup2(file, STDOUT_FILENO);
        dup2(file, STDERR_FILENO);
        close(file);
        work();
        std::fflush(stdout);
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        close(out);
        close(err);
        std::cin.rdbuf(keyboard);
        return readFile(path);
    }
    template <class Work>
    std::string transcript(Work work) {
        return transcript("", std::move(work));
    }

  private:
    std::filesystem::path m_before;
    CLI m_cli;
    std::string m_directory;
};
