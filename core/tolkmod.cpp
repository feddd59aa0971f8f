#include "core/tolkmod.h"

namespace Interface::TOLKMod {

namespace {

struct ModuleState {
    bool initialized = false;
    bool debugXMLFile = false;
    bool profiling = false;
};

ModuleState s_module;

}  // namespace

void InitializeModule(bool const& debugXMLFile, bool const& profiling) {
    if (s_module.initialized) return;
    s_module = {true, debugXMLFile, profiling};
}

bool debugXMLFileEnabled() {
    return s_module.debugXMLFile;
}

bool profilingEnabled() {
    return s_module.profiling;
}

void ForgetModule() {
    s_module = {};
}

}  // namespace Interface::TOLKMod
