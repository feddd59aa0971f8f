#include "core/operation_context.h"

namespace Core {

Common::string const OperationContext::ATTR_NAME_REENUMERATE_SOURCE_DEVICE_ID =
    "ATTR_NAME_REENUMERATE_SOURCE_DEVICE_ID";

void OperationContext::addContextItem(Common::string const& name, Common::string const& value) {
    m_items.insert(Common::pair<Common::string, Common::string>(name, value));
}

bool OperationContext::hasContextItem(Common::string const& name) const {
    return m_items.find(name) != m_items.end();
}

Common::string OperationContext::getContextItemValue(Common::string const& name) const {
    auto const item = m_items.find(name);
    return item == m_items.end() ? Common::string() : item->second;
}

}  // namespace Core
