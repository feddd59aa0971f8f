#pragma once

#include "common/output_stream.h"
#include "common/shared_ptr.h"
#include "common/string.h"
#include "core/capability.h"
#include "core/visitor_device.h"

namespace Core {

// Writes a device and everything below it as XML, for people: attributes, operations with their
// capabilities, unavailable operations with their reasons, associations, children. Texts come from hardware;
// whatever they hold, the document is well-formed.
class VisitorDebugXML : public VisitorDevice {
  public:
    // A null stream is logged and nothing is written.
    explicit VisitorDebugXML(Common::shared_ptr<Common::OutputStream> stream);

    OperationReturn visit(Device& device) override;
    void visit(Capability const& capability);

  private:
    void write(Common::string const& text);
    void writeAttributes(AttributeSource const& source);
    void writeOperations(Device& device);
    void writeUnavailableOperations(Device& device);
    void writeAssociations(Device& device);

    Common::shared_ptr<Common::OutputStream> m_stream;
};

}  // namespace Core
