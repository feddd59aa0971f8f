#include "src/XMLParser.h"

#include <exception>
#include <fstream>

#include "src/CLI.h"
#include "src/ExpatSc.h"
#include "src/inputFile.h"

namespace {

constexpr int ChunkSize = 4096;

/// Largest document that is read. Catalogues have a few kilobytes; the parser's time grows with the square of
/// a single long token.
constexpr int SizeLimit = 8 << 20;

void fileError(UserData_t& state, int kind, char const* text) noexcept {
    state.errorKind = kind;
    try {
        state.errorText = text;
    } catch (...) {
        state.errorText.clear();  // no memory for the text: the kind alone tells
    }
}

// The parser is C code: an exception must not pass through it.
template <class Work>
void guarded(void* user, char const* unknownText, Work work) noexcept {
    auto* const state = static_cast<UserData_t*>(user);
    if (!state || !state->current) return;
    try {
        work(*state);
    } catch (std::exception const& error) {
        fileError(*state, 2, error.what());
    } catch (...) {
        fileError(*state, 3, unknownText);
    }
}

void clearBlankData(C_XML::C_Element& element) {
    if (!element.HasCdata() && C_XML::IsWhiteSpace(element.GetData())) element.ClearData();
}

}  // namespace

C_XmlParser::C_XmlParser() : m_parser(XML_ParserCreate_SC(nullptr)) {}

C_XmlParser::~C_XmlParser() {
    XML_ParserFree_SC(m_parser);
}

bool C_XML::Parse(std::string const& path) {
    UserData_t state;
    state.document = this;
    state.current = &root;

    C_XmlParser parser;
    if (!static_cast<void*>(parser)) return true;
    XML_SetUserData_SC(parser, &state);
    XML_SetElementHandler_SC(parser, startElement, endElement);
    XML_SetCharacterDataHandler_SC(parser, characterData);
    XML_SetCdataSectionHandler_SC(parser, startCdataSection, endCdataSection);

    // A file that can't be opened or read gives 0 bytes, and so the final chunk. A parser that has failed
    // refuses every later chunk by itself; the file is read on all the same.
    std::ifstream file;
    if (!refuseWaitingFile(path)) file.open(path, std::ios::in | std::ios::binary);
    bool finalChunk = false;
    int total = 0;
    while (!finalChunk) {
        void* const buffer = XML_GetBuffer_SC(parser, ChunkSize);
        if (!buffer) break;
        file.read(static_cast<char*>(buffer), ChunkSize);
        auto length = static_cast<int>(file.gcount());
        total += length;
        if (total > SizeLimit) {
            cli.logVerbose("%s: more than %d bytes found, the rest is refused\n", path.c_str(), SizeLimit);
            length = 0;
        }
        finalChunk = length == 0;
        XML_ParseBuffer_SC(parser, length, finalChunk);
    }
    return true;
}

void C_XML::startElement(void* user, char const* name, char const** attributes) {
    guarded(user, "C_XML::startElement: Unknown exception.", [&](UserData_t& state) {
        state.afterEnd = false;
        if (state.document->trimWhiteSpace) clearBlankData(*state.current);
        C_Element* const element = state.current->AddChild(name);
        for (char const** pair = attributes; pair && pair[0] && pair[1]; pair += 2) {
            element->AddAttr(pair[0], pair[1]);
        }
        state.current = element;
    });
}

// The name isn't compared with the current tag: the parser has checked the nesting.
void C_XML::endElement(void* user, char const*) {
    guarded(user, "C_XML::endElement: Unknown exception.", [](UserData_t& state) {
        if (state.document->trimWhiteSpace && state.afterEnd) clearBlankData(*state.current);
        state.afterEnd = true;
        state.current = state.current->GetParent();
    });
}

// Text doesn't reset afterEnd. The parser delivers a line end as a piece of its own, so in text behind a
// closed child the line ends between words are dropped too.
void C_XML::characterData(void* user, char const* text, int length) {
    if (!text || length <= 0) return;
    guarded(user, "C_XML::characterData: Unknown exception.", [&](UserData_t& state) {
        std::string const piece(text, static_cast<std::size_t>(length));
        if (state.inCdata) state.current->SetHasCdata(true);
        bool const dropBlanks = state.document->trimWhiteSpace && state.afterEnd && !state.inCdata;
        if (dropBlanks && IsWhiteSpace(piece)) return;
        state.current->AppendData(piece);
    });
}

void C_XML::startCdataSection(void* user) {
    guarded(user, "C_XML::startCdataSection: Unknown exception.", [](UserData_t& state) {
        if (state.document->trimWhiteSpace && IsWhiteSpace(state.current->GetData())) {
            state.current->ClearData();
        }
        state.inCdata = true;
    });
}

void C_XML::endCdataSection(void* user) {
    auto* const state = static_cast<UserData_t*>(user);
    if (!state) return;
    state->inCdata = false;
    state->afterEnd = true;
}
