#pragma once

#include "command/records/all_records.h"
#include "common/copy_ptr.h"
#include "flash/sep_flash_threadable.h"

namespace Operations {

/// Writes by mode 14 and makes the firmware run by mode 15. Reads at its making what the device is known by,
/// so that it can be found again after its reset.
class ModeEFSEPFlashThreadable : public SEPFlashThreadable {
  public:
    ModeEFSEPFlashThreadable(Common::shared_ptr<Core::Device> const& device, Common::string const& product,
                             ImageSpan image, bool behindController);

    void operator()() override;
    void Flash() override;
    void Reset() override;
    /// Sets bit 31 of the additional status when the device isn't found.
    void Ping() override;

  private:
    using Identify = Common::copy_ptr<Records::PHYSICAL_DRIVE_STATUS>;

    void identifyBehindController();
    void identifyByAttributes();
    Common::string place() const;
    bool mayGoOn() const;
    bool isFound() const;
    bool isThisDevice(Common::string const& handle) const;
    bool hasIdentityOf(Records::PHYSICAL_DRIVE_STATUS const& found) const;
    bool isOwnName(Common::string const& wwid) const;
    void fileAsMissing();

    Common::shared_ptr<Core::Device> m_storageSystem;
    Common::string m_wwid;  ///< sixteen hexadecimal digits
    float m_revision = 0;   ///< of the firmware before the flash
    Common::string m_port;
    Common::string m_redundantPort;
    unsigned char m_box = 0;
    unsigned char m_redundantBox = 0;
    Common::string m_place;
};

}  // namespace Operations
