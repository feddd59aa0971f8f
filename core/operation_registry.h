#pragma once

#include "common/list.h"
#include "common/shared_ptr.h"
#include "common/string.h"
#include "core/device_operation.h"

// Operations come into being in two stages. Stage one, at module start, declares what could exist: device
// types, pairs of type and operation name, and one creator per operation name. Stage two activates the pairs
// that this program uses; an operation that was never activated doesn't exist for its devices. The order of
// activation is the order in which reenumeration runs the operations.

namespace Core {

typedef Common::list<Common::shared_ptr<DeviceOperation>> OperationList;

// The activated operations of a device class. A device is asked for its registry with a cross-cast.
class OperationRegistry {
  public:
    virtual OperationList::const_iterator beginRegisteredOperation() const = 0;
    virtual OperationList::const_iterator endRegisteredOperation() const = 0;
    virtual void RegisterOperation(Common::shared_ptr<DeviceOperation> operation) = 0;
    virtual ~OperationRegistry() = default;
};

// The registry of device class T, a base of T: one list for the class, one shared operation object for all
// of its devices.
template <class T>
class DeviceOperationRegistry : public OperationRegistry {
  public:
    OperationList::const_iterator beginRegisteredOperation() const override { return sm_operations.begin(); }
    OperationList::const_iterator endRegisteredOperation() const override { return sm_operations.end(); }
    void RegisterOperation(Common::shared_ptr<DeviceOperation> operation) override {
        sm_operations.push_back(operation);
    }

    static inline OperationList sm_operations;
};

class DeviceOperationCreatorBase {
  public:
    virtual ~DeviceOperationCreatorBase() = default;
    virtual Common::shared_ptr<DeviceOperation> createOperationPtr() = 0;
};

// Operations are also made only to learn their name, so the constructor of T must do no work.
template <class T>
class DeviceOperationCreator : public DeviceOperationCreatorBase {
  public:
    Common::shared_ptr<DeviceOperation> createOperationPtr() override {
        return Common::shared_ptr<DeviceOperation>(new T);
    }
};

// The tables behind the free functions below. Sizes are design limits of the program: what doesn't fit, and
// any name too long for its field, is refused with a line in the log and leaves the tables as they were.
class OperationTables {
  public:
    static constexpr unsigned s_typeRows = 30;
    static constexpr unsigned s_dependencyRows = 1000;
    static constexpr unsigned s_creatorRows = 1000;
    static constexpr unsigned s_nameSize = 100;  // bytes, the terminator included

    OperationTables() = default;
    ~OperationTables();
    OperationTables(OperationTables const&) = delete;
    OperationTables& operator=(OperationTables const&) = delete;

    void RegisterSchema(Common::string const& typeName, OperationList& operations);
    bool RegisterSchemaOperationDependency(Common::string const& typeName,
                                           Common::string const& operationName);
    void RegisterOperation(Common::string const& typeName, DeviceOperationCreatorBase* creator);
    void Activate(Common::string const& typeName, Common::string const& operationName);

    unsigned typeCount() const { return m_nextFreeType; }
    unsigned dependencyCount() const { return m_nextFreeDependency; }
    unsigned creatorCount() const { return m_creatorCount; }

  private:
    struct TypeRow {
        char typeName[s_nameSize];
        OperationList* operations;
    };
    struct DependencyRow {
        char typeName[s_nameSize];
        char operationName[s_nameSize];
    };

    TypeRow const* findType(Common::string const& typeName) const;
    bool hasDependency(Common::string const& typeName, Common::string const& operationName) const;
    Common::shared_ptr<DeviceOperation> createOperation(Common::string const& operationName) const;

    TypeRow m_typeRegistry[s_typeRows] = {};
    DependencyRow m_operationDependencies[s_dependencyRows] = {};
    DeviceOperationCreatorBase* m_creatorBaseList[s_creatorRows] = {};
    unsigned m_nextFreeType = 0;
    unsigned m_nextFreeDependency = 0;
    unsigned m_creatorCount = 0;
};

// Stage one, on the tables of the process.

// Enters a device type with its class's sm_operations, which must live as long as the process. No effect
// when the type is known.
void RegisterSchema(Common::string const& typeName, OperationList& operations);

// Enters the pair; true when it was new.
bool RegisterSchemaOperationDependency(Common::string const& typeName, Common::string const& operationName);

// Declares that the creator's operation works on this type. Takes ownership of `creator`: it is kept for the
// life of the process when it is the first for its operation's name, and deleted otherwise.
void RegisterOperation(Common::string const& typeName, DeviceOperationCreatorBase* creator);

// Stage two is Core::Device::RegisterOperation(typeName, operationName).
void ActivateOperation(Common::string const& typeName, Common::string const& operationName);

}  // namespace Core
