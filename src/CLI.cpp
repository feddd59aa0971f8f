#include "src/CLI.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

CLI cli;

namespace {

// False, with errno set, when the file can't be opened.
__attribute__((format(printf, 2, 0))) bool appendToFile(std::string const& path, char const* format,
                                                        va_list args) {
    std::FILE* const file = std::fopen(path.c_str(), "a+");
    if (!file) return false;
    std::vfprintf(file, format, args);
    std::fclose(file);
    return true;
}

}  // namespace

CLI::CLI(std::string verboseLogPath) : m_VerboseLogPath(std::move(verboseLogPath)) {}

void CLI::print(char const* format, va_list args) {
    if (m_Silent) return;
    std::vprintf(format, args);
    std::fflush(stdout);
}

void CLI::logToFile(char const* format, va_list args) {
    static bool reported = false;
    if (m_LogFileName.empty() || appendToFile(m_LogFileName, format, args) || reported) return;
    reported = true;
    std::printf("Failed to open log file %s - %s\n", m_LogFileName.c_str(), std::strerror(errno));
    std::fflush(stdout);
}

void CLI::logToXMLFile(char const* format, va_list args) {
    static bool reported = false;
    if (m_xmlFileName.empty() || appendToFile(m_xmlFileName, format, args) || reported) return;
    reported = true;
    std::printf("Failed to open log file %s - %s\n", m_xmlFileName.c_str(), std::strerror(errno));
    std::fflush(stdout);
}

// The message has one place to fill, and it holds the reason, not the path.
void CLI::logVerboseToFile(char const* format, va_list args) {
    static bool reported = false;
    if (!m_Verbose || appendToFile(m_VerboseLogPath, format, args) || reported) return;
    reported = true;
    std::printf("Failed to open verbose log file %s\n", std::strerror(errno));
    std::fflush(stdout);
}

void CLI::vlogAndPrint(char const* format, va_list args) {
    va_list forConsole;
    va_copy(forConsole, args);
    logToFile(format, args);
    print(format, forConsole);
    va_end(forConsole);
}

void CLI::printMsg(char const* format, ...) {
    va_list args;
    va_start(args, format);
    print(format, args);
    va_end(args);
}

void CLI::log(char const* format, ...) {
    va_list args;
    va_start(args, format);
    logToFile(format, args);
    va_end(args);
}

void CLI::logAndPrint(char const* format, ...) {
    va_list args;
    va_start(args, format);
    vlogAndPrint(format, args);
    va_end(args);
}

void CLI::debug(char const* format, ...) {
    va_list args;
    va_start(args, format);
    vlogAndPrint(format, args);
    va_end(args);
}

void CLI::logVerbose(char const* format, ...) {
    va_list args;
    va_start(args, format);
    logVerboseToFile(format, args);
    va_end(args);
}

void CLI::logRuler() {
    logVerbose("%s\n", std::string(70, '-').c_str());
}

void CLI::PrintXML(char const* format, ...) {
    va_list args;
    va_start(args, format);
    logToXMLFile(format, args);
    va_end(args);
}
