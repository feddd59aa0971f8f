#pragma once

#include <string>
#include <vector>

namespace Core::SysMod {

/// A directory of one of the kernel's file system views.
class FMDirectory {
  public:
    explicit FMDirectory(std::string path) : m_path(std::move(path)) {}

    std::string const& path() const { return m_path; }
    /// Names of the entries in ascending order; none when the directory can't be read.
    std::vector<std::string> GetChildren() const;
    /// The same, of the entries whose name matches `pattern`, in which "*" stands for any text.
    std::vector<std::string> GetChildren(std::string const& pattern) const;
    /// First line of a file in the directory; empty when it can't be read.
    std::string firstLine(std::string const& name) const;

  private:
    std::string m_path;
};

/// Whether `text` matches `pattern`, in which "*" stands for any text.
bool matchesPattern(std::string const& text, std::string const& pattern);

/// The part of a path behind its last "/".
std::string baseName(std::string const& path);

}  // namespace Core::SysMod
