#pragma once

#include <expat.h>

// The parser functions under the names that the XML reader calls them by. The handle is opaque (void*), so
// that expat.h is needed by the reader's own sources only.

inline void* XML_ParserCreate_SC(char const* encoding) {
    return XML_ParserCreate(encoding);
}

inline void XML_ParserFree_SC(void* parser) {
    XML_ParserFree(static_cast<XML_Parser>(parser));
}

inline void XML_SetUserData_SC(void* parser, void* user) {
    XML_SetUserData(static_cast<XML_Parser>(parser), user);
}

inline void XML_SetElementHandler_SC(void* parser, XML_StartElementHandler start, XML_EndElementHandler end) {
    XML_SetElementHandler(static_cast<XML_Parser>(parser), start, end);
}

inline void XML_SetCharacterDataHandler_SC(void* parser, XML_CharacterDataHandler handler) {
    XML_SetCharacterDataHandler(static_cast<XML_Parser>(parser), handler);
}

inline void XML_SetCdataSectionHandler_SC(void* parser, XML_StartCdataSectionHandler start,
                                          XML_EndCdataSectionHandler end) {
    XML_SetCdataSectionHandler(static_cast<XML_Parser>(parser), start, end);
}

inline void* XML_GetBuffer_SC(void* parser, int length) {
    return XML_GetBuffer(static_cast<XML_Parser>(parser), length);
}

inline int XML_ParseBuffer_SC(void* parser, int length, int isFinal) {
    return XML_ParseBuffer(static_cast<XML_Parser>(parser), length, isFinal);
}
