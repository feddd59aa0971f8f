#include "core/visitor_debug_xml.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/core/test_tree.h"

using namespace TestTree;

namespace {

struct DebugXMLTest : Fixture {
    static std::string dump(DevicePtr const& device) {
        Common::shared_ptr<Common::OutputStreamToBuffer> const stream(new Common::OutputStreamToBuffer);
        Core::VisitorDebugXML visitor(stream);
        visitor.visit(*device);
        return str(stream->buffer());
    }
};

TEST_F(DebugXMLTest, WritesAllThatADeviceHolds) {
    DevicePtr const drive = add(root, "d", "TYPE_DRIVE");
    dynamic_cast<Node&>(*drive).m_deletable = false;
    activate<Root>("OPERATION_W", Core::DeviceOperation::eWrite).m_capability = [] {
        Common::shared_ptr<Core::Capability> const capability(new Core::Capability);
        Common::shared_ptr<Core::Capability> const mode(
            new Core::CapabilityClass("MODE", "T", "C", "A", "R"));
        capability->Subscribe(mode);
        mode->Subscribe(
            Common::shared_ptr<Core::Capability>(new Core::CapabilityInstance("fast", true, false)));
        return capability;
    }();
    activate<Root>("OPERATION_N", Core::DeviceOperation::eRead).m_refusal = [](DevicePtr) {
        return "REASON";
    };
    reenumerate();
    Common::shared_ptr<Core::DeviceAssociation> const link(new Core::DeviceAssociation("LINK"));
    link->receive(drive);
    root->receive(link);

    EXPECT_EQ(dump(root),
              "<ATTR_VALUE_TYPE_MOD_ROOT>\n"
              "<Attribute ATTR_NAME_TYPE=\"ATTR_VALUE_TYPE_MOD_ROOT\" />\n"
              "<Operation Name=\"OPERATION_W\">\n"
              "<ATTR_NAME_CAPABILITY>\n"
              "<ATTR_NAME_CAPABILITY_CLASS ATTR_NAME_ACTION=\"A\" ATTR_NAME_ATTRIBUTE_NAME=\"MODE\" "
              "ATTR_NAME_CARDINALITY=\"C\" ATTR_NAME_INSTANCE_RANGE=\"R\" ATTR_NAME_INSTANCE_TYPE=\"T\">\n"
              "<ATTR_NAME_CAPABILITY_INSTANCE ATTR_NAME_CURRENT_VALUE=\"ATTR_VALUE_CURRENT_VALUE_FALSE\" "
              "ATTR_NAME_DEFAULT_VALUE=\"ATTR_VALUE_DEFAULT_VALUE_TRUE\" MODE=\"fast\">\n"
              "</ATTR_NAME_CAPABILITY_INSTANCE>\n"
              "</ATTR_NAME_CAPABILITY_CLASS>\n"
              "</ATTR_NAME_CAPABILITY>\n"
              "</Operation>\n"
              "<UnavailableOperation ATTR_NAME_OPERATION_NAME=\"OPERATION_N\" "
              "ATTR_NAME_UNAVAILABLE_REASON=\"REASON\" />\n"
              "<Association name=\"LINK\">\n"
              "<device ATTR_NAME_UNIQUE_ID=\"d\" />\n"
              "</Association>\n"
              "<TYPE_DRIVE>\n"
              "<Attribute ATTR_NAME_TYPE=\"TYPE_DRIVE\" />\n"
              "<Attribute ATTR_NAME_UNIQUE_ID=\"d\" />\n"
              "</TYPE_DRIVE>\n"
              "</ATTR_VALUE_TYPE_MOD_ROOT>\n");
}

TEST_F(DebugXMLTest, HostileTextStaysWithinItsQuotes) {
    struct {
        Common::string text;
        char const* written;
    } const cases[] = {
        {"a&b<c>d\"e'", "a&amp;b&lt;c&gt;d&quot;e'"},
        {"\" />\n<x>", "&quot; /&gt;&#xA;&lt;x&gt;"},
        {Common::string("\x01\x1F\0z", 4), "\\x01\\x1F\\x00z"},
        {"\t\r\x7F", "&#x9;&#xD;&#x7F;"},
        {"\xC3\xFF", "&#xC3;&#xFF;"},
        {"%s%n", "%s%n"},
    };
    for (auto const& c : cases) {
        DevicePtr const device(new Node("d", "7 bad<type>"));
        device->Receive(Core::Attribute("ATTR_NAME_A", c.text));
        EXPECT_EQ(dump(device),
                  std::string("<_7_bad_type_>\n<Attribute ATTR_NAME_A=\"") + c.written +
                      "\" />\n<Attribute ATTR_NAME_TYPE=\"7 bad&lt;type&gt;\" />\n</_7_bad_type_>\n");
    }
}

TEST_F(DebugXMLTest, EachReenumerationWritesTheWholeTreeToAFile) {
    std::filesystem::path const directory =
        std::filesystem::temp_directory_path() / ("core_debug_xml." + std::to_string(getpid()));
    std::filesystem::create_directory(directory);
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(directory);

    Core::DeviceFactory::SetRootCreator(&Root::create);
    DevicePtr const top = Core::DeviceFactory().pRoot();
    top->Reenumerate(Core::Device::ReenumeratePredicate());
    EXPECT_FALSE(std::filesystem::exists("application.exe.xml"));
    Interface::TOLKMod::InitializeModule(true, false);
    top->Reenumerate(Core::Device::ReenumeratePredicate());
    top->Refresh();
    std::stringstream written;
    written << std::ifstream("application.exe.xml").rdbuf();
    EXPECT_EQ(written.str(),
              "<ATTR_VALUE_TYPE_MOD_ROOT>\n<Attribute ATTR_NAME_TYPE=\"ATTR_VALUE_TYPE_MOD_ROOT\" />\n"
              "</ATTR_VALUE_TYPE_MOD_ROOT>\n");

    Core::DeviceFactory::ForgetRoot();
    Core::DeviceFactory::SetRootCreator(nullptr);
    EXPECT_FALSE(Core::DeviceFactory().pRoot())
        << "taking the root apart once dumped, and so made, a new one";
    std::filesystem::current_path(before);
    std::filesystem::remove_all(directory);
}

TEST_F(DebugXMLTest, WithoutAStreamNothingIsWritten) {
    LogCapture log(1);
    Core::VisitorDebugXML visitor((Common::shared_ptr<Common::OutputStream>()));
    visitor.visit(*root);
    EXPECT_EQ(log.lines(), Texts{"Debug XML refused: no stream to write to"});
}

}  // namespace
