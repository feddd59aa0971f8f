#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "src/CLI.h"
#include "src/DiscoveryInfo.h"
#include "src/config.h"
#include "src/deviceCollection.h"
#include "src/deviceTags.h"
#include "src/options.h"
#include "src/tolkflash.h"

namespace {

constexpr char DEFAULT_LOG[] = "/var/ksl/Component.log";

void lineEnd() {
    std::printf("\n");
    std::fflush(stdout);
}

/// Local time in words, for the last line of a pass.
std::string CurrentTime() {
    std::time_t const now = std::time(nullptr);
    std::tm local = {};
    localtime_r(&now, &local);
    char text[64];
    std::strftime(text, sizeof text, "%d %b %Y - %X", &local);
    return text;
}

/// Only a whole word "-s" counts here, before the options are parsed. The other options that silence the run
/// do so in the first pass, so they still get the first question.
bool hasSilentWord(int argc, char* argv[]) {
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "-s") == 0) {
            return true;
        }
    }
    return false;
}

/// False when the run ends here.
bool askForDiscovery() {
    cli.printMsg("\n\tThis program consists of two phases: device discovery and device update.\n");
    cli.printMsg("\tNo device will be updated until you answer.\n");
    cli.printMsg("\nDo you want to run device discovery?");
    lineEnd();
    Answer const answer = cli.askFlashIt(1);
    if (answer == AnsYes) {
        return true;
    }
    if (answer == AnsNo) {
        cli.log("Update cancelled by user.\n");
        lineEnd();
    } else {
        cli.logVerbose("Bad return from askFlashIt: %d\n", answer);
    }
    return false;
}

void askForUpdates() {
    if (gblRefresh > 0 && gblForceFlashing != 0) {
        cli.printMsg("Do you want to reflash the device that has current ROM?\n");
        askUserInput(reflash, gblRefresh);
    }
    if (gblDowngrades > 0 && gblForceFlashing != 0) {
        cli.printMsg("Do you want to downgrade the device that has newer ROM?\n");
        askUserInput(downgrade, gblDowngrades);
    }
    if (gblUpgrades > 0) {
        cli.printMsg("Do you want to upgrade the device that has older ROM?\n");
        askUserInput(upgrade, gblUpgrades);
    }
    if (gblRefresh == 0 && gblDowngrades == 0 && gblUpgrades == 0) {
        cli.printMsg("No device will be updated.\n");
    }
}

void markSilently() {
    if (gblForceFlashing != 0) {
        setFlashToDeviceCollection(reflash);
        setFlashToDeviceCollection(downgrade);
    }
    setFlashToDeviceCollection(upgrade);
}

/// The walk of one pass, with the net below it.
int walk() {
    int code = codeSerious;
    try {
        code = xqrthflash();
        notDiscovered = true;
        Config::Instance()->CleanConfig();
    } catch (...) {
        cli.logVerbose("The program has detected a serious error and must exit.\n");
        code = codeSerious;
    }
    return code;
}

}  // namespace

int CheckState(int argc, char* argv[]) {
    cli.setVerbose(true);
    if (hasSilentWord(argc, argv)) {
        cli.setSilent(true);
    }
    if (!cli.isSilent() && !askForDiscovery()) {
        return codeCancelled;
    }
    cli.printMsg("Finding hardware. This may take a few minutes.\n");
    gblXMLMode = true;
    gblFlashing = false;
    int const first = tolkinstall(argc, argv);
    cli.printMsg("Found %d devices.\n\n", gblFound);
    printDiscoveryLog();
    gblXMLMode = false;
    gblFlashing = true;
    if (gblDiscMode) {
        return first;
    }
    if (cli.isSilent()) {
        markSilently();
    } else {
        askForUpdates();
    }
    int const second = tolkinstall(argc, argv);
    if (gblFlashed == 0) {
        cli.logAndPrint("No devices updated.\n");
    }
    if (second == codeUpdated) {
        cli.logAndPrint(
            "\nAs part of the reboot process, you must power cycle the server and any external array storage "
            "devices.\n\n");
    }
    clearMemory();
    return second;
}

int tolkinstall(int argc, char* argv[]) {
    DiscoveryInfo* const catalogue = DiscoveryInfo::Instance();
    // Neither file stops the run: without entries or tags nothing is applicable.
    catalogue->createDeviceConfig("");
    catalogue->DisplayConfigInfo();
    readTagsFromComponentXML(catalogue->getcpxml() + ".xml");
    if (Config::Instance() == nullptr) {
        return codeUnreadable;
    }
    cli.setLogFile(DEFAULT_LOG);
    if (std::optional<int> const ended = parseOptions(argc, argv)) {
        return *ended;
    }
    cli.logRuler();
    cli.logRuler();
    int const code = walk();
    cli.logVerbose("%s: Completed with return code %d: %s\n", EngineDesc, code, CurrentTime().c_str());
    cli.logRuler();
    return code;
}

void askUserInput(updateState state, int count) {
    struct Group {
        updateState state;
        char const* cancelled;
    };
    static constexpr Group GROUPS[] = {
        {reflash, "Reflash cancelled by user.\n"},
        {upgrade, "Upgrade cancelled by user.\n"},
        {downgrade, "Downgrade cancelled by user.\n"},
    };
    Answer const answer = cli.askFlashIt(1);
    if (answer == AnsYes) {
        cli.printMsg("%d devices will be updated.\n", count);
        setFlashToDeviceCollection(state);
    } else if (answer == AnsNo) {
        for (Group const& group : GROUPS) {
            if (group.state == state) {
                cli.log("%s", group.cancelled);
            }
        }
        gblFlashInterrupt = true;
        lineEnd();
    } else {
        cli.logVerbose("Bad return from askFlashIt: %d\n", answer);
    }
}

void clearMemory() {
    DiscoveryInfo::DeleteInstance();
    Config::DeleteInstance();
    forgetWithoutRow();
}
