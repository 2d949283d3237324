#include <ovGraphics/formats/Format.h>
#include <ovGraphics/gltf/GltfScene.h>
#include <ovScripts/Environment.h>
#include <ovVeldris/scripts/graphicsWrap/EnumerationWrapper.h>

namespace ovGraphicsWrap {

namespace {

template <typename Enum>
void addNamespaceOf(ovScripts::Environment& environment) {
    const ovMemory::String name = "ovGraphics." + ovMemory::String(ovMemory::enumTableOf<Enum>().name);
    environment.setNamespace(name)->addEnumeration<Enum>();
}

} // namespace

void EnumerationWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::Namespace* graphics = environment->getNamespace("ovGraphics");
    for (const auto& entry : ovMemory::enumTableOf<ovGraphics::PRIMITIVE_TOPOLOGY>())
        graphics->addConstant("PRIMITIVE_TOPOLOGY_" + ovMemory::String(entry.text),
                              static_cast<int64_t>(entry.value));
    addNamespaceOf<ovGraphics::RESOURCE_LOAD_STATE>(*environment);
    addNamespaceOf<ovGraphics::FORMAT>(*environment);
    addNamespaceOf<ovGraphics::TEXTURE_TYPE>(*environment);
    addNamespaceOf<ovGraphics::FILTER>(*environment);
    addNamespaceOf<ovGraphics::TEXTURE_ADDRESS>(*environment);
    addNamespaceOf<ovGraphics::GLTF_WORKFLOW>(*environment);
    addNamespaceOf<ovGraphics::GLTF_ALPHA_MODE>(*environment);
}

} // namespace ovGraphicsWrap
