#pragma once

#include <list>
#include <string>
#include <utility>
#include <vector>

class C_Found;

/// A whole XML file as a tree of elements in memory, and path queries on it (the path language is in
/// src/XPath.h). The tree owns its elements; every C_Element* handed out stays valid until Clear() or the end
/// of the C_XML. Single-threaded use only.
class C_XML {
  public:
    /// One element. Owns its children by value; knows its parent by a plain pointer, so it can't be copied.
    class C_Element {
      public:
        C_Element() = default;
        ~C_Element();
        C_Element(C_Element const&) = delete;
        C_Element& operator=(C_Element const&) = delete;

        std::string const& GetTag() const { return tag; }
        /// All character data of the element itself, its pieces joined in the order of arrival.
        std::string const& GetData() const { return data; }
        /// Null at the root.
        C_Element* GetParent() const { return parent; }
        bool HasCdata() const { return hasCdata; }
        void SetHasCdata(bool value) { hasCdata = value; }

        /// Appends a new element and returns it.
        C_Element* AddChild(std::string const& childTag);
        void AddAttr(std::string const& name, std::string const& value);
        void AppendData(std::string const& text) { data += text; }
        void ClearData() { data.clear(); }
        /// Empties the element, its subtree included, and forgets the parent.
        void Clear();

        /// Constant iterators over the children (C_Element) and the attributes (pair of name and value), both
        /// in document order.
        auto ChildrenBegin() const { return children.begin(); }
        auto ChildrenEnd() const { return children.end(); }
        auto AttrBegin() const { return attributes.begin(); }
        auto AttrEnd() const { return attributes.end(); }

      private:
        friend class C_XML;
        void DropChildren() noexcept;

        std::string tag;
        std::vector<std::pair<std::string, std::string>> attributes;
        std::string data;
        bool hasCdata = false;
        C_Element* parent = nullptr;
        std::list<C_Element> children;
        // Saves GetFollowingSibling a search of the parent's list: a walk over n children stays linear.
        C_Element* nextSibling = nullptr;
    };

    C_XML() = default;
    virtual ~C_XML() = default;
    C_XML(C_XML const&) = delete;
    C_XML& operator=(C_XML const&) = delete;

    /// Whether white space between elements is dropped. Set it before Parse.
    virtual void TrimWhiteSpace(bool trim);
    /// Reads the file at `path` into the tree, behind what the tree holds already. Always returns true: a
    /// missing, unreadable or malformed file leaves an empty or partial tree, and the caller judges the
    /// document by whether its queries succeed.
    virtual bool Parse(std::string const& path);
    virtual void Clear();

    /// The holder of the document: an element with an empty tag whose child is the document element.
    C_Element* GetRoot() { return &root; }
    /// Each of these is null when `element` is null or there is no such relative.
    C_Element* GetParent(C_Element const* element) const;
    C_Element* GetFirstChild(C_Element* element) const;
    C_Element* GetFollowingSibling(C_Element const* element) const;
    /// The first child with this tag.
    C_Element* FindChild(C_Element* element, std::string const& tag) const;

    /// True when the attribute exists; its value is stored if `value` isn't null.
    bool FindAttr(C_Element const* element, std::string const& name, std::string* value) const;
    bool FindAttr(C_Element const* element, char const* name, std::string* value) const;
    /// True if `element` isn't null; its data is stored if `out` isn't null.
    bool FindFirstText(C_Element const* element, std::string* out);

    /// The data of the first element on the path; true if there is one. `out` may be null.
    bool FindFirstText(std::string const& path, std::string* out);
    /// The first element on the path, or null.
    C_Element* FindFirstElement(std::string const& path);
    /// True if an element is on the path, even if it lacks the attribute: `out` then stays as it was.
    bool FindFirstAttrValue(std::string const& path, std::string const& attrName, std::string* out);
    /// Writes a pair of strings to `output` for every element on the path: the attribute's value (empty when
    /// it is absent) and the element's data. Returns the number of elements, 0 when the path failed.
    template <class OutputIterator>
    int FindAttrText(std::string const& path, std::string const& attrName, OutputIterator output);

    /// No character other than blank, carriage return, line feed and tab.
    static bool IsWhiteSpace(std::string const& text);

    /// The parser's callbacks; `user` is the UserData_t of the running Parse. Nothing is thrown out of them:
    /// what goes wrong is filed in the UserData_t.
    static void startElement(void* user, char const* name, char const** attributes);
    static void endElement(void* user, char const* name);
    static void characterData(void* user, char const* text, int length);
    static void startCdataSection(void* user);
    static void endCdataSection(void* user);

  private:
    /// Runs `found` over the elements on the path; false when the path can't be compiled.
    bool Search(std::string const& path, C_Found& found);

    C_Element root;
    bool trimWhiteSpace = false;
};

/// What a query calls on each element that it finds: true goes on searching, false ends the search.
class C_Found {
  public:
    virtual ~C_Found() = default;
    virtual bool operator()(C_XML* xml, C_XML::C_Element* element) = 0;
};

template <class OutputIterator>
int C_XML::FindAttrText(std::string const& path, std::string const& attrName, OutputIterator output) {
    class C_FoundAttrText : public C_Found {
      public:
        C_FoundAttrText(std::string const& name, OutputIterator out) : m_name(name), m_output(out) {}
        bool operator()(C_XML* xml, C_XML::C_Element* element) override {
            std::string value;
            xml->FindAttr(element, m_name, &value);
            *m_output = std::pair<std::string, std::string>(value, element->GetData());
            ++m_output;
            ++m_count;
            return true;
        }
        int Count() const { return m_count; }

      private:
        std::string m_name;
        OutputIterator m_output;
        int m_count = 0;
    };

    C_FoundAttrText found(attrName, output);
    return Search(path, found) ? found.Count() : 0;
}
