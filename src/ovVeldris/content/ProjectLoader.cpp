#include <ovVeldris/content/ProjectLoader.h>

#include <ovExport/JsonExporter.h>
#include <ovExport/Node.h>
#include <ovGraphics/resourceSets/ResourceManager.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Entity.h>
#include <ovResources/ResourceManager.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/content/ResourceDeclAugmentCallback.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/materials/MaterialManager.h>

namespace ovVeldris {

using ovMemory::String;
using ovMemory::StringView;

namespace {

constexpr StringView MATERIALS_SUFFIX = "_materials.ovm";
constexpr StringView SET_SUFFIX = ".ovs";
constexpr StringView SCRIPTS_SUFFIX = "_scripts.ovscripts";
// Another file where letters of both cases differ. Projects rely on it: it switches their scripts on.
constexpr StringView SCRIPTS_SWITCH_SUFFIX = "_scripts.ovScripts";
constexpr StringView MATERIALS_MEMBER = "materials";

String baseFile(const String& path, StringView suffix) {
    return String(ProjectLoader::getBase(path)).append(suffix);
}

bool baseFileExists(const String& path, StringView suffix) {
    const ovResources::ResourceManager& resources = ovResources::ResourceManager::getInstanceRef();
    return resources.checkFileExists(
        resources.getAbsoluteFromWorkingDir(ProjectLoader::getBase(path)).append(suffix));
}

} // namespace

void ProjectLoader::save(const ProjectSaveQuery& query) const {
    _saveMaterials(query);
    if (const ovGraphics::System* const graphics = graphicsSystemOf(_system)) {
        ovGraphics::ResourceSetSaveQuery setQuery = query._resourceSetQuery;
        setQuery.setPath(query._path);
        graphics->getResourceManager()->saveResourceSetDescFile(setQuery);
    }
    ovScripts::ProjectSaveQuery scriptsQuery = query._scriptsQuery;
    scriptsQuery._path = query._path;
    if (const ovMemory::Result saved = ovScripts::ProjectLoader::save(scriptsQuery); !saved.error.empty())
        logMessage(_system, saved.error, "ProjectLoader");
}

void ProjectLoader::_saveMaterials(const ProjectSaveQuery& query) const {
    const auto root = ovExport::Node::create();
    const MaterialManager* const materials = _system->getMaterialManager();
    for (unsigned int i = 0; materials && i < materials->getCount(); ++i) {
        Material* const material = materials->getByIndex(i);
        ovExport::Node* const entry = root->addMember(MATERIALS_MEMBER)->addElement();
        material->exportClassToTree(entry);
        if (query._callback)
            query._callback->onMaterial(material, entry);
    }
    _system->getContentLoader()->outputData(ovExport::JsonExporter().exportTreeIntoString(root.get()),
                                            baseFile(query._path, MATERIALS_SUFFIX));
}

ProjectLoadResult ProjectLoader::load(const ProjectLoadQuery& query) const {
    ProjectLoadResult result;
    _loadMaterials(query, result);
    _loadResourceSet(query, result);
    _connect(result);
    _loadScripts(query, result);
    return result;
}

void ProjectLoader::_loadMaterials(const ProjectLoadQuery& query, ProjectLoadResult& result) const {
    if (!baseFileExists(query._path, MATERIALS_SUFFIX))
        return;
    const ContentLoader& loader = *_system->getContentLoader();
    const ovExport::ExporterLoadResult read = loader.inputData(baseFile(query._path, MATERIALS_SUFFIX));
    ovExport::Node* const entries =
        read && read._tree->isObject() ? read._tree->getMemberValue(MATERIALS_MEMBER) : nullptr;
    if (!entries || !entries->isArray())
        return;
    for (unsigned int i = 0; i < entries->getArraySize(); ++i) {
        ovExport::Node* const entry = entries->getArrayElement(i);
        const ContentLoader::Materials made = loader.processMaterialTree(entry, false);
        if (made._status != ContentLoader::Materials::DONE)
            continue;
        Material* const material = made._results.front();
        if (query._callback)
            query._callback->onMaterial(material, entry);
        result._materials.push_back(material);
        material->load();
    }
}

void ProjectLoader::_loadResourceSet(const ProjectLoadQuery& query, ProjectLoadResult& result) const {
    const ovGraphics::System* const graphics = graphicsSystemOf(_system);
    if (!graphics || !baseFileExists(query._path, SET_SUFFIX))
        return;
    ovGraphics::ResourceSetLoadQuery setQuery = query._resourceSetQuery;
    setQuery.setPath(baseFile(query._path, SET_SUFFIX));
    graphics->getResourceManager()->loadResourceSetDescFileSync(setQuery, result._resourceSet);
}

// What the materials could not know when they were loaded: the set comes after them.
void ProjectLoader::_connect(const ProjectLoadResult& result) const {
    for (const Material* const material : result._materials)
        if (ovGraphics::Shader* const shader = material->getShader())
            shader->useSamplersOfTextures();
    const MaterialManager* const materials = _system->getMaterialManager();
    for (const ovGraphics::ResourceSetEntity& waiting : result._resourceSet._entities)
        if (const Material* const material = materials ? materials->get(waiting.shader) : nullptr)
            waiting.entity->setShader(material->getShader());
}

void ProjectLoader::_loadScripts(const ProjectLoadQuery& query, ProjectLoadResult& result) const {
    if (!baseFileExists(query._path, SCRIPTS_SWITCH_SUFFIX))
        return;
    ovScripts::ProjectLoadQuery scriptsQuery = query._scriptsQuery;
    scriptsQuery._path = baseFile(query._path, SCRIPTS_SUFFIX);
    ovScripts::ProjectLoadResult loaded = ovScripts::ProjectLoader::load(scriptsQuery);
    for (const String& error : loaded._errors)
        logMessage(_system, error, "ProjectLoader");
    result._scripts = std::move(loaded._scripts);
}

} // namespace ovVeldris
