#include <ovVeldris/content/ContentLoader.h>

#include <fstream>
#include <ovExport/JsonExporter.h>
#include <ovResources/ResourceManager.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/materials/MaterialManager.h>

namespace ovVeldris {

namespace {

using ovMemory::String;
using ovMemory::StringView;
using ovResources::ResourceManager;

ContentLoader::Materials failed(String error, String detail = {}) {
    ContentLoader::Materials result;
    result._errors.push_back(std::move(error));
    result._details.push_back(std::move(detail));
    result._status = ContentLoader::Materials::FAILED;
    return result;
}

// Opening alone would wait for a writer where the path is that of a pipe.
bool canBeRead(const String& path) {
    return ResourceManager::getInstance()->checkFileExists(path) && std::ifstream(path).is_open();
}

const ovExport::Node* getText(const ovExport::Node& node, StringView member) {
    const ovExport::Node* const text = node.getMemberValue(member);
    return text && text->isString() ? text : nullptr;
}

String describeType(const ovExport::Node& name, const ovExport::Node& type) {
    String known;
    for (const auto& entry : ovMemory::enumTableOf<MATERIAL_TYPE>())
        if (entry.value != MATERIAL_TYPE::UNKNOWN)
            known.append(known.empty() ? "" : ", ").append(entry.text);
    return "'" + String(name.getValueAsStringView()) + "' has the type '" +
           String(type.getValueAsStringView()) + "'; the types are " + known;
}

} // namespace

ovExport::ExporterLoadResult ContentLoader::inputData(StringView path) const {
    const String absolutePath = ResourceManager::getInstance()->getAbsoluteFromWorkingDir(path);
    if (!canBeRead(absolutePath)) {
        logMessage(_system, "Can't find Object Declaration file " + absolutePath, "ContentLoader::inputData");
        return {};
    }
    const ovMemory::Buffer<char> bytes = ResourceManager::getInstance()->loadFileIntoMemory(absolutePath);
    return inputDataSources({bytes.data(), bytes.size()});
}

String ContentLoader::inputDataStr(StringView path) const {
    const ResourceManager& resources = *ResourceManager::getInstance();
    const ovMemory::Buffer<char> bytes =
        resources.loadFileIntoMemory(resources.getAbsoluteFromWorkingDir(path));
    return {bytes.begin(), bytes.end()};
}

ovExport::ExporterLoadResult ContentLoader::inputDataSources(StringView text) const {
    ovExport::ExporterLoadResult result = ovExport::JsonExporter().importIntoTree(text);
    if (!result._error._activated)
        return result;
    constexpr StringView SENDER = "ContentLoader::inputDataSources";
    const auto logSeparator = [this] { logMessage(_system, "", "-"); };
    logSeparator();
    logMessage(_system, "Object Declaration parse error :", SENDER);
    logMessage(_system, result._error._errorDesc, SENDER);
    logSeparator();
    logMessage(_system, result._error._errorInfo, SENDER);
    logSeparator();
    return {};
}

bool ContentLoader::outputData(StringView data, StringView path) const {
    // Joined as text, unlike paths that are read: "/a" is written below the working folder.
    const ResourceManager& resources = *ResourceManager::getInstance();
    const ovMemory::Result saved = resources.saveFile(resources.getWorkingPath() + String(path), data);
    if (!saved)
        logMessage(_system, "Error when trying to open file saving : " + String(path), "ContentLoader");
    else if (!saved.warning.empty())
        logMessage(_system, saved.warning, "ContentLoader");
    return bool(saved);
}

bool ContentLoader::saveTreeDeclaration(const ovExport::Node* tree, StringView path) const {
    return tree && outputData(ovExport::JsonExporter().exportTreeIntoString(tree), path);
}

bool ContentLoader::saveObjectDeclaration(ovExport::Exportable* object, StringView path) const {
    return object && outputData(ovExport::JsonExporter().exportObjectIntoString(object), path);
}

// Materials of a file are always loaded: callers rely on it whatever flag they pass.
ContentLoader::Materials ContentLoader::loadMaterialDeclaration(StringView path, bool) const {
    return processMaterialSources(inputDataStr(path), true);
}

ContentLoader::Materials ContentLoader::processMaterialSources(StringView text, bool load) const {
    const ovExport::ExporterLoadResult parsed = inputDataSources(text);
    if (!parsed)
        return failed("Material Declaration import error. Parsing error.");
    if (parsed._tree->isObject())
        return processMaterialTree(parsed._tree.get(), load);
    if (parsed._tree->isArray())
        return _processMaterialArray(*parsed._tree, load);
    // "Script" although it is about materials: the words are part of the interface.
    return failed("Script Declaration import error. This is not an object nor an array.");
}

ContentLoader::Materials ContentLoader::_processMaterialArray(ovExport::Node& array, bool load) const {
    Materials result;
    for (unsigned int i = 0; i < array.getArraySize(); ++i) {
        Materials entry = processMaterialTree(array.getArrayElement(i), load);
        // One bad entry must not cost the others: files are edited by hand.
        if (entry._status == Materials::DONE) {
            result._results.push_back(entry._results.front());
            continue;
        }
        result._errors.push_back(std::move(entry._errors.front()));
        const String& detail = entry._details.front();
        result._details.push_back("entry " + std::to_string(i + 1) + (detail.empty() ? "" : ": ") + detail);
        result._status = Materials::PARTLY_DONE;
    }
    return result;
}

ContentLoader::Materials ContentLoader::processMaterialTree(ovExport::Node* node, bool load) const {
    String error;
    String detail;
    Material* const material = _createMaterial(node, error, detail);
    if (!material)
        return failed(std::move(error), std::move(detail));
    // An entry overwrites what it names and leaves the rest, so that a file may hold changes only.
    material->importClassFromTree(node);
    if (load) {
        material->unload();
        material->load();
    }
    Materials result;
    result._results.push_back(material);
    return result;
}

Material* ContentLoader::_createMaterial(ovExport::Node* node, String& error, String& detail) const {
    if (!node || !node->isObject()) {
        error = "Material Declaration entry not an object.";
        return nullptr;
    }
    const ovExport::Node* const name = getText(*node, "name");
    if (!name) {
        error = "Material Declaration entry incomplete. There is no name field.";
        return nullptr;
    }
    const ovExport::Node* const type = getText(*node, "type");
    if (!type) {
        error = "Material Declaration entry incomplete. There is no type field.";
        return nullptr;
    }
    const MATERIAL_TYPE materialType = MaterialTypeUtils::stringToEnum(type->getValueAsStringView());
    if (materialType == MATERIAL_TYPE::UNKNOWN) {
        error = "Material Declaration entry incomplete. Type field does not map to a known type.";
        detail = describeType(*name, *type);
        return nullptr;
    }
    MaterialManager* const materials = _system->getMaterialManager();
    Material* const material =
        materials ? materials->createOrRetrieve(name->getValueAsStringView(), materialType) : nullptr;
    if (!material)
        error = "Failed Material creation in Manager.";
    return material;
}

} // namespace ovVeldris
