#pragma once

#include "common/global_static_allocator.h"
#include "common/list.h"
#include "common/shared_ptr.h"
#include "common/string.h"
#include "core/attribute_source.h"

namespace Core {

class Device;

// What a filter says of a device: available, or refused with attributes that tell why.
class FilterReturn : public AttributePublisher, public AttributeSource {
  public:
    FilterReturn() = default;
    FilterReturn(FilterReturn const&) = default;
    FilterReturn& operator=(FilterReturn const&) = default;

    // Refuses: no longer available, and ATTR_NAME_UNAVAILABLE_REASON becomes `reason`.
    FilterReturn& operator=(char const* reason);

    explicit operator bool() const { return m_available; }

  private:
    bool m_available = true;
};

// Judges one device. Filters live in a small fixed pool: make one per use and release it at once. When the
// pool is exhausted `new` yields a null pointer; whoever asks a filter through applyFilter() is safe.
class Filter : public Common::GlobalStaticAllocator {
  public:
    virtual ~Filter() = default;

    FilterReturn apply(Common::shared_ptr<Device> device) const;

  protected:
    virtual FilterReturn applyImpl(Common::shared_ptr<Device> device) const = 0;

    // For derived filters that judge by a set of texts.
    Common::list<Common::string> m_values;
};

// Passes every device.
class NullFilter : public Filter {
  protected:
    FilterReturn applyImpl(Common::shared_ptr<Device> device) const override;
};

// filter->apply(device); a null filter (its pool was exhausted) refuses with
// ATTR_VALUE_UNAVAILABLE_REASON_UNKNOWN and a line in the log. `subject` names what is filtered, for the log.
FilterReturn applyFilter(Common::shared_ptr<Filter> const& filter, Common::shared_ptr<Device> const& device,
                         Common::string const& subject);

}  // namespace Core
