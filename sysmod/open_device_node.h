#pragma once

#include "common/convertible.h"
#include "common/string.h"
#include "sysmod/device_handle.h"

namespace Core::SysMod {

/// A device node, open for the length of one command. A ":" in the path splits it: what follows is the
/// controller number, what precedes is the path opened. A failed open is logged and leaves the descriptor
/// at -1.
class OpenDeviceNode : public Common::NonCopyable {
  public:
    /// Opens the node at Property::NodePath. `alternate` takes O_NONBLOCK in place of O_RDWR.
    OpenDeviceNode(Common::string const (&table)[PROPERTY_COUNT], bool alternate);
    /// Opens `path`. `alternate` takes O_RDONLY in place of O_RDWR.
    OpenDeviceNode(Common::string const& path, bool alternate);
    ~OpenDeviceNode() override;

    /// errno of a failed open, else 0.
    int openError() const { return m_openError; }
    /// -1 when the open failed.
    int descriptor() const { return m_descriptor; }
    /// -1 unless the path carried one.
    int controllerNumber() const { return m_controllerNumber; }
    bool isOpen() const { return m_descriptor >= 0; }

  private:
    void openPath(Common::string const& path, int flags);

    int m_openError = 0;
    int m_descriptor = -1;
    int m_controllerNumber = -1;
};

}  // namespace Core::SysMod
