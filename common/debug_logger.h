#pragma once

#include <atomic>
#include <cstdarg>

#include "common/list.h"
#include "common/output_stream.h"
#include "common/pair.h"
#include "common/process_mutex.h"
#include "common/shared_ptr.h"

namespace Common {

// The library's log: a process-wide list of streams, each with a mask of levels. Silent until a stream is
// registered. Levels are bits: 1 commands and operation results, 4 the reenumeration trace; a message goes
// to a stream when level & mask isn't zero. Any thread may log.
class DebugLogger {
  public:
    using StreamList = list<pair<unsigned char, shared_ptr<OutputStream>>>;

    // The longest text of Log and LogCommand; a longer one is cut off, and a second line says by how much.
    static constexpr unsigned int MAX_TEXT = 2047;

    static void Pause();
    static void Resume();

    // Not paused and at least one stream.
    static bool QueryIsLoggable();

    // A null stream is refused, logged.
    static void RegisterDebugOutputStream(int mask, shared_ptr<OutputStream> const& stream);
    static void UnRegisterAllDebugOutputStreams();

    // With timestamp and newline. Nothing is formatted while nobody listens.
    static void Log(int level, char const* format, ...) __attribute__((format(printf, 2, 3)));
    // Level 1.
    static void LogCommand(char const* format, ...) __attribute__((format(printf, 1, 2)));

    // "[YYYY-MM-DD HH:MM:SS] " in local time, text, newline; the text is not a format here. A null text is
    // refused: a line of that level says so.
    static void LogMessage(int level, char const* text, bool withTimestamp, bool withNewline);

    // Hex dump, 16 bytes to the line, under two header lines.
    static void LogDataBuffer(int level, unsigned char const* data, int length);

  private:
    static void LogFormatted(int level, char const* format, va_list arguments)
        __attribute__((format(printf, 2, 0)));

    // Both are made on first use and live until the process ends: static objects log at either end.
    static StreamList& s_outputStreamList();
    static Synchronization::ProcessMutex& DebugLogMutex();

    // Read without the mutex, on the way that must cost nothing.
    static std::atomic<bool> s_logPaused;
    static std::atomic<unsigned int> s_streamCount;
};

}  // namespace Common
