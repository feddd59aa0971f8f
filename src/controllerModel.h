#pragma once

#include <string>

/// The model by which the run knows a controller, from its name attribute: "ZenoS8c" for a name that holds
/// "KITEWING"; otherwise the name without its prefix, underscores turned into blanks, trimmed.
std::string MakeEnclosureNameNice(std::string const& text);

/// The model of the first row of the model table that holds `name` anywhere, model part included; `name`
/// itself without such a row. A short name hits the first row that happens to hold it, so the order of the
/// rows counts.
std::string mapContollerName(std::string const& name);

/// What the tags of a package are matched with: the PCI subsystem identifier, eight upper-case hexadecimal
/// digits, with its halves swapped. Empty for an identifier of four digits or fewer.
std::string applicabilityKey(std::string const& subsystemIdentifier);
