#pragma once

#include "common/global_static_allocator.h"
#include "common/list.h"
#include "common/shared_ptr.h"
#include "common/string.h"
#include "core/device.h"
#include "core/device_operation.h"

namespace Core {

// Base of the operations that link devices. Runs in the association step, after the whole top-down walk, so
// that all targets exist. A concrete operation overrides visit(Device&) or typed visits and calls
// buildAssociations() with what it links.
class DeviceAssociationOperation : public DeviceOperation, public DeviceAssociationPublisher {
  public:
    // Tells whether two devices belong together. From the fixed pool: `new` of one may be null.
    class AssociationPredicate : public Common::GlobalStaticAllocator {
      public:
        virtual ~AssociationPredicate() = default;
        virtual bool operator()(Common::shared_ptr<Device> source,
                                Common::shared_ptr<Device> candidate) const = 0;
    };

    // Which devices to link a source with.
    struct AssociationTarget {
        Common::shared_ptr<AssociationPredicate> predicate;
        Common::string targetType;  // value of ATTR_NAME_TYPE
    };
    typedef Common::list<AssociationTarget> TargetList;

    explicit DeviceAssociationOperation(Common::string const& associationName);

    Common::string associationName() const { return m_associationName; }

  protected:
    EnType eTypeImpl() const override { return eAssociation; }

    // Adds `target` to the association `name` of `source`, making the association when there is none. A
    // member is never added twice.
    void AddAssociationFor(Common::string const& name, Common::shared_ptr<Device> source,
                           Common::shared_ptr<Device> target) const;

    // Links `source`, in both directions, with every device of `targetType` in the tree that passes the
    // predicate. A null `root` is looked for upward from `source`. Nothing is linked, with a line in the
    // log, when there is no root, no source or no predicate.
    void DoBuild(Common::shared_ptr<Device> source, Common::shared_ptr<AssociationPredicate> predicate,
                 Common::string const& targetType, Common::shared_ptr<Device> root) const;

    void buildAssociations(Common::shared_ptr<Device> source, TargetList const& targets,
                           Common::shared_ptr<Device> root = Common::shared_ptr<Device>()) const;
    void buildAssociation(Common::shared_ptr<Device> source, AssociationTarget const& target,
                          Common::shared_ptr<Device> root = Common::shared_ptr<Device>()) const;

  private:
    Common::string m_associationName;
};

}  // namespace Core
