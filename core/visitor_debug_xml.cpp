#include "core/visitor_debug_xml.h"

#include <cctype>
#include <cstdio>

#include "common/debug_logger.h"
#include "core/device.h"
#include "core/tolkmod.h"

namespace Core {

namespace {

// The text of an attribute value. XML 1.0 has no way at all to write most control characters, so those
// appear as "\xNN"; bytes above 0x7F are written by number, as nothing says that they are UTF-8.
Common::string escaped(Common::string const& text) {
    Common::string result;
    for (unsigned i = 0; i < text.size(); ++i) {
        unsigned char const byte = static_cast<unsigned char>(text[i]);
        char buffer[8];
        switch (byte) {
            case '&':
                result += "&amp;";
                continue;
            case '<':
                result += "&lt;";
                continue;
            case '>':
                result += "&gt;";
                continue;
            case '"':
                result += "&quot;";
                continue;
            default:
                break;
        }
        if (byte == '\t' || byte == '\n' || byte == '\r' || byte > 0x7E) {
            std::snprintf(buffer, sizeof buffer, "&#x%X;", byte);
        } else if (byte < 0x20) {
            std::snprintf(buffer, sizeof buffer, "\\x%02X", byte);
        } else {
            std::snprintf(buffer, sizeof buffer, "%c", byte);
        }
        result += buffer;
    }
    return result;
}

// A text as the name of an element or attribute: what may not stand there becomes "_".
Common::string xmlName(Common::string const& text) {
    Common::string result;
    for (unsigned i = 0; i < text.size(); ++i) {
        unsigned char const byte = static_cast<unsigned char>(text[i]);
        bool const letter = byte < 0x80 && (std::isalpha(byte) || byte == '_');
        bool const inner = byte < 0x80 && (std::isdigit(byte) || byte == '-' || byte == '.');
        if (!letter && inner && i == 0) result += "_";
        result += letter || inner ? Common::string(static_cast<char>(byte)) : Common::string("_");
    }
    return result.empty() ? Common::string("_") : result;
}

Common::string assignment(Common::string const& name, Common::string const& value) {
    return xmlName(name) + "=\"" + escaped(value) + "\"";
}

}  // namespace

VisitorDebugXML::VisitorDebugXML(Common::shared_ptr<Common::OutputStream> stream) : m_stream(stream) {
    if (!m_stream) Common::DebugLogger::LogCommand("Debug XML refused: no stream to write to");
}

OperationReturn VisitorDebugXML::visit(Device& device) {
    Common::string const element = xmlName(device.getValueFor(Interface::TOLKMod::Device::ATTR_NAME_TYPE));
    write("<" + element + ">\n");
    for (auto attribute = device.beginAttribute(); attribute != device.endAttribute(); ++attribute) {
        write("<Attribute " + assignment(attribute->first, attribute->second) + " />\n");
    }
    writeOperations(device);
    writeUnavailableOperations(device);
    writeAssociations(device);
    for (Device::ChildIterator child = device.beginChild(); child != device.endChild(); ++child) {
        visit(**child);
    }
    write("</" + element + ">\n");
    return OperationReturn();
}

void VisitorDebugXML::visit(Capability const& capability) {
    Common::string const element = xmlName(capability.type());
    write("<" + element);
    writeAttributes(capability);
    write(">\n");
    for (Capability::ChildIterator child = capability.beginChild(); child != capability.endChild(); ++child) {
        visit(**child);
    }
    write("</" + element + ">\n");
}

void VisitorDebugXML::write(Common::string const& text) {
    if (m_stream) m_stream->Accept(text.c_str(), text.size());
}

void VisitorDebugXML::writeAttributes(AttributeSource const& source) {
    for (auto attribute = source.beginAttribute(); attribute != source.endAttribute(); ++attribute) {
        write(" " + assignment(attribute->first, attribute->second));
    }
}

void VisitorDebugXML::writeOperations(Device& device) {
    Common::shared_ptr<Device> const self = device.getDevicePtr();
    for (auto operation = device.beginOperation(); operation != device.endOperation(); ++operation) {
        write("<Operation Name=\"" + escaped((*operation)->name()) + "\">\n");
        // Operations take their device for granted; one that nobody holds has no capabilities to show.
        Common::shared_ptr<Capability> const capability =
            self ? (*operation)->getCapabilityPtr(self) : Common::shared_ptr<Capability>();
        if (capability) visit(*capability);
        write("</Operation>\n");
    }
}

void VisitorDebugXML::writeUnavailableOperations(Device& device) {
    for (auto reason = device.beginUnavailableOperationReason();
         reason != device.endUnavailableOperationReason(); ++reason) {
        write("<UnavailableOperation");
        writeAttributes(**reason);
        write(" />\n");
    }
}

void VisitorDebugXML::writeAssociations(Device& device) {
    namespace DeviceNames = Interface::TOLKMod::Device;
    for (auto association = device.beginAssociation(); association != device.endAssociation();
         ++association) {
        write("<Association name=\"" + escaped((*association)->name()) + "\">\n");
        for (auto member = (*association)->beginDevice(); member != (*association)->endDevice(); ++member) {
            Common::string const id = (*member)->getValueFor(DeviceNames::ATTR_NAME_UNIQUE_ID);
            write("<device " + assignment(DeviceNames::ATTR_NAME_UNIQUE_ID, id) + " />\n");
        }
        write("</Association>\n");
    }
}

}  // namespace Core
