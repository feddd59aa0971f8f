#pragma once

#include <vector>

#include "common/string.h"

// The run-time catalogue of wire records: which members a record has and where. For diagnostics that go by
// name (command/structure_proxy.h); commands use the structures themselves. Filled by
// Interface::CommandMod::InitializeModule; no lock.

// Longest name of a record or member. Names are compared over so many characters, and kept cut to them.
inline constexpr unsigned int MAX_CATALOGUE_NAME = 64;

struct StructureMember {
    Common::string name;
    Common::string type;  // without the prefix SA_ and without the array mark
    unsigned int offset = 0;
    unsigned int size = 0;  // of the whole array for an array
    bool isArray = false;
};

struct Structure {
    Common::string name;
    unsigned int size = 0;
    std::vector<StructureMember> members;  // in order of addition
};

// A structure that is there already stays as it is.
void AddStructure(char const* name);
// `type`: BYTE, WORD, DWORD, QWORD, RESERVED (each also with SA_ in front), char or another structure's
// name, with " []" behind it for an array. A second member of the same name is refused, and so is one of an
// unknown structure, both with a log line.
void AddStructureMember(char const* structure, char const* member, unsigned int const& offset,
                        unsigned int const& size, char const* type);
// Refused with a log line for an unknown structure.
void SetStructureSize(char const* structure, unsigned int const& size);

// Null when there is none. Valid until the next structure or member is added.
Structure const* findStructure(char const* name);
StructureMember const* findMember(Structure const& structure, char const* name);

std::vector<Structure> const& catalogue();

// For tests only.
void ClearCatalogue();
