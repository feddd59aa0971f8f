#include "src/options.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "src/CLI.h"
#include "src/config.h"
#include "src/deviceTags.h"
#include "src/runState.h"

namespace {

// The tail is a file name that somebody appended, and getopt takes every letter of it as an option. It stays:
// the first occurrence of a letter rules, so all it adds is -p and -. without argument.
constexpr char OPTION_STRING[] = "cd:Ffeghi:k:Ll:moqst:u:v:x:z:kslsetup.exe";

constexpr char const* HELP_TEXT[] = {
    "   -d <file>    Dumps discovery information in XML format to <file>\n",
    "   -g|-f|-e     Force reflashing of supported items\n",
    "   -k<sw_key>   The firmware type in the XML\n",
    "   -q           Query hardware attached - human readable, see -d\n",
    "   -t<tag>      SCSI device tag of device (required - e.g. QBX41)\n",
    "   -v<version>  Version number of new ROM (required)\n",
    "   -z           Disable flashing in zoned environment\n",
};

using Outcome = std::optional<int>;

template <std::size_t Size>
void copyText(char (&target)[Size], char const* text) {
    std::strncpy(target, text, Size - 1);
    target[Size - 1] = '\0';
}

void extensionOption(char const* text) {
    switch (text[0]) {
        case 'd':
            gblEstimatedFlashTime = static_cast<unsigned int>(std::strtoul(text + 1, nullptr, 0));
            break;
        case '~':
            cli.logVerbose("Error Testing mode enabled: %.80s\n", text + 1);
            std::sscanf(text + 1, "%x", &gblFakeError);
            cli.printMsg("0x%x\n", gblFakeError);
            break;
        default:
            cli.logVerbose("Warning: Unknown extension option ignored: -x%s\n", text);
            break;
    }
}

Outcome startFileMode(char const*) {
    gblFlashing = true;
    Config::Instance()->FileMode = 1;  // nothing reads it
    return {};
}

Outcome startDiscoveryDump(char const* file) {
    gblXMLMode = true;
    gblDiscMode = true;
    gblFlashing = false;
    cli.setSilent(true);
    copyText(gblXMLFile, file);
    cli.setXMLFile(file);
    return {};
}

Outcome force(char const*) {
    gblForceFlashing = 1;
    return {};
}

Outcome forceIllegal(char const*) {
    gblForceIllegalFlashing = true;
    return {};
}

Outcome help(char const*) {
    for (char const* line : HELP_TEXT) {
        cli.printMsg("%s", line);
    }
    return codeNothingUpdated;
}

Outcome announceLog(char const* file) {
    cli.printMsg("Logging to %s\n", file);
    return {};
}

Outcome setType(char const* text) {
    copyText(XMLTypeValue, text);
    return {};
}

Outcome setVerbose(char const*) {
    cli.setVerbose(true);
    return {};
}

Outcome setLog(char const* file) {
    cli.setLogFile(file);
    return announceLog(file);
}

Outcome deprecated(char const*) {
    cli.printMsg("Parameter '%c' deprecated - ignoring\n", 'm');
    return {};
}

Outcome zeroDownTime(char const*) {
    gblisZeroDownTimeEnabled = true;
    cli.logVerbose("Looking for TOFU support\n");
    return {};
}

Outcome query(char const*) {
    gblFlashing = false;
    cli.setSilent(true);
    return {};
}

Outcome silent(char const*) {
    cli.setSilent(true);
    return {};
}

Outcome tag(char const* text) {
    addTags(text);
    return {};
}

Outcome ignoredDocument(char const*) {
    cli.printMsg("Parameter '%c' XML file ignored (using defaults)\n", 'u');
    return {};
}

/// The version of the new firmware comes from the catalogue; what is given here has no use.
Outcome ignoredVersion(char const*) {
    return {};
}

Outcome extension(char const* text) {
    extensionOption(text);
    return {};
}

/// It takes an argument, though the help shows none, and so swallows the next word.
Outcome disableZones(char const*) {
    gblDisableZoneFlashing = true;
    return {};
}

/// Not reached as long as the option string doesn't begin with a colon.
Outcome missingParameter(char const*) {
    cli.printMsg("%s: Command line error: missing parameter for option\n", EngineDesc);
    return codeUnreadable;
}

Outcome unknown(char const*) {
    cli.logVerbose("%s: Warning: Unknown option ignored: -%c\n", EngineDesc, optopt);
    return {};
}

/// What each letter that getopt gives does; the argument is null for a letter without one.
struct OptionRow {
    int letter;
    Outcome (*handler)(char const* argument);
};

constexpr OptionRow OPTIONS[] = {
    {'c', startFileMode},
    {'d', startDiscoveryDump},
    {'e', force},
    {'f', force},
    {'g', force},
    {'F', forceIllegal},
    {'h', help},
    {'i', announceLog},
    {'k', setType},
    {'L', setVerbose},
    {'l', setLog},
    {'m', deprecated},
    {'o', zeroDownTime},
    {'q', query},
    {'s', silent},
    {'t', tag},
    {'u', ignoredDocument},
    {'v', ignoredVersion},
    {'x', extension},
    {'z', disableZones},
    {':', missingParameter},
    {'?', unknown},
};

OptionRow const* findOption(int letter) {
    for (OptionRow const& row : OPTIONS) {
        if (row.letter == letter) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

std::optional<int> parseOptions(int argc, char* argv[]) {
    opterr = 0;
    optind = 1;
    for (int letter = getopt(argc, argv, OPTION_STRING); letter != -1;
         letter = getopt(argc, argv, OPTION_STRING)) {
        OptionRow const* const row = findOption(letter);
        if (row == nullptr) {
            cli.logVerbose("%s: Warning: Unhandled return value %d\n", EngineDesc, letter);
            continue;
        }
        if (Outcome const ended = row->handler(optarg)) {
            // getopt keeps its place inside a cluster such as -hs, and the next pass would begin there: what
            // is left of the line is taken and dropped.
            while (getopt(argc, argv, OPTION_STRING) != -1) {
            }
            return ended;
        }
    }
    return {};
}
