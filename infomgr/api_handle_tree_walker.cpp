#include "infomgr/api_handle_tree_walker.h"

#include <algorithm>

void ApiHandleTreeWalker::discover(std::uint32_t objectType,
                                   std::vector<boost::shared_ptr<InfoMgrSchemaObject>>& objects) {
    std::vector<boost::shared_ptr<InfoMgrSchemaObject>> found;
    for (auto const& device : m_discoverer.discover(objectType)) {
        auto const known = std::find_if(objects.begin(), objects.end(), [&](auto const& object) {
            return object->identity() == device->identity();
        });
        if (known == objects.end()) {
            found.push_back(InfoMgrAPIInterface::make<InfoMgrSchemaObject>(objectType, device));
            continue;
        }
        (*known)->replaceDevice(device);
        found.push_back(*known);
        objects.erase(known);  // no second device takes the same object
    }
    objects.swap(found);
}
