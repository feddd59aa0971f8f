#include "command/structure_proxy.h"

#include "command/type_proxy.h"
#include "common/conversion.h"
#include "common/debug_logger.h"

StructureProxy::StructureProxy(char const* structure, unsigned char* buffer)
    : m_structure(findStructure(structure)), m_buffer(buffer) {}

unsigned int StructureProxy::getStructureSize() const {
    return m_structure != nullptr ? m_structure->size : 0;
}

Common::list<Common::string> StructureProxy::memberNameList() const {
    Common::list<Common::string> names;
    if (m_structure == nullptr) return names;
    for (StructureMember const& member : m_structure->members)
        names.push_back(member.name);
    return names;
}

bool StructureProxy::MemberInfo(char const* member, Common::string& type, unsigned int& offset,
                                unsigned int& size, bool& isArray) const {
    StructureMember const* const found = m_structure != nullptr ? findMember(*m_structure, member) : nullptr;
    if (found == nullptr) return false;
    type = found->type;
    offset = found->offset;
    size = found->size;
    isArray = found->isArray;
    return true;
}

StructureMember const* StructureProxy::accessible(char const* member) const {
    if (m_structure == nullptr || m_buffer == nullptr) return nullptr;
    StructureMember const* const found = findMember(*m_structure, member);
    if (found == nullptr) return nullptr;
    unsigned long long const end = 0ULL + found->offset + found->size;
    if (end > m_structure->size) {
        Common::DebugLogger::LogCommand("Member \"%s\" refused: it ends at %llu in a record of %u bytes",
                                        found->name.c_str(), end, m_structure->size);
        return nullptr;
    }
    return found;
}

Common::string StructureProxy::read(char const* member) const {
    StructureMember const* const found = accessible(member);
    if (found == nullptr) return Common::string();
    unsigned char const* const memory = m_buffer + found->offset;
    TypeProxy const* const proxy = TypeProxyFactory::getTypeProxy(found->type);
    return proxy != nullptr ? proxy->Read(memory, found->size)
                            : Conversion::arrayToString(memory, found->size, " ");
}

bool StructureProxy::Write(char const* member, Common::string const& text) {
    StructureMember const* const found = accessible(member);
    if (found == nullptr) return false;
    TypeProxy const* const proxy = TypeProxyFactory::getTypeProxy(found->type);
    return proxy != nullptr && proxy->Write(m_buffer + found->offset, found->size, text);
}
