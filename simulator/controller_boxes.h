#pragma once

/// Boxes behind an array controller: where each is, and what SENSE BUS PARAMETERS tells of it. A position is
/// a bus, 0 to 15, of which 0 to 7 are the internal ports and the others the external ones, and a target
/// number on it, 0 to 15. A box with several paths answers at the position of each.

#include <optional>
#include <vector>

#include "simulator/inquiry.h"
#include "simulator/record_filler.h"

namespace simulator {

class ControllerBoxes {
  public:
    struct Path {
        unsigned bus = 0;
        unsigned target = 0;
        unsigned number = 0;  ///< of the box, as people see it
        std::string port;     ///< two characters
        bool failed = false;
        /// ((bus + 1) * 16) | target, in eight bits.
        std::uint8_t index() const { return static_cast<std::uint8_t>((bus + 1) << 4 | target); }
    };
    struct Processor {
        unsigned index = 0;  ///< among the controller's physical devices
        unsigned type = 0;
    };
    struct Box {
        std::vector<Path> paths;  ///< the box's own position first
        unsigned activePath = 0;
        unsigned bays = 0;
        bool inquiryValid = true;
        InquiryIdentity inquiry;
        std::string serial;
        std::vector<unsigned> drives;  ///< indices
        std::vector<Processor> processors;
        std::vector<unsigned> expanders;
        RecordOverride overrides;
    };

    /// Reads a box of a scenario, but for its processors and expanders. Throws ScenarioError.
    static Box readBox(Object const& object);
    /// Throws ScenarioError, with `where`, when another box has one of its positions.
    void add(Box box, std::string const& where);
    std::vector<Box> const& all() const { return m_boxes; }
    /// A drive that a scenario puts into a box, and that is missing.
    void remove(std::size_t box, unsigned drive);

    /// Nothing when there is no box. The map of its drives has `limit` bits; more than 128 stand behind the
    /// record.
    std::optional<Bytes> busParameters(unsigned bus, unsigned target, unsigned limit = 128) const;
    /// Marks in the identify record which ports have boxes (a bit for each target number below 8), and how
    /// many.
    void mark(Filler& identify) const;
    /// Whether all ways to a box are through external ports.
    static bool isExternal(Box const& box);
    /// Ports and boxes of all paths, in a record that has the members for them.
    static void putPaths(Filler& record, Box const& box);

  private:
    Box const* find(unsigned bus, unsigned target) const;

    std::vector<Box> m_boxes;
};

}  // namespace simulator
