#include <ovVeldris/content/ModelLoader.h>

#include <ovGraphics/gltf/GltfEncoder.h>
#include <ovGraphics/resources/Managers.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovVeldris/content/detail/ModelMaterials.h>
#include <ovVeldris/content/detail/ModelMeshes.h>
#include <ovVeldris/content/detail/ModelTextures.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/System.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <ovVeldris/materials/PbsMaterial.h>

namespace ovVeldris {

using ovGraphics::GltfNode;
using ovGraphics::GltfScene;
using ovMemory::String;

namespace {

/// The material of primitives that name none.
ovGraphics::GltfMaterial defaultMaterial() {
    ovGraphics::GltfMaterial material;
    material.name = "default material";
    return material;
}

/// The nodes that the roots reach.
ovMemory::Buffer<char> reachedNodes(const GltfScene& scene) {
    ovMemory::Buffer<char> reached(scene.nodes.size());
    ovMemory::Buffer<unsigned int> open = scene.roots;
    while (!open.empty()) {
        const unsigned int node = open.back();
        open.pop_back();
        reached[node] = 1;
        const auto& children = scene.nodes[node].children;
        open.insert(open.end(), children.begin(), children.end());
    }
    return reached;
}

/// A name that no material of the manager has yet.
String freeName(const MaterialManager& materials, const String& wanted) {
    String name = wanted;
    for (unsigned int number = 2; materials.get(name); ++number)
        name = wanted + " (" + std::to_string(number) + ")";
    return name;
}

} // namespace

ModelLoadResult ModelLoader::load(ovMemory::StringView path) const {
    const ovGraphics::GltfDecodeResult decoded = ovGraphics::GltfEncoder().decodeFile(path);
    if (!decoded)
        return {nullptr, decoded.error};
    ModelLoadResult result = create(*decoded.scene);
    if (!result)
        result.error = "Could not make a model of '" + String(path) + "': " + result.error;
    return result;
}

ModelLoadResult ModelLoader::create(const GltfScene& scene) const {
    ovGraphics::System* graphics = _system->getGraphicsEngine()->getGraphicsSystem();
    MaterialManager* manager = _system->getMaterialManager();
    if (!graphics || !manager)
        return {nullptr, "the system is not initialised; call System::initialize first."};
    auto model = std::make_unique<Model>(_system);
    model->_warnings = scene.warnings;
    model->_cameras = scene.cameras;
    model->_light = scene.light;
    model->_boundingBox = scene.boundingBox;
    detail::ModelTextures textures(*graphics, scene, model->_warnings);

    std::map<int, unsigned int> places; // of a file's material among the model's
    const auto materialOf = [&](int index) {
        const auto [place, isNew] =
            places.try_emplace(index, static_cast<unsigned int>(model->_materials.size()));
        if (!isNew)
            return place->second;
        const ovGraphics::GltfMaterial source =
            index < 0 ? defaultMaterial() : scene.materials[static_cast<std::size_t>(index)];
        const String name = freeName(*manager, source.name);
        auto* material = static_cast<PbsMaterial*>(manager->createOrRetrieve(name, MATERIAL_TYPE::PBS));
        detail::applyMaterial(source, textures, *material);
        model->_materials.push_back({name, material, source.alphaMode});
        return place->second;
    };

    model->_cameraNodes.resize(scene.cameras.size());
    const ovMemory::Buffer<char> reached = reachedNodes(scene);
    std::map<std::pair<int, std::size_t>, ovGraphics::Mesh*> meshes;
    for (std::size_t i = 0; i < scene.nodes.size(); ++i) {
        const GltfNode& source = scene.nodes[i];
        ovGraphics::Node* node = model->_nodes.emplace_back(ovGraphics::Node::create(graphics)).get();
        node->setName(source.name);
        node->setLocalMatrix(source.world); // the file's tree is static: places are in the world at once
        if (source.camera >= 0 && reached[i])
            model->_cameraNodes[static_cast<std::size_t>(source.camera)] = node;
        if (source.mesh < 0 || !reached[i])
            continue;
        const ovGraphics::GltfMesh& mesh = scene.meshes[static_cast<std::size_t>(source.mesh)];
        for (std::size_t j = 0; j < mesh.primitives.size(); ++j) {
            const ovGraphics::GltfPrimitive& primitive = mesh.primitives[j];
            ovGraphics::Mesh*& made = meshes[{source.mesh, j}];
            if (!made) {
                const bool doubleSided =
                    primitive.material >= 0 &&
                    scene.materials[static_cast<std::size_t>(primitive.material)].doubleSided;
                auto created = detail::makeMesh(*graphics, primitive, mesh.name, doubleSided);
                if (!created)
                    return {nullptr, "the mesh '" + mesh.name + "' could not be loaded; the log says why."};
                made = model->_meshes.emplace_back(std::move(created)).get();
            }
            model->_parts.push_back({made, node, materialOf(primitive.material)});
        }
    }
    for (const detail::ModelTextures::Made& made : textures.getMade())
        model->_textures.push_back({made.texture, made.sampler});
    return {std::move(model), {}};
}

} // namespace ovVeldris
