#include "core/device_association_operation.h"

#include "common/debug_logger.h"
#include "core/device_finder.h"
#include "core/tolkmod.h"

namespace Core {

DeviceAssociationOperation::DeviceAssociationOperation(Common::string const& associationName)
    : DeviceOperation(eUsual), m_associationName(associationName) {}

void DeviceAssociationOperation::AddAssociationFor(Common::string const& name,
                                                   Common::shared_ptr<Device> source,
                                                   Common::shared_ptr<Device> target) const {
    if (!source || !target) {
        Common::DebugLogger::LogCommand("Association %s refused: no %s device", name.c_str(),
                                        source ? "target" : "source");
        return;
    }
    if (!source->hasAssociation(name)) {
        Common::shared_ptr<DeviceAssociation> created(new DeviceAssociation(name));
        created->receive(target);
        source->receive(created);
        return;
    }
    Common::shared_ptr<DeviceAssociation> association = source->getAssociation(name);
    for (DeviceIterator member = association->beginDevice(); member != association->endDevice(); ++member) {
        if (*member == target) return;
    }
    association->receive(target);
}

void DeviceAssociationOperation::DoBuild(Common::shared_ptr<Device> source,
                                         Common::shared_ptr<AssociationPredicate> predicate,
                                         Common::string const& targetType,
                                         Common::shared_ptr<Device> root) const {
    if (!source || !predicate) {
        Common::DebugLogger::LogCommand("Association %s with %s refused: no %s", m_associationName.c_str(),
                                        targetType.c_str(), source ? "predicate" : "source device");
        return;
    }
    namespace DeviceNames = Interface::TOLKMod::Device;
    if (!root) {
        DeviceFinder rootFinder(source);
        rootFinder.AddAttribute(
            Attribute(DeviceNames::ATTR_NAME_TYPE, Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT));
        root = rootFinder.find(DeviceFinder::eUpward);
    }
    if (!root) {
        Common::DebugLogger::LogCommand("Association %s with %s refused: no root above %s",
                                        m_associationName.c_str(), targetType.c_str(),
                                        source->toString().c_str());
        return;
    }

    DeviceFinder targetFinder(root);
    targetFinder.AddAttribute(Attribute(DeviceNames::ATTR_NAME_TYPE, targetType));
    DeviceList candidates;
    targetFinder.find(candidates, DeviceFinder::eDownward);
    for (Common::shared_ptr<Device> const& candidate : candidates) {
        if (!(*predicate)(source, candidate)) continue;
        AddAssociationFor(m_associationName, source, candidate);
        AddAssociationFor(m_associationName, candidate, source);
    }
}

void DeviceAssociationOperation::buildAssociations(Common::shared_ptr<Device> source,
                                                   TargetList const& targets,
                                                   Common::shared_ptr<Device> root) const {
    for (AssociationTarget const& target : targets) {
        buildAssociation(source, target, root);
    }
}

void DeviceAssociationOperation::buildAssociation(Common::shared_ptr<Device> source,
                                                  AssociationTarget const& target,
                                                  Common::shared_ptr<Device> root) const {
    DoBuild(source, target.predicate, target.targetType, root);
}

}  // namespace Core
