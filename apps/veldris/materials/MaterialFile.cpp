#include <veldris/materials/MaterialFile.h>

#include <algorithm>
#include <ovExport/JsonExporter.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ContentLoader.h>
#include <ovVeldris/content/MaterialSettings.h>
#include <unordered_set>

namespace veldris {

namespace {

using ovExport::Node;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::StringView;
using ovVeldris::PbsMaterial;

/// Whether an entry has all that the library asks for before it asks its manager.
bool isDeclaration(const Node& entry) {
    const Node* const name = entry.getMemberValue("name");
    const Node* const type = entry.getMemberValue("type");
    return name && name->isString() && type && type->isString() &&
           ovVeldris::MaterialTypeUtils::stringToEnum(type->getValueAsStringView()) ==
               ovVeldris::MATERIAL_TYPE::PBS;
}

PbsMaterial* readEntry(const DeclaredEntry& entry, ovVeldris::System& system,
                       Buffer<DeclarationProblem>& problems) {
    // Asked before the loader, so that its only failure left is the manager's, which then gets the right
    // message.
    if (!isDeclaration(*entry.node))
        return nullptr; // the check has told why
    const auto result = system.getContentLoader()->processMaterialTree(entry.node, false);
    auto* const material =
        result._results.empty() ? nullptr : dynamic_cast<PbsMaterial*>(result._results.front());
    if (material)
        ovVeldris::MaterialSettingsReader(system).onMaterial(material, entry.node);
    else
        problems.push_back(
            {entry.line, "material \"" + entry.node->getMemberValue("name")->getValueAsString() +
                             "\": the material manager refuses the name; rename the material."});
    return material;
}

} // namespace

ovMemory::String writeMaterialFile(ovMemory::BufferView<PbsMaterial* const> materials) {
    const auto root = Node::create(ovExport::NODE_NATURE::ARRAY);
    for (PbsMaterial* const material : materials) {
        Node* const entry = root->addElement();
        material->exportClassToTree(entry);
        ovVeldris::MaterialSettingsWriter().onMaterial(material, entry);
    }
    return ovExport::JsonExporter().exportTreeIntoString(root.get()) + "\n";
}

Buffer<PbsMaterial*> readMaterialFile(StringView path, ovVeldris::System& system,
                                      Buffer<DeclarationProblem>& problems) {
    DeclarationFile file;
    ovMemory::String error;
    problems.clear();
    if (!checkDeclarationFile(path, file, error)) {
        problems.push_back({0, error});
        return {};
    }
    problems = std::move(file.problems);
    Buffer<PbsMaterial*> materials;
    std::unordered_set<const PbsMaterial*> seen;
    for (const DeclaredEntry& entry : file.entries) {
        PbsMaterial* const material = readEntry(entry, system, problems);
        // Two entries of one name describe one material, the second over the first.
        if (material && seen.insert(material).second)
            materials.push_back(material);
    }
    std::stable_sort(problems.begin(), problems.end(),
                     [](const auto& left, const auto& right) { return left.line < right.line; });
    return materials;
}

} // namespace veldris
