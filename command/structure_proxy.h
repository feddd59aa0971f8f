#pragma once

#include "command/catalogue.h"
#include "common/list.h"
#include "common/string.h"

// Access to a buffer by the names of a catalogued record, for diagnostics. An unknown structure has size 0
// and no members.
class StructureProxy {
  public:
    // `buffer`, borrowed, has at least the structure's size; null reads as nothing.
    StructureProxy(char const* structure, unsigned char* buffer);

    unsigned int getStructureSize() const;
    // In the order of the record.
    Common::list<Common::string> memberNameList() const;
    // False, with all outputs untouched, when there is no such member.
    bool MemberInfo(char const* member, Common::string& type, unsigned int& offset, unsigned int& size,
                    bool& isArray) const;
    // The member's value by its type's proxy; without one its bytes as two-digit hexadecimal numbers with a
    // blank between them. Empty when there is no such member.
    Common::string read(char const* member) const;
    // False, with the buffer untouched, when there is no such member, its type has no proxy or the text
    // doesn't fit it.
    bool Write(char const* member, Common::string const& text);

  private:
    // The member, if the buffer has it; one that ends behind the structure is refused with a log line.
    StructureMember const* accessible(char const* member) const;

    Structure const* m_structure;
    unsigned char* m_buffer;
};
