#pragma once

#include <string>
#include <utility>

#include "src/XML.h"

/// Keeps the first match.
class C_FoundNode : public C_Found {
  public:
    bool operator()(C_XML*, C_XML::C_Element* element) override {
        m_element = element;
        return false;
    }
    /// Null as long as nothing was found.
    C_XML::C_Element* GetPos() const { return m_element; }

  private:
    C_XML::C_Element* m_element = nullptr;
};

/// Stores the data of the first match in `text`, which may be null.
class C_FoundFirst : public C_Found {
  public:
    explicit C_FoundFirst(std::string* text) : m_text(text) {}
    bool operator()(C_XML*, C_XML::C_Element* element) override {
        if (m_text) *m_text = element->GetData();
        m_found = true;
        return false;
    }
    bool IsFound() const { return m_found; }

  private:
    std::string* m_text;
    bool m_found = false;
};

/// Stores an attribute of the first match in `value`, which may be null and stays as it was when the match
/// lacks the attribute. That is a match all the same.
class C_FoundFirstAttr : public C_Found {
  public:
    C_FoundFirstAttr(std::string name, std::string* value) : m_name(std::move(name)), m_value(value) {}
    bool operator()(C_XML* xml, C_XML::C_Element* element) override {
        xml->FindAttr(element, m_name, m_value);
        m_found = true;
        return false;
    }
    bool IsFound() const { return m_found; }

  private:
    std::string m_name;
    std::string* m_value;
    bool m_found = false;
};

/// Tells whether a predicate held.
class C_FoundPred : public C_Found {
  public:
    bool operator()(C_XML*, C_XML::C_Element*) override {
        m_match = true;
        return false;
    }
    bool IsMatch() const { return m_match; }

  private:
    bool m_match = false;
};
