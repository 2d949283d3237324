#include <ovVeldris/content/ModelLoader.h>

#include <ovGraphics/Managers.h>
#include <ovGraphics/gltf/GltfEncoder.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/detail/ModelMaterials.h>
#include <ovVeldris/content/detail/ModelMeshes.h>
#include <ovVeldris/content/detail/ModelNodes.h>
#include <ovVeldris/content/detail/ModelTextures.h>
#include <ovVeldris/core/GraphicsEngine.h>
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

} // namespace

/// Makes a model, part by part.
class ModelBuilder {
public:
    ModelBuilder(System& system, ovGraphics::System& graphics, const GltfScene& scene,
                 const ModelLoadProgress& progress)
        : _materials(*system.getMaterialManager())
        , _graphics(graphics)
        , _scene(scene)
        , _model(std::make_unique<Model>(&system))
        , _textures(graphics, scene, _model->_warnings, progress) {}

    ModelLoadResult build() {
        _model->_warnings = _scene.warnings;
        _model->_cameras = _scene.cameras;
        _model->_cameraNodes.resize(_scene.cameras.size());
        _model->_light = _scene.light;
        detail::ModelNodes nodes = detail::makeNodes(_graphics, _scene);
        _model->_root = std::move(nodes.root);
        _model->_nodes = std::move(nodes.ofFile);
        const bool complete = _addParts();
        // Also of a model that is not complete: they leave the managers with it.
        for (const detail::ModelTextures::Made& made : _textures.getMade())
            _model->_textures.push_back({made.texture, made.sampler});
        if (!complete)
            return ovMemory::failed<ModelLoadResult>(_error);
        ModelLoadResult result;
        result.model = std::move(_model);
        return result;
    }

private:
    bool _addParts() {
        for (std::size_t i = 0; i < _scene.nodes.size(); ++i) {
            if (_model->_nodes[i] && !_wear(_scene.nodes[i], _model->_nodes[i].get()))
                return false;
        }
        return true;
    }

    /// Gives a node what the file's wears.
    bool _wear(const GltfNode& source, ovGraphics::Node* node) {
        if (source.camera >= 0)
            _model->_cameraNodes[static_cast<std::size_t>(source.camera)] = node;
        if (source.mesh < 0)
            return true;
        const auto& primitives = _scene.meshes[static_cast<std::size_t>(source.mesh)].primitives;
        for (std::size_t i = 0; i < primitives.size(); ++i) {
            ovGraphics::Mesh* mesh = _meshOf(source.mesh, i);
            if (!mesh)
                return false;
            _model->_parts.push_back({mesh, node, _materialOf(primitives[i].material)});
        }
        return true;
    }

    /// The mesh of a primitive, shared by all nodes that wear it.
    ovGraphics::Mesh* _meshOf(int mesh, std::size_t primitive) {
        ovGraphics::Mesh*& made = _meshes[{mesh, primitive}];
        if (made)
            return made;
        const ovGraphics::GltfMesh& source = _scene.meshes[static_cast<std::size_t>(mesh)];
        const int material = source.primitives[primitive].material;
        const bool doubleSided =
            material >= 0 && _scene.materials[static_cast<std::size_t>(material)].doubleSided;
        const detail::LoadSteps::Scope step(_textures.getSteps(), MODEL_LOAD_STEP::UPLOADING);
        auto created = detail::makeMesh(_graphics, source.primitives[primitive], source.name, doubleSided);
        if (!created) {
            _error = "the mesh '" + source.name + "' could not be loaded; the log says why.";
            return nullptr;
        }
        return made = _model->_meshes.emplace_back(std::move(created)).get();
    }

    /// The place of a file's material among the model's, which it gets when it is first used.
    unsigned int _materialOf(int index) {
        const auto known = _places.find(index);
        if (known != _places.end())
            return known->second;
        const ovGraphics::GltfMaterial source =
            index < 0 ? defaultMaterial() : _scene.materials[static_cast<std::size_t>(index)];
        const String name = _freeName(source.name);
        auto* material = static_cast<PbsMaterial*>(_materials.createOrRetrieve(name, MATERIAL_TYPE::PBS));
        detail::applyMaterial(source, _textures, *material);
        const auto place = static_cast<unsigned int>(_model->_materials.size());
        _model->_materials.push_back({name, material, source.alphaMode});
        return _places[index] = place;
    }

    /// A name that no material of the manager has yet.
    String _freeName(const String& wanted) const {
        String name = wanted;
        for (unsigned int number = 2; _materials.get(name); ++number)
            name = wanted + " (" + std::to_string(number) + ")";
        return name;
    }

    MaterialManager& _materials;
    ovGraphics::System& _graphics;
    const GltfScene& _scene;
    ovMemory::UniquePtr<Model> _model;
    detail::ModelTextures _textures;
    std::map<int, unsigned int> _places;
    std::map<std::pair<int, std::size_t>, ovGraphics::Mesh*> _meshes;
    String _error;
};

ModelLoader::ModelLoader(System* system)
    : _system(system) {}

ModelLoader::~ModelLoader() = default;

ModelLoadResult ModelLoader::load(ovMemory::StringView path) const {
    if (_progress)
        _progress(MODEL_LOAD_STEP::DECODING, 0.0);
    const ovGraphics::GltfDecodeResult decoded = ovGraphics::GltfEncoder().decodeFile(path);
    if (!decoded)
        return ovMemory::failed<ModelLoadResult>(decoded.error, decoded.place);
    ModelLoadResult result = create(*decoded.scene);
    result.place = decoded.place;
    if (!result)
        result.error = "Could not make a model of '" + String(path) + "': " + result.error;
    return result;
}

ModelLoadResult ModelLoader::create(const GltfScene& scene) const {
    ovGraphics::System* graphics = graphicsSystemOf(_system.get());
    if (!graphics || !graphics->getIsInitialized() || !_system->getMaterialManager())
        return ovMemory::failed<ModelLoadResult>(
            "the system is not initialised; call System::initialize first.");
    return ModelBuilder(*_system, *graphics, scene, _progress).build();
}

} // namespace ovVeldris
