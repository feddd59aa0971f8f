#include "common/debug_logger.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "common/scoped_mutex_lock.h"

namespace Common {

namespace {

using Lock = Synchronization::ScopedMutexLock<Synchronization::ProcessMutex>;

void acceptText(OutputStream& stream, char const* text) {
    stream.Accept(text, static_cast<unsigned int>(std::strlen(text)));
}

}  // namespace

std::atomic<bool> DebugLogger::s_logPaused = false;
std::atomic<unsigned int> DebugLogger::s_streamCount = 0;

DebugLogger::StreamList& DebugLogger::s_outputStreamList() {
    static StreamList* const streams = new StreamList;
    return *streams;
}

Synchronization::ProcessMutex& DebugLogger::DebugLogMutex() {
    static Synchronization::ProcessMutex* const mutex = new Synchronization::ProcessMutex;
    return *mutex;
}

void DebugLogger::Pause() {
    s_logPaused = true;
}
void DebugLogger::Resume() {
    s_logPaused = false;
}

bool DebugLogger::QueryIsLoggable() {
    return !s_logPaused && s_streamCount != 0;
}

void DebugLogger::RegisterDebugOutputStream(int mask, shared_ptr<OutputStream> const& stream) {
    if (stream == nullptr) {
        LogCommand("Log stream of mask %d refused: null, expected a stream", mask);
        return;
    }
    Lock const lock(DebugLogMutex());
    s_outputStreamList().push_back(
        pair<unsigned char, shared_ptr<OutputStream>>(static_cast<unsigned char>(mask), stream));
    ++s_streamCount;
}

void DebugLogger::UnRegisterAllDebugOutputStreams() {
    // The streams die after the mutex is free: their memory goes back under pgsaMutex, and both mutexes
    // are leaves.
    StreamList dying;
    Lock const lock(DebugLogMutex());
    s_streamCount = 0;
    dying = s_outputStreamList();
    s_outputStreamList().clear();
}

void DebugLogger::Log(int level, char const* format, ...) {
    if (!QueryIsLoggable()) return;
    va_list arguments;
    va_start(arguments, format);
    LogFormatted(level, format, arguments);
    va_end(arguments);
}

void DebugLogger::LogCommand(char const* format, ...) {
    if (!QueryIsLoggable()) return;
    va_list arguments;
    va_start(arguments, format);
    LogFormatted(1, format, arguments);
    va_end(arguments);
}

// vsnprintf terminates, and says how long the text would be.
void DebugLogger::LogFormatted(int level, char const* format, va_list arguments) {
    char text[MAX_TEXT + 1] = {};
    // The analyzer doesn't see that the callers have started the list.
    int const length =
        std::vsnprintf(text, sizeof text, format, arguments);  // NOLINT(clang-analyzer-valist.Uninitialized)
    LogMessage(level, text, true, true);
    constexpr int longest = static_cast<int>(MAX_TEXT);
    if (length > longest) Log(level, "%d characters of a log text cut off", length - longest);
}

void DebugLogger::LogMessage(int level, char const* text, bool withTimestamp, bool withNewline) {
    if (!QueryIsLoggable()) return;
    if (text == nullptr) {
        LogMessage(level, "Log text refused: null, expected a text", true, true);
        return;
    }
    Lock const lock(DebugLogMutex());

    char timestamp[32] = {};
    if (withTimestamp) {
        time_t const now = ::time(nullptr);
        struct tm local = {};
        localtime_r(&now, &local);
        std::strftime(timestamp, sizeof timestamp, "%Y-%m-%d %H:%M:%S", &local);
    }

    for (auto& entry : s_outputStreamList()) {
        if ((level & entry.first) == 0) continue;
        OutputStream& stream = *entry.second;
        if (withTimestamp) {
            acceptText(stream, "[");
            acceptText(stream, timestamp);
            acceptText(stream, "] ");
        }
        acceptText(stream, text);
        if (withNewline) acceptText(stream, "\n");
    }
}

void DebugLogger::LogDataBuffer(int level, unsigned char const* data, int length) {
    if (!QueryIsLoggable()) return;
    constexpr unsigned int BYTES_PER_LINE = 16;
    LogMessage(level, "      00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 0123456789ABCDEF", true, true);
    LogMessage(level, "      ----------------------------------------------------------------", true, true);
    unsigned int const total = data != nullptr && length > 0 ? static_cast<unsigned int>(length) : 0;
    for (unsigned int offset = 0; offset < total; offset += BYTES_PER_LINE) {
        unsigned int const count = total - offset < BYTES_PER_LINE ? total - offset : BYTES_PER_LINE;
        char hex[3 * BYTES_PER_LINE + 1] = {};
        char characters[BYTES_PER_LINE + 1] = {};
        for (std::size_t i = 0; i < count; ++i) {
            unsigned char const byte = data[offset + i];
            std::snprintf(hex + 3 * i, 4, "%02X ", byte);
            characters[i] = std::isprint(byte) != 0 ? static_cast<char>(byte) : '.';
        }
        char line[96];
        std::snprintf(line, sizeof line, " %03X  %-48s%s", offset, hex, characters);
        LogMessage(level, line, true, true);
    }
}

}  // namespace Common
