#include "core/operation_registry.h"

#include <cstring>

#include "common/debug_logger.h"

namespace Core {

namespace {

// Whether a name fits a row unchanged. One that was cut, at the field's end or at a zero byte, could equal
// another name.
bool fitsRow(Common::string const& name, char const* what) {
    unsigned const length = static_cast<unsigned>(std::strlen(name.c_str()));
    if (name.size() < OperationTables::s_nameSize && length == name.size()) return true;
    Common::DebugLogger::LogCommand("%s %s refused: length %u, expected at most %u without a zero byte", what,
                                    name.c_str(), name.size(), OperationTables::s_nameSize - 1);
    return false;
}

bool hasFreeRow(unsigned used, unsigned rows, char const* table, Common::string const& refused) {
    if (used < rows) return true;
    Common::DebugLogger::LogCommand("%s refused: %s has %u rows in use, expected fewer than %u",
                                    refused.c_str(), table, used, rows);
    return false;
}

OperationTables& theTables() {
    static OperationTables tables;
    return tables;
}

}  // namespace

OperationTables::~OperationTables() {
    for (unsigned i = 0; i < m_creatorCount; ++i)
        delete m_creatorBaseList[i];
}

void OperationTables::RegisterSchema(Common::string const& typeName, OperationList& operations) {
    if (findType(typeName) != nullptr || !fitsRow(typeName, "Device type")) return;
    if (!hasFreeRow(m_nextFreeType, s_typeRows, "the type registry", typeName)) return;

    TypeRow& row = m_typeRegistry[m_nextFreeType++];
    std::memcpy(row.typeName, typeName.c_str(), typeName.size() + 1);
    row.operations = &operations;
}

bool OperationTables::RegisterSchemaOperationDependency(Common::string const& typeName,
                                                        Common::string const& operationName) {
    if (hasDependency(typeName, operationName)) return false;
    if (!fitsRow(typeName, "Device type") || !fitsRow(operationName, "Operation")) return false;
    if (!hasFreeRow(m_nextFreeDependency, s_dependencyRows, "the table of types and operations",
                    operationName)) {
        return false;
    }
    DependencyRow& row = m_operationDependencies[m_nextFreeDependency++];
    std::memcpy(row.typeName, typeName.c_str(), typeName.size() + 1);
    std::memcpy(row.operationName, operationName.c_str(), operationName.size() + 1);
    return true;
}

void OperationTables::RegisterOperation(Common::string const& typeName, DeviceOperationCreatorBase* creator) {
    if (creator == nullptr) {
        Common::DebugLogger::LogCommand("Operation of %s refused: null, expected a creator",
                                        typeName.c_str());
        return;
    }
    bool kept = false;
    if (Common::shared_ptr<DeviceOperation> const probe = creator->createOperationPtr()) {
        Common::string const name = probe->name();
        // The pair may have been declared before its operation.
        RegisterSchemaOperationDependency(typeName, name);
        if (hasDependency(typeName, name) && !createOperation(name) &&
            hasFreeRow(m_creatorCount, s_creatorRows, "the list of creators", name)) {
            m_creatorBaseList[m_creatorCount++] = creator;
            kept = true;
        }
    } else {
        Common::DebugLogger::LogCommand("Operation of %s refused: its creator made none", typeName.c_str());
    }
    if (!kept) delete creator;
}

void OperationTables::Activate(Common::string const& typeName, Common::string const& operationName) {
    // A program may ask for more than the modules declare; that is no error.
    TypeRow const* const type = findType(typeName);
    if (type == nullptr || !hasDependency(typeName, operationName)) return;
    for (Common::shared_ptr<DeviceOperation> const& active : *type->operations) {
        if (active->name() == operationName) return;
    }
    if (Common::shared_ptr<DeviceOperation> const operation = createOperation(operationName)) {
        type->operations->push_back(operation);
    }
}

OperationTables::TypeRow const* OperationTables::findType(Common::string const& typeName) const {
    for (unsigned i = 0; i < m_nextFreeType; ++i) {
        if (typeName == m_typeRegistry[i].typeName) return &m_typeRegistry[i];
    }
    return nullptr;
}

bool OperationTables::hasDependency(Common::string const& typeName,
                                    Common::string const& operationName) const {
    for (unsigned i = 0; i < m_nextFreeDependency; ++i) {
        DependencyRow const& row = m_operationDependencies[i];
        if (typeName == row.typeName && operationName == row.operationName) return true;
    }
    return false;
}

// By trial: creators don't know the name of what they make. Null when there is no creator for it.
Common::shared_ptr<DeviceOperation> OperationTables::createOperation(
    Common::string const& operationName) const {
    for (unsigned i = 0; i < m_creatorCount; ++i) {
        Common::shared_ptr<DeviceOperation> const operation = m_creatorBaseList[i]->createOperationPtr();
        if (operation && operation->name() == operationName) return operation;
    }
    return Common::shared_ptr<DeviceOperation>();
}

void RegisterSchema(Common::string const& typeName, OperationList& operations) {
    theTables().RegisterSchema(typeName, operations);
}

bool RegisterSchemaOperationDependency(Common::string const& typeName, Common::string const& operationName) {
    return theTables().RegisterSchemaOperationDependency(typeName, operationName);
}

void RegisterOperation(Common::string const& typeName, DeviceOperationCreatorBase* creator) {
    theTables().RegisterOperation(typeName, creator);
}

void ActivateOperation(Common::string const& typeName, Common::string const& operationName) {
    theTables().Activate(typeName, operationName);
}

}  // namespace Core
