#include <algorithm>

#include "command/sense_encryption.h"
#include "storage/operations/controller_common.h"
#include "storage/operations/publish.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;
using namespace Records;

/// Wrong passwords after which the firmware locks a role out.
constexpr unsigned PASSWORD_ATTEMPTS = 10;

constexpr CodeRow MODES[] = {
    {0, Names::ATTR_VALUE_ENCRYPTION_MODE_NONE},
    {1, Names::ATTR_VALUE_ENCRYPTION_MODE_LOCAL},
    {2, Names::ATTR_VALUE_ENCRYPTION_MODE_REMOTE},
};

Common::string attemptsLeft(unsigned failed) {
    return decimalText(PASSWORD_ATTEMPTS - std::min(failed, PASSWORD_ATTEMPTS));
}

constexpr FlagRow<ENCRYPTION_LOCAL_KEK_CACHE_ATTRIBUTES> LOCAL_KEY_FLAGS[] = {
    {KSL_FACT(ENCRYPTION_LOCAL_KEK_SET), [](auto& r) { return (r.dwCacheFlags & 1) != 0; }},
};

constexpr FlagRow<ENCRYPTION_BOOT_PASSWORD_STATUS> BOOT_PASSWORD_FLAGS[] = {
    {KSL_FACT(ENCRYPTION_BOOT_PASSWORD_SET), [](auto& r) { return r.bPasswordSet != 0; }},
    {KSL_FACT(ENCRYPTION_HAS_SUSPENDED_BOOT_PASSWORD), [](auto& r) { return r.bPasswordSuspended != 0; }},
};

constexpr PublishRow<ENCRYPTION_BOOT_PASSWORD_STATUS> BOOT_PASSWORD_ROWS[] = {
    {Names::ATTR_NAME_ENCRYPTION_BOOT_PASSWORD_UNLOCK_ATTEMPTS,
     [](auto& r) { return decimalText(r.wFailedAttempts); }},
};

constexpr FlagRow<ENCRYPTION_IKEK_STATUS> INITIAL_KEY_FLAGS[] = {
    {KSL_FACT(ENCRYPTION_INITIAL_STATUS_IKEK), [](auto& r) { return r.bKeyPresent != 0; }},
    {KSL_FACT(ENCRYPTION_INITIAL_STATUS_IKEK_RESET), [](auto& r) { return (r.bKeyState & 1) != 0; }},
    {KSL_FACT(ENCRYPTION_INITIAL_STATUS_IKEK_CONTROLLER_KEY), [](auto& r) { return (r.bKeyState & 2) != 0; }},
};

constexpr FlagRow<ENCRYPTION_BOOT_STATUS> BOOT_FLAGS[] = {
    {KSL_FACT(ENCRYPTION_HAS_LOCKED_VOLUMES_MISSING_BOOT_PASSWORD),
     [](auto& r) { return r.bLockedVolumesPresent != 0; }},
    {KSL_FACT(ENCRYPTION_LDRIVES_DISABLED_DEK_WONT_DECRYPT),
     [](auto& r) { return (r.dwStatusFlags & 1) != 0; }},
    {KSL_FACT(ENCRYPTION_LDRIVES_DISABLED_BAD_BOOT_PASSWORD),
     [](auto& r) { return (r.dwStatusFlags & 2) != 0; }},
    {KSL_FACT(ENCRYPTION_LDRIVES_DISABLED_IKEK_MISMATCH), [](auto& r) { return (r.dwStatusFlags & 4) != 0; }},
};

constexpr FlagRow<ENCRYPTION_PASSWORD_STATUS> PASSWORD_FLAGS[] = {
    {KSL_FACT(ENCRYPTION_CRYPTO_OFFICER_PASSWORD_SET), [](auto& r) { return r.bCryptoPasswordSet != 0; }},
    {KSL_FACT(ENCRYPTION_USER_PASSWORD_SET), [](auto& r) { return r.bUserPasswordSet != 0; }},
    {KSL_FACT(ENCRYPTION_RECOVERY_PARAMS_SET), [](auto& r) { return r.bRecoveryParametersSet != 0; }},
};

constexpr PublishRow<ENCRYPTION_PASSWORD_STATUS> PASSWORD_ROWS[] = {
    {Names::ATTR_NAME_ENCRYPTION_PASSWORD_UNLOCK_ATTEMPTS_REMAINING_CRYPTO,
     [](auto& r) { return attemptsLeft(r.wCryptoFailedAttempts); }},
    {Names::ATTR_NAME_ENCRYPTION_PASSWORD_UNLOCK_ATTEMPTS_REMAINING_USER,
     [](auto& r) { return attemptsLeft(r.wUserFailedAttempts); }},
};

constexpr PublishRow<ENCRYPTION_KEY_MANAGER_STATUS> KEY_MANAGER_ROWS[] = {
    {Names::ATTR_NAME_ENCRYPTION_MODE,
     [](auto& r) {
         return Common::string(valueOf(MODES, r.bMode, Names::ATTR_VALUE_ENCRYPTION_MODE_UNKNOWN));
     }},
};

constexpr FlagRow<ENCRYPTION_KEY_MANAGER_STATUS> KEY_MANAGER_FLAGS[] = {
    {KSL_FACT(ENCRYPTION_REMOTE_KEK_SET), [](auto& r) { return (r.dwStatusFlags & 1) != 0; }},
};

/// Reads one page and publishes it by the rows of each table.
template <typename Command, typename... Tables>
bool readPage(Schema::ArrayController& controller, Tables const&... tables) {
    Command command;
    if (!command(controller) || !holdsWhole(command, "Encryption page")) {
        return false;
    }
    (publishRows(controller, tables, command.record()), ...);
    return true;
}

}  // namespace

void readEncryptionInfo(Schema::ArrayController& controller) {
    if (!controller.hasAttributeAndIs(Names::ATTR_NAME_ENCRYPTION_SUPPORTED,
                                      Names::ATTR_VALUE_ENCRYPTION_SUPPORTED_TRUE)) {
        return;
    }
    // A controller that doesn't answer one page isn't asked for the others.
    (void)(readPage<SenseEncryptionLocalKEKCacheAttributes>(controller, LOCAL_KEY_FLAGS) &&
           readPage<SenseEncryptionBootPasswordStatus>(controller, BOOT_PASSWORD_FLAGS, BOOT_PASSWORD_ROWS) &&
           readPage<SenseEncryptionIKEKStatus>(controller, INITIAL_KEY_FLAGS) &&
           readPage<SenseEncryptionBootStatus>(controller, BOOT_FLAGS) &&
           readPage<SenseEncryptionPasswordStatus>(controller, PASSWORD_FLAGS, PASSWORD_ROWS) &&
           readPage<SenseEncryptionKeyManagerStatus>(controller, KEY_MANAGER_ROWS, KEY_MANAGER_FLAGS));
}

}  // namespace Operations
