#pragma once

#include <cstdint>

#include "command/concrete_devices.h"
#include "command/records/all_records.h"
#include "common/copy_ptr.h"
#include "storage/schema/node.h"

namespace Schema {

/// An array controller. Its identifier is "AC:" and the location key, which holds across discoveries.
class ArrayController
    : public Node<ArrayController, Core::DeviceComposite, 3, ConcreteBMICDevice, ConcreteSCSIDevice> {
  public:
    ArrayController(Common::string const& handle, bool const& isRemote,
                    unsigned short const& maxPhysicalUnits, unsigned short const& maxLogicalUnits,
                    Common::string const& locationKey);

    /// Keeps what the device needs of an identify reply: the limits of its units, and what it supports.
    void InitializeSupport(Common::copy_ptr<Records::IDENTIFY_CONTROLLER> const& identify);

    /// Turns the status down: not OK, with the state that tells why. The later call overrides the earlier.
    void SetControllerStatusNotOk(Common::string const& state);

    unsigned short maxLogicalUnits() const override { return m_maxLogicalUnits; }
    unsigned short maxPhysicalUnits() const override { return m_maxPhysicalUnits; }

    /// More physical devices than the 128 of the fixed maps: the maps stand behind the fixed record.
    bool extendedDrivemapSupport() const;
    /// No more than the 32 physical devices of the oldest maps.
    bool smallDrivemapSupport() const;
    // What the identify reply told; false before InitializeSupport.
    /// Mirrors of three drives and more.
    bool allowNWayMirror() const { return m_allowsNWayMirror; }
    /// SAS drives and enclosures, as opposed to parallel SCSI.
    bool sasFeatureSupport() const { return m_supportsSas; }
    /// A mirror can be split into two logical drives.
    bool splitMirrorSupport() const { return m_supportsSplitMirror; }

    // Attribute values for the codes of a controller's records; ..._UNKNOWN for a code that has none.
    static Common::string cacheDisableCode(unsigned short const& code);
    static Common::string devicePathSelectionMethod(unsigned char const& method);
    /// Empty where the task flags of the identify record say that the priority can't be set.
    static Common::string expandPriority(unsigned short const& taskFlags, unsigned char const& priority);
    static Common::string forcedTransferMode(unsigned char const& mode);
    static Common::string forcedTransferWidth(unsigned char const& width);
    /// As expandPriority; controllers that can rebuild rapidly have a finer scale.
    static Common::string rebuildPriority(bool isRapidRebuildSupported, unsigned short const& taskFlags,
                                          unsigned char const& priority);
    /// ATTR_VALUE_REDUNDANCY_STATE_...
    static Common::string redundancyFailReason(unsigned char const& reason);
    static Common::string surfaceAnalysisPriority(unsigned char const& priority);

  protected:
    Common::string toStringImpl() const override { return "AC:" + m_locationKey; }
    void takeOver(ArrayController const& twin) override;

  private:
    Common::string m_locationKey;
    unsigned short m_maxPhysicalUnits;
    unsigned short m_maxLogicalUnits;
    bool m_allowsNWayMirror = false;
    bool m_supportsSas = false;
    bool m_supportsSplitMirror = false;
};

}  // namespace Schema
