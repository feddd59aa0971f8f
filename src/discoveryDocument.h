#pragma once

#include <string>

#include "src/runState.h"

/// The discovery document: it exists only if -d named a file, and is written in the first pass. Values are
/// written as they are, unescaped.

void writeDocumentHead();
void writeDocumentTail();

/// One `device` element.
struct DocumentDevice {
    std::string deviceId;
    std::string productId;
    std::string kind;  ///< "Controller ROM" or "SEP Enclosure ROM"
    float catalogueVersion;
    std::string activeVersion;  ///< as it is to be shown
    updateState state;          ///< decides the action; nothing is written for notApplicable
};
void writeDocumentDevice(DocumentDevice const& device);

/// A version number in two decimals, as the document shows it.
std::string versionText(float version);
