#include "core/filter.h"

#include "common/debug_logger.h"
#include "core/device.h"
#include "core/tolkmod.h"

namespace Core {

namespace Reason = Interface::TOLKMod::UnavailableOperationReason;

FilterReturn& FilterReturn::operator=(char const* reason) {
    m_available = false;
    Receive(Attribute(Reason::ATTR_NAME_UNAVAILABLE_REASON, reason));
    return *this;
}

FilterReturn Filter::apply(Common::shared_ptr<Device> device) const {
    return applyImpl(device);
}

FilterReturn NullFilter::applyImpl(Common::shared_ptr<Device>) const {
    return FilterReturn();
}

FilterReturn applyFilter(Common::shared_ptr<Filter> const& filter, Common::shared_ptr<Device> const& device,
                         Common::string const& subject) {
    if (filter && device) return filter->apply(device);

    Common::DebugLogger::LogCommand("Refused %s: expected a filter and a device, actual %s", subject.c_str(),
                                    filter ? "no device" : "no filter (pool exhausted)");
    FilterReturn refused;
    refused = Reason::ATTR_VALUE_UNAVAILABLE_REASON_UNKNOWN;
    return refused;
}

}  // namespace Core
