#pragma once

#include <string>

#include "src/XML.h"

/// Owner of one Expat parser. The handle is null if the parser couldn't be made.
class C_XmlParser {
  public:
    C_XmlParser();
    ~C_XmlParser();
    C_XmlParser(C_XmlParser const&) = delete;
    C_XmlParser& operator=(C_XmlParser const&) = delete;

    operator void*() { return m_parser; }

  private:
    void* m_parser;
};

/// The state that the parser hands to each callback of C_XML.
struct UserData_t {
    C_XML* document = nullptr;
    C_XML::C_Element* current = nullptr;
    /// The last event closed an element or a CDATA section.
    bool afterEnd = false;
    bool inCdata = false;
    /// 0 none, 2 a std::exception, 3 anything else. Of several errors the last is kept; Parse looks at none.
    int errorKind = 0;
    std::string errorText;
};
