#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "simulator/bytes.h"

namespace simulator {

/// Whole files. All of them throw MachineError with the path and the system's words.
Bytes readWholeFile(std::filesystem::path const& file);
std::string readText(std::filesystem::path const& file);
void writeWholeFile(std::filesystem::path const& file, std::span<std::uint8_t const> contents);
void writeText(std::filesystem::path const& file, std::string_view contents);
/// Writes over the beginning of `file` with one write(2) and leaves the rest. For small files that change
/// often: some file systems answer a truncation with a flush to the disk.
void overwriteText(std::filesystem::path const& file, std::string_view contents);
/// Writes beside `file` and renames over it: a reader sees the old or the new contents, never a part.
void replaceText(std::filesystem::path const& file, std::string_view contents);
/// Appends with one write(2), so that lines of several processes don't mix.
void appendText(std::filesystem::path const& file, std::string_view contents);

/// An exclusive flock on a file for the object's life. The file is opened anew each time: a descriptor that
/// was shared with a forked child would share its lock too.
class FileLock {
  public:
    explicit FileLock(std::filesystem::path const& file);
    ~FileLock();
    FileLock(FileLock const&) = delete;
    FileLock& operator=(FileLock const&) = delete;

  private:
    int m_descriptor;
};

}  // namespace simulator
