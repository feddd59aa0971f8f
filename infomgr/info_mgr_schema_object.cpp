#include "infomgr/info_mgr_schema_object.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

template <class Record>
int send(ManageableDevice& device, std::uint32_t kind, void* request) {
    return device.ifuncControlObjInfo(kind, *static_cast<Record*>(request));
}

/// What InfoMgrControlObject offers: function, minimum length, form of the record.
struct FunctionRow {
    std::uint32_t function;
    std::uint32_t minimum;
    int (*send)(ManageableDevice&, std::uint32_t kind, void* request);
};
constexpr FunctionRow FUNCTIONS[] = {
    {InfoMgr::BMIC_FUNCTION, _INFOMGR_BMIC_REQUEST::LENGTH, send<_INFOMGR_BMIC_REQUEST>},
    {InfoMgr::SCSI_FUNCTION, _INFOMGR_SCSI_REQUEST::LENGTH, send<_INFOMGR_SCSI_REQUEST>},
    {InfoMgr::CSMI_FUNCTION, _INFOMGR_CSMI_REQUEST::LENGTH, send<_INFOMGR_CSMI_REQUEST>},
    {InfoMgr::PASSTHRU_FUNCTION, _INFOMGR_PASSTHRU_REQUEST::LENGTH, send<_INFOMGR_PASSTHRU_REQUEST>},
};

}  // namespace

InfoMgrSchemaObject::InfoMgrSchemaObject(std::uint32_t type,
                                         boost::shared_ptr<ManageableDevice> const& device)
    : m_type(type), m_device(device), m_status(device->status()) {}

void InfoMgrSchemaObject::replaceDevice(boost::shared_ptr<ManageableDevice> const& device) {
    m_device.replace(device);
    m_status = device->status();
}

void InfoMgrSchemaObject::Rescan() {
    m_status = m_device.copy()->rescan();
}

int InfoMgrSchemaObject::InfoMgrGetObjectInfo(std::uint32_t kind, void* buffer, std::uint32_t length) {
    if (kind != InfoMgr::NODE_INFO && kind != InfoMgr::IDENTITY_INFO) {
        return InfoMgr::NOT_OFFERED;
    }
    auto const device = m_device.copy();
    std::string const text = kind == InfoMgr::NODE_INFO ? device->node() : device->identity();
    if (length <= text.size()) {
        return InfoMgr::TOO_SHORT;
    }
    if (buffer == nullptr) {
        return InfoMgr::BAD_ARGUMENT;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return InfoMgr::SUCCESS;
}

int InfoMgrSchemaObject::InfoMgrControlObject(std::uint32_t function, std::uint32_t kind, void* request,
                                              std::uint32_t length, std::uint32_t* resultLength) {
    if (resultLength != nullptr) {
        *resultLength = length;
    }
    auto const device = m_device.copy();
    auto const row = std::find_if(std::begin(FUNCTIONS), std::end(FUNCTIONS),
                                  [&](FunctionRow const& each) { return each.function == function; });
    if (row == std::end(FUNCTIONS)) {
        return InfoMgr::NOT_OFFERED;
    }
    if (length < row->minimum) {
        return InfoMgr::TOO_SHORT;
    }
    return request == nullptr ? InfoMgr::BAD_ARGUMENT : row->send(*device, kind, request);
}
