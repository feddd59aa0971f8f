#pragma once

#include <vector>

#include "infomgr/class_discoverer.h"
#include "infomgr/info_mgr_schema_object.h"

/// Brings the objects of a type in line with the devices that are there.
class ApiHandleTreeWalker {
  public:
    explicit ApiHandleTreeWalker(ClassDiscoverer const& discoverer) : m_discoverer(discoverer) {}

    /// `objects` comes out in the order of the devices found. A device that had an object keeps it, with its
    /// handle; objects of devices that are gone are given up.
    void discover(std::uint32_t objectType, std::vector<boost::shared_ptr<InfoMgrSchemaObject>>& objects);

  private:
    ClassDiscoverer const& m_discoverer;
};
