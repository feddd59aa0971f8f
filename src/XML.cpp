#include "src/XML.h"

#include <algorithm>

#include "src/XPath.h"
#include "src/XPathFound.h"

namespace {

struct NameIs {
    std::string name;
    bool operator()(std::pair<std::string, std::string> const& attribute) const {
        return attribute.first == name;
    }
};

struct TagIs {
    std::string tag;
    bool operator()(C_XML::C_Element const& element) const { return element.GetTag() == tag; }
};

}  // namespace

C_XML::C_Element::~C_Element() {
    DropChildren();
}

// A subtree is taken down level by level, not by recursion: the depth of a document is limited by its size
// alone, the depth of the stack is not.
void C_XML::C_Element::DropChildren() noexcept {
    while (!children.empty()) {
        children.splice(children.end(), children.front().children);
        children.pop_front();
    }
}

C_XML::C_Element* C_XML::C_Element::AddChild(std::string const& childTag) {
    C_Element* previous = children.empty() ? nullptr : &children.back();
    std::string newTag(childTag);
    C_Element& child = children.emplace_back();
    child.tag.swap(newTag);
    child.parent = this;
    if (previous) previous->nextSibling = &child;
    return &child;
}

void C_XML::C_Element::AddAttr(std::string const& name, std::string const& value) {
    attributes.emplace_back(name, value);
}

void C_XML::C_Element::Clear() {
    DropChildren();
    tag.clear();
    attributes.clear();
    data.clear();
    hasCdata = false;
    parent = nullptr;
}

void C_XML::TrimWhiteSpace(bool trim) {
    trimWhiteSpace = trim;
}

void C_XML::Clear() {
    root.Clear();
}

C_XML::C_Element* C_XML::GetParent(C_Element const* element) const {
    return element ? element->parent : nullptr;
}

C_XML::C_Element* C_XML::GetFirstChild(C_Element* element) const {
    return element && !element->children.empty() ? &element->children.front() : nullptr;
}

C_XML::C_Element* C_XML::GetFollowingSibling(C_Element const* element) const {
    return element ? element->nextSibling : nullptr;
}

C_XML::C_Element* C_XML::FindChild(C_Element* element, std::string const& tag) const {
    if (!element) return nullptr;
    auto const child = std::find_if(element->children.begin(), element->children.end(), TagIs{tag});
    return child == element->children.end() ? nullptr : &*child;
}

bool C_XML::FindAttr(C_Element const* element, std::string const& name, std::string* value) const {
    if (!element) return false;
    auto const attribute = std::find_if(element->AttrBegin(), element->AttrEnd(), NameIs{name});
    if (attribute == element->AttrEnd()) return false;
    if (value) *value = attribute->second;
    return true;
}

bool C_XML::FindAttr(C_Element const* element, char const* name, std::string* value) const {
    return name && FindAttr(element, std::string(name), value);
}

bool C_XML::FindFirstText(C_Element const* element, std::string* out) {
    if (!element) return false;
    if (out) *out = element->GetData();
    return true;
}

bool C_XML::Search(std::string const& path, C_Found& found) {
    C_XPath xpath;
    if (!xpath.SetPath(path)) return false;
    xpath.FindElement(this, found);
    return true;
}

bool C_XML::FindFirstText(std::string const& path, std::string* out) {
    C_FoundFirst found(out);
    return Search(path, found) && found.IsFound();
}

C_XML::C_Element* C_XML::FindFirstElement(std::string const& path) {
    C_FoundNode found;
    return Search(path, found) ? found.GetPos() : nullptr;
}

bool C_XML::FindFirstAttrValue(std::string const& path, std::string const& attrName, std::string* out) {
    C_FoundFirstAttr found(attrName, out);
    return Search(path, found) && found.IsFound();
}

bool C_XML::IsWhiteSpace(std::string const& text) {
    return text.find_first_not_of(" \r\n\t") == std::string::npos;
}
