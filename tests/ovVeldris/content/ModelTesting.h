// What the tests of models share: small scenes made in code, as the reader of files would give them.
#pragma once

#include <cstring>
#include <initializer_list>
#include <ovGraphics/Managers.h>
#include <ovGraphics/gltf/GltfScene.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovImages/PngEncoder.h>
#include <ovVeldris/content/ModelLoader.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <ovVeldris/materials/PbsMaterial.h>

using Texel = std::array<unsigned char, 4>;

/// A PNG of a row of pixels.
inline ovMemory::Buffer<unsigned char> pngOf(std::initializer_list<Texel> texels, unsigned int channels = 4) {
    ovImages::Image image(static_cast<unsigned int>(texels.size()), 1, channels,
                          ovImages::COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::SRGB);
    unsigned char* out = image.getBytes().data();
    for (const Texel& texel : texels)
        out = std::copy_n(texel.begin(), channels, out);
    return ovImages::PngEncoder().encode(image.view()).bytes;
}

/// A scene of triangles, one below another: part i has the i-th material.
struct SceneOfCode : ovGraphics::GltfScene {
    /// Adds a picture and a texture that shows it. @return the texture's index
    int addTexture(const ovMemory::String& name, ovMemory::Buffer<unsigned char> bytes) {
        images.push_back({name, std::move(bytes)});
        ovGraphics::GltfTexture texture;
        texture.name = name;
        texture.image = static_cast<int>(images.size()) - 1;
        textures.push_back(texture);
        return static_cast<int>(textures.size()) - 1;
    }

    /// Adds a triangle with a material, and a node that wears it. @param material -1 for none
    void addPart(int material) {
        ovGraphics::GltfPrimitive primitive;
        primitive.composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
        primitive.composition.addAttribute("NORMAL", ovGraphics::FORMAT::R32G32B32_FLOAT);
        primitive.composition.addAttribute("TEXCOORD", ovGraphics::FORMAT::R32G32_FLOAT);
        const float vertices[3][8] = {
            {-1, -1, 0, 0, 0, -1, 0, 1}, {-1, 1, 0, 0, 0, -1, 0, 0}, {1, -1, 0, 0, 0, -1, 1, 1}};
        primitive.vertices.resize(sizeof(vertices));
        std::memcpy(primitive.vertices.data(), vertices, sizeof(vertices));
        primitive.vertexCount = 3;
        primitive.indices = {0, 1, 2};
        primitive.material = material;
        ovGraphics::GltfMesh mesh;
        mesh.name = "mesh " + std::to_string(meshes.size());
        mesh.primitives.push_back(primitive);
        meshes.push_back(mesh);
        ovGraphics::GltfNode node;
        node.name = "node " + std::to_string(nodes.size());
        node.mesh = static_cast<int>(meshes.size()) - 1;
        node.position = {0.0f, -static_cast<float>(nodes.size()), 0.0f};
        node.local.setPositionComponent(node.position);
        node.world = node.local;
        roots.push_back(static_cast<unsigned int>(nodes.size()));
        nodes.push_back(node);
    }

    /// Adds a material with a part that wears it.
    void addMaterial(ovGraphics::GltfMaterial material) {
        if (material.name.empty())
            material.name = "material " + std::to_string(materials.size());
        materials.push_back(std::move(material));
        addPart(static_cast<int>(materials.size()) - 1);
    }
};

/// Makes models of scenes of code; a model that cannot be made fails the test.
class ModelFixture : public EffectFixture {
protected:
    ovMemory::UniquePtr<ovVeldris::Model> make(const ovGraphics::GltfScene& scene) {
        ovVeldris::ModelLoadResult result = ovVeldris::ModelLoader(getSystem()).create(scene);
        EXPECT_TRUE(result) << result.error << getLog().getText();
        return std::move(result.model);
    }

    /// A model of one material; the fixture keeps it until the next call or the end.
    ovVeldris::PbsMaterial& makeMaterial(ovGraphics::GltfMaterial material) {
        _model.reset();
        _scene.addMaterial(std::move(material));
        _scene.roots = {static_cast<unsigned int>(_scene.nodes.size()) - 1};
        _model = make(_scene);
        return *_model->getMaterials().front().material;
    }

    void TearDown() override {
        _model.reset();
        EffectFixture::TearDown();
    }

    /// A texel of the first row of a texture's first mip, as it is stored.
    static Texel texelOf(ovGraphics::Texture* texture, unsigned int x) {
        Texel texel{};
        const auto bytes = texture ? texture->readBack() : std::nullopt;
        EXPECT_TRUE(bytes);
        if (bytes)
            std::copy_n(bytes->begin() + x * 4, 4, texel.begin());
        return texel;
    }

    SceneOfCode _scene;
    ovMemory::UniquePtr<ovVeldris::Model> _model;
};
