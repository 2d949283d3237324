#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/content/MaterialSettings.h>
#include <ovVeldris/content/ModelLoader.h>
#include <ovVeldris/content/ProjectLoader.h>
#include <ovVeldris/materials/PbsMaterial.h>
#include <ovVeldris/scripts/veldrisWrap/ContentWrappers.h>
#include <ovVeldris/scripts/veldrisWrap/VeldrisTypes.h>

namespace ovVeldrisWrap {

using ovMemory::StringView;
using ovVeldris::Material;
using ovVeldris::Model;
using ovVeldris::System;

/// Borrows: the script may hold the result longer than the manager holds the materials.
struct LoadedMaterials {
    ovMemory::Buffer<ovMemory::String> errors;
    ovMemory::Buffer<ovMemory::Borrowed<Material>> materials;
};

namespace {

LoadedMaterials resultOf(const ovVeldris::ContentLoader::Materials& loaded) {
    LoadedMaterials result = {loaded._errors, {loaded._results.begin(), loaded._results.end()}};
    for (std::size_t i = 0; i < loaded._details.size(); ++i)
        if (!loaded._details[i].empty())
            result.errors[i] += " (" + loaded._details[i] + ")";
    return result;
}

Material* materialAt(const LoadedMaterials& self, std::size_t index) {
    return index < self.materials.size() ? self.materials[index].get() : nullptr;
}

Material* materialOf(const Model& model, std::size_t index) {
    return index < model.getMaterials().size() ? model.getMaterials()[index].material.get() : nullptr;
}

// Others are written in pieces, some of them elsewhere, that no load finds again: docs/projects.md tells why.
void checkProjectPath(StringView path) {
    const StringView base = ovVeldris::ProjectLoader::getBase(path);
    if (base.empty() || base.starts_with('/') || path.substr(base.size()) != ".ovs")
        throw ovCommonWrap::ArgumentError(
            "argument 1 (path) expected NAME.ovs from the working folder, without other dots, got '" +
            ovMemory::String(path) + '\'');
}

LoadedMaterials loadProject(StringView path) {
    checkProjectPath(path);
    System& system = System::getInstanceRef();
    ovVeldris::MaterialSettingsReader reader(system);
    ovVeldris::ProjectLoadQuery query;
    query._path = path;
    query._callback = &reader;
    const ovVeldris::ProjectLoadResult loaded = system.getProjectLoader()->load(query);
    LoadedMaterials result = {{}, {loaded._materials.begin(), loaded._materials.end()}};
    for (const ovGraphics::ResourceSetProblem& problem : loaded._resourceSet._problems)
        result.errors.push_back(problem.message);
    return result;
}

void saveProject(StringView path) {
    checkProjectPath(path);
    ovVeldris::MaterialSettingsWriter writer;
    ovVeldris::ProjectSaveQuery query;
    query._path = path;
    query._callback = &writer;
    System::getInstance()->getProjectLoader()->save(query);
}

} // namespace

void ModelWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<Model>(environment);
    type.setHelp("What a glTF file becomes: meshes, nodes, textures, materials. Belongs to the script, which "
                 "must hold it for as long as it is drawn.");
    ovCommonWrap::destructible<Model>(type);
    method(type, "getRoot", &Model::getRoot, {}, "The node above all others of the model.");
    method(type, "findNode", &Model::findNode, {"name"}, "The node of a name of the file, or nil.");
    method(type, "getBoundingBox", &Model::getBoundingBox, {}, "Of all parts, in the world.");
    method(
        type, "getMaterialCount", [](Model& self) { return self.getMaterials().size(); }, {}, "How many.");
    method(
        type, "getMaterial", [](Model& self, std::size_t index) { return materialOf(self, index); },
        {"index"}, "The material of a number from 0; nil past the end, and when it was destroyed.");
    method(type, "loadMaterials", &Model::loadMaterials, {},
           "Loads every material; false when one cannot be, and the log says why.");
    method(type, "addTo", &Model::addTo, {"solid", "blended"},
           "Adds entities to render queues: of blended materials to the second one.");
    method(
        type, "getWarningCount", [](Model& self) { return self.getWarnings().size(); }, {}, "How many.");
    method(
        type, "getWarning",
        [](Model& self, std::size_t index) {
            return index < self.getWarnings().size() ? std::optional(self.getWarnings()[index])
                                                     : std::nullopt;
        },
        {"index"}, "What the file asks for and the model does not do; nil past the end.");
}

void ModelLoaderWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<ovVeldris::ModelLoader>(environment);
    type.setRenderThreadOnly();
    staticFunction(
        type, "load",
        [](StringView path) {
            ovVeldris::ModelLoadResult result = ovVeldris::ModelLoader(System::getInstance()).load(path);
            if (!result)
                throw ovCommonWrap::ArgumentError(result.error);
            return std::move(result.model);
        },
        {"path"}, "A new model of a .glb or .gltf file. An error when it cannot be read.");
}

void LoadedMaterialsWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<LoadedMaterials>(environment);
    type.setRenderThreadOnly();
    type.setHelp("The materials of a file, which belong to their manager, and what went wrong.");
    ovCommonWrap::destructible<LoadedMaterials>(type);
    method(
        type, "getMaterialCount", [](LoadedMaterials& self) { return self.materials.size(); }, {},
        "How many.");
    method(type, "getMaterial", &materialAt, {"index"},
           "The material of a number from 0; nil past the end, and when it was destroyed.");
    method(
        type, "getErrorCount", [](LoadedMaterials& self) { return self.errors.size(); }, {}, "How many.");
    method(
        type, "getError",
        [](LoadedMaterials& self, std::size_t index) {
            return index < self.errors.size() ? std::optional(self.errors[index]) : std::nullopt;
        },
        {"index"}, "Why an entry gave no material; nil past the end.");
}

void ContentLoaderWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<ovVeldris::ContentLoader>(environment);
    type.setRenderThreadOnly();
    type.setHelp("Reads and writes declarations of materials. Paths are from the working folder.");
    staticFunction(
        type, "loadMaterialDeclaration",
        [](StringView path) {
            return resultOf(System::getInstance()->getContentLoader()->loadMaterialDeclaration(path, true));
        },
        {"path"}, "Makes and loads the materials of a file.");
    staticFunction(
        type, "processMaterialSources",
        [](StringView text, std::optional<bool> load) {
            return resultOf(
                System::getInstance()->getContentLoader()->processMaterialSources(text, load.value_or(true)));
        },
        {"text", "load"}, "Makes the materials of a JSON text, and loads them unless load is false.");
    staticFunction(
        type, "saveObjectDeclaration",
        [](Material& material, StringView path) {
            return System::getInstance()->getContentLoader()->saveObjectDeclaration(&material, path);
        },
        {"material", "path"}, "Writes a material as a file; false when it cannot, and the log says why.");
}

void ProjectLoaderWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<ovVeldris::ProjectLoader>(environment);
    type.setRenderThreadOnly();
    type.setHelp("Writes and reads projects: materials, resources and scripts. Paths are NAME.ovs, from the "
                 "working folder.");
    staticFunction(
        type, "load", &loadProject, {"path"},
        "Reads a project; its resources and materials are in their managers then. The errors are those of "
        "its resources.");
    staticFunction(type, "save", &saveProject, {"path"},
                   "Writes everything that the managers hold. What cannot be written is in the log.");
}

} // namespace ovVeldrisWrap
