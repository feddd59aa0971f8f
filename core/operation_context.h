#pragma once

#include "common/map.h"
#include "common/string.h"

namespace Core {

// What an operation may know about why it runs: the phase of a reenumeration, and named items of text.
class OperationContext {
  public:
    enum EnOperationReenumerateContext {
        eNoReenumerate = 0,
        eTopDownReenumerate = 1,
        eBottomUpReenumerate = 2
    };

    // The one item that the device model itself sets: ATTR_NAME_UNIQUE_ID of the device on which the
    // reenumeration was asked for. A Common::string, unlike other names.
    static Common::string const ATTR_NAME_REENUMERATE_SOURCE_DEVICE_ID;

    explicit OperationContext(EnOperationReenumerateContext phase = eNoReenumerate) : m_phase(phase) {}

    bool isReenumerateContext() const { return m_phase != eNoReenumerate; }
    bool isBottomUpReenumerateContext() const { return m_phase == eBottomUpReenumerate; }
    void SetReenumerateContext(EnOperationReenumerateContext phase) { m_phase = phase; }

    // Adds the item, or replaces its value.
    void addContextItem(Common::string const& name, Common::string const& value);
    bool hasContextItem(Common::string const& name) const;
    // Empty when absent.
    Common::string getContextItemValue(Common::string const& name) const;

  private:
    EnOperationReenumerateContext m_phase;
    Common::map<Common::string, Common::string> m_items;
};

}  // namespace Core
