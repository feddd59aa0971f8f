#include "command/commandmod.h"

#include "command/catalogue.h"
#include "command/records/all_records.h"

namespace Interface::CommandMod {

namespace {

struct ModuleState {
    bool initialized = false;
    bool profiling = false;
};

ModuleState s_module;

template <class Record>
void addToCatalogue() {
    using Info = Records::RecordInfo<Record>;
    AddStructure(Info::name);
    SetStructureSize(Info::name, Info::size);
    for (Records::MemberRow const& member : Info::members) {
        Common::string type(member.type);
        if (member.isArray) type += " []";
        AddStructureMember(Info::name, member.name, member.offset, member.size, type.c_str());
    }
}

}  // namespace

void InitializeModule(bool const& profiling) {
    if (s_module.initialized) return;
    s_module = {true, profiling};
#define KSL_ADD(NAME) addToCatalogue<Records::NAME>();
    KSL_WIRE_RECORDS(KSL_ADD)
#undef KSL_ADD
}

bool profilingEnabled() {
    return s_module.profiling;
}

void ForgetModule() {
    s_module = {};
    ClearCatalogue();
}

}  // namespace Interface::CommandMod
