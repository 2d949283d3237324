// Whatever a text is, its materials are made or refused with a message for each, and what they then say of
// themselves makes the same materials again.
#include <cstdlib>
#include <ovExport/JsonExporter.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/materials/MaterialManager.h>

namespace {

using ovVeldris::ContentLoader;
using ovVeldris::Material;

/// Materials need managers, which a system has once it is initialised. Never destroyed: the driver may have
/// left before what is static is.
ovVeldris::System& getSystem() {
    static ovVeldris::System* const system = [] {
        ovVeldris::Configuration configuration;
        configuration.graphicsConfiguration.software = true;
        auto* const made = new ovVeldris::System;
        if (!made->initialize(configuration))
            std::abort();
        return made;
    }();
    return *system;
}

template <typename Manager>
void eraseAll(Manager& manager) {
    while (const auto* const object = manager.getByIndex(0))
        manager.erase(ovMemory::String(object->getName()));
}

ovMemory::String exportMaterial(Material* material) {
    return ovExport::JsonExporter().exportObjectIntoString(material);
}

void expect(bool condition) {
    if (!condition)
        std::abort();
}

void checkStatus(const ContentLoader::Materials& result) {
    const bool hasErrors = !result._errors.empty();
    expect(hasErrors == (result._status != ContentLoader::Materials::DONE));
    if (result._status == ContentLoader::Materials::FAILED)
        expect(result._errors.size() == 1 && result._results.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ovVeldris::System& system = getSystem();
    const ContentLoader& loader = *system.getContentLoader();
    const ovMemory::StringView text(reinterpret_cast<const char*>(data), size);
    const ContentLoader::Materials first = loader.processMaterialSources(text, false);
    checkStatus(first);
    for (Material* const material : first._results) {
        const ovMemory::String written = exportMaterial(material);
        const ContentLoader::Materials again = loader.processMaterialSources(written, false);
        expect(again._status == ContentLoader::Materials::DONE && again._results.front() == material);
        expect(exportMaterial(material) == written);
    }
    eraseAll(*system.getMaterialManager());
    eraseAll(*system.getGraphicsEngine()->getGraphicsSystem()->getTextureManager());
    return 0;
}
