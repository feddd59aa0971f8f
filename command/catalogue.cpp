#include "command/catalogue.h"

#include <cstring>
#include <string_view>

#include "common/debug_logger.h"

namespace {

std::vector<Structure>& structures() {
    static std::vector<Structure> s_structures;
    return s_structures;
}

std::string_view cutName(char const* name) {
    return name != nullptr ? std::string_view(name, strnlen(name, MAX_CATALOGUE_NAME)) : std::string_view();
}

Common::string toText(std::string_view text) {
    return Common::string(text.data(), static_cast<unsigned int>(text.size()));
}

template <class Item>
Item* findByName(std::vector<Item>& items, char const* name) {
    std::string_view const wanted = cutName(name);
    for (Item& item : items) {
        if (wanted == std::string_view(item.name.c_str(), item.name.size())) return &item;
    }
    return nullptr;
}

Structure* findOrRefuse(char const* structure, char const* what) {
    Structure* const found = findByName(structures(), structure);
    if (found == nullptr) {
        Common::DebugLogger::LogCommand("Record catalogue: %s refused, there is no record \"%s\"", what,
                                        toText(cutName(structure)).c_str());
    }
    return found;
}

constexpr std::string_view TYPE_PREFIX = "SA_";
constexpr std::string_view ARRAY_MARK = " []";

}  // namespace

void AddStructure(char const* name) {
    if (findByName(structures(), name) != nullptr) return;
    Structure structure;
    structure.name = toText(cutName(name));
    structures().push_back(structure);
}

void AddStructureMember(char const* structure, char const* member, unsigned int const& offset,
                        unsigned int const& size, char const* type) {
    Structure* const owner = findOrRefuse(structure, "a member");
    if (owner == nullptr) return;
    if (findByName(owner->members, member) != nullptr) {
        Common::DebugLogger::LogCommand("Record catalogue: second member \"%s\" of \"%s\" refused",
                                        toText(cutName(member)).c_str(), owner->name.c_str());
        return;
    }
    std::string_view typeName = type != nullptr ? std::string_view(type) : std::string_view();
    StructureMember added;
    added.name = toText(cutName(member));
    added.offset = offset;
    added.size = size;
    added.isArray = typeName.ends_with(ARRAY_MARK);
    if (added.isArray) typeName.remove_suffix(ARRAY_MARK.size());
    if (typeName.starts_with(TYPE_PREFIX)) typeName.remove_prefix(TYPE_PREFIX.size());
    added.type = toText(typeName);
    owner->members.push_back(added);
}

void SetStructureSize(char const* structure, unsigned int const& size) {
    Structure* const found = findOrRefuse(structure, "a size");
    if (found != nullptr) found->size = size;
}

Structure const* findStructure(char const* name) {
    return findByName(structures(), name);
}

StructureMember const* findMember(Structure const& structure, char const* name) {
    return findByName(const_cast<Structure&>(structure).members, name);
}

std::vector<Structure> const& catalogue() {
    return structures();
}

void ClearCatalogue() {
    structures().clear();
}
