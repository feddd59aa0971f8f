#pragma once

#include <string>
#include <vector>

/// Tags of the devices that the package is meant for. Keeps its contents across the passes; tags only grow.
extern std::vector<std::string> gblDeviceTags;

/// Adds a tag that isn't in the list yet and tells whether it did. The search leaves the first element out,
/// so the very first tag goes in twice.
bool addTags(std::string const& tag);
/// All tags joined by ", ".
std::string getTags();
/// The tags from the second on, to standard output.
void printTags();
/// Whether a tag is a prefix of `id`, compared without case.
bool isApplicable(std::string const& id);
/// Adds the tags that the component file names. Returns 0: a file that is missing or malformed counts as one
/// that holds what could be read. (-1 is kept for a parser that reports failures; this one doesn't.)
int readTagsFromComponentXML(std::string const& path);
