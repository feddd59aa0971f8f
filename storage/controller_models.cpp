#include "storage/controller_models.h"

#include "storage/vocabulary/array_controller.h"

namespace Interface::StorageMod {
namespace {

#define KSL_MODEL_ROW(name, model, family, marketing, identifier, second) \
    {#name,                                                               \
     model,                                                               \
     ArrayController::ATTR_VALUE_CONTROLLER_NAME_##name,                  \
     ArrayController::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_##family,     \
     marketing,                                                           \
     {identifier, second}},
constexpr ControllerModel MODELS[] = {KSL_CONTROLLER_MODELS(KSL_MODEL_ROW)};
#undef KSL_MODEL_ROW

}  // namespace

std::span<ControllerModel const> controllerModels() {
    return MODELS;
}

}  // namespace Interface::StorageMod
