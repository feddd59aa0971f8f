#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "common/cloneable.h"
#include "common/debug_logger.h"
#include "common/output_stream.h"
#include "core/device_composite.h"
#include "core/device_factory.h"
#include "core/device_operation.h"
#include "core/filter.h"
#include "core/operation_registry.h"
#include "core/tolkmod.h"

// A tree of made-up kinds with scripted operations, to exercise the device model without hardware.

namespace TestTree {

typedef Common::shared_ptr<Core::Device> DevicePtr;
typedef Common::shared_ptr<Core::DeviceOperation> OperationPtr;

inline std::string str(Common::string const& text) {
    return std::string(text.c_str(), text.size());
}

template <class Kind>
class Visitor {
  public:
    virtual ~Visitor() = default;
    virtual Core::OperationReturn visit(Kind& device) = 0;
};

// A device with an identity among its siblings. Kinds that differ by Tag have registries of their own.
template <class Base, class Kind>
class KindOf : public Common::CloneableInherit<Base, DevicePtr, Kind>,
               public Core::DeviceOperationRegistry<Kind> {
  public:
    KindOf(char const* type, char const* id) : m_id(id) {
        this->Receive(Core::Attribute(Interface::TOLKMod::Device::ATTR_NAME_TYPE, type));
    }

    bool operator==(Core::Device const& other) const override {
        Kind const* const same = dynamic_cast<Kind const*>(&other);
        return same != nullptr && same->m_id == m_id;
    }

    bool m_deletable = true;
    std::vector<std::string> m_updates;

  protected:
    Common::string toStringImpl() const override { return m_id; }
    bool isDeletable() const override { return m_deletable; }
    void UpdateWith(DevicePtr other) override {
        m_updates.push_back(str(other->toString()) + " over " + str(this->getValueFor("BOTH")));
    }
    Core::OperationReturn performImpl(Core::VisitorDevice& visitor) override {
        return Core::DispatchVisit<Visitor<Kind>>(visitor, static_cast<Kind&>(*this));
    }

    Common::string m_id;
};

class Node : public KindOf<Core::DeviceComposite, Node> {
  public:
    explicit Node(char const* id, char const* type = "TYPE_NODE") : KindOf(type, id) {}
};

class Leaf : public KindOf<Core::Device, Leaf> {
  public:
    explicit Leaf(char const* id) : KindOf("TYPE_LEAF", id) {}
};

// Answers getDevicePtr() itself, as a root must; DeviceFactory::ReleaseRoot() makes it let go.
class Root : public KindOf<Core::DeviceComposite, Root> {
  public:
    Root() : KindOf(Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT, "MR:0") {}
    Root(Root const& other) : KindOf(other), m_self() {}

    DevicePtr getDevicePtr() const override { return m_self; }

    static DevicePtr create() {
        Root* const root = new Root;
        root->m_self = DevicePtr(root);
        return root->m_self;
    }

  protected:
    void setDevicePtr(DevicePtr const& self) override { m_self = self; }

  private:
    DevicePtr m_self;
};

class ScriptedFilter : public Core::Filter {
  public:
    explicit ScriptedFilter(std::function<char const*(DevicePtr)> reason) : m_reason(reason) {}

  protected:
    Core::FilterReturn applyImpl(DevicePtr device) const override {
        Core::FilterReturn verdict;
        if (char const* const reason = m_reason(device)) verdict = reason;
        return verdict;
    }

  private:
    std::function<char const*(DevicePtr)> m_reason;
};

// Works on roots and nodes, not on leaves.
class ScriptedOperation : public Core::DeviceOperation, public Visitor<Node>, public Visitor<Root> {
  public:
    using Core::DeviceOperation::visit;

    ScriptedOperation(char const* name, EnType type, unsigned modifier = eUsual)
        : DeviceOperation(static_cast<EnTypeModifier>(modifier)), m_name(name), m_type(type) {}

    Core::OperationReturn visit(Node& device) override { return run(device); }
    Core::OperationReturn visit(Root& device) override { return run(device); }
    Common::shared_ptr<Core::Capability> getCapabilityPtr(DevicePtr device) override {
        return m_capability ? m_capability : DeviceOperation::getCapabilityPtr(device);
    }

    std::function<Core::OperationReturn(Core::Device&)> m_body;
    std::function<char const*(DevicePtr)> m_refusal;  // a reason, or null to pass
    Common::shared_ptr<Core::Capability> m_capability;
    std::vector<std::string> m_ranOn;  // device, and "^" when bottom-up

  protected:
    Common::string nameImpl() const override { return m_name; }
    EnType eTypeImpl() const override { return m_type; }
    Common::shared_ptr<Core::Filter> pFilterImpl() const override {
        if (!m_refusal) return DeviceOperation::pFilterImpl();
        return Common::shared_ptr<Core::Filter>(new ScriptedFilter(m_refusal));
    }

  private:
    Core::OperationReturn run(Core::Device& device) {
        bool const bottomUp = getOperationContext()->isBottomUpReenumerateContext();
        m_ranOn.push_back(str(device.toString()) + (bottomUp ? "^" : ""));
        return m_body ? m_body(device) : Core::OperationReturn();
    }

    Common::string m_name;
    EnType m_type;
};

// Collects what the library logs at these levels while it lives.
class LogCapture {
  public:
    explicit LogCapture(int mask) : m_stream(new Common::OutputStreamToBuffer) {
        Common::DebugLogger::RegisterDebugOutputStream(mask, m_stream);
    }
    ~LogCapture() { Common::DebugLogger::UnRegisterAllDebugOutputStreams(); }

    // Without timestamps.
    std::vector<std::string> lines() const;
    bool contains(std::string const& part) const {
        for (std::string const& line : lines()) {
            if (line.find(part) != std::string::npos) return true;
        }
        return false;
    }

  private:
    Common::shared_ptr<Common::OutputStreamToBuffer> m_stream;
};

inline std::vector<std::string> LogCapture::lines() const {
    std::vector<std::string> result;
    std::string const all = str(m_stream->buffer());
    for (std::size_t start = 0, end; (end = all.find('\n', start)) != std::string::npos; start = end + 1) {
        std::string line = all.substr(start, end - start);
        std::size_t const text = line.find("] ");
        result.push_back(text == std::string::npos ? line : line.substr(text + 2));
    }
    return result;
}

// A root with empty registries before and after each test.
class Fixture : public testing::Test {
  protected:
    Fixture() : root(Root::create()) { forgetOperations(); }
    ~Fixture() override {
        forgetOperations();
        Core::DeviceFactory::ReleaseRoot(root);
        Interface::TOLKMod::ForgetModule();
    }

    static void forgetOperations() {
        Root::sm_operations.clear();
        Node::sm_operations.clear();
        Leaf::sm_operations.clear();
    }

    // Activates an operation for a kind.
    template <class Kind>
    static ScriptedOperation& activate(char const* name, Core::DeviceOperation::EnType type,
                                       unsigned modifier = Core::DeviceOperation::eUsual) {
        ScriptedOperation* const operation = new ScriptedOperation(name, type, modifier);
        Kind::sm_operations.push_back(OperationPtr(operation));
        return *operation;
    }

    static DevicePtr add(DevicePtr const& parent, char const* id, char const* type = "TYPE_NODE") {
        DevicePtr const child(new Node(id, type));
        EXPECT_TRUE(parent->receive(child));
        return child;
    }

    static std::vector<std::string> childrenOf(DevicePtr const& device) {
        std::vector<std::string> ids;
        for (auto child = device->beginChild(); child != device->endChild(); ++child) {
            ids.push_back(str((*child)->toString()));
        }
        return ids;
    }

    Core::Device::ResultList reenumerate() { return root->Reenumerate(Core::Device::ReenumeratePredicate()); }

    DevicePtr root;
};

typedef std::vector<std::string> Texts;

// No associations; write operations are left to the first request for them.
struct DeferPredicate : Core::Device::ReenumeratePredicate {
    bool canPerformAssociateFor(DevicePtr, Common::string const&) const override { return false; }
    bool deferWriteOperationRegistration() const override { return true; }
};

}  // namespace TestTree
