// What a picture shows, wherever it comes from.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>
#include <ovGraphics/scene/BoundingBox.h>
#include <ovMemory/Memory.h>
#include <ovVeldris/content/Model.h>
#include <ovVeldris/materials/PbsMaterial.h>

namespace veldris {

/// A material of a subject, and how its surfaces cover what is behind them.
struct SubjectMaterial {
    ovVeldris::PbsMaterial* material;
    ovGraphics::GLTF_ALPHA_MODE alphaMode;
};

/// Surfaces with their materials.
class SceneSubject {
public:
    virtual ~SceneSubject();

    /// Each material once.
    virtual ovMemory::Buffer<SubjectMaterial> getMaterials() const = 0;
    /// Of all surfaces, in the world.
    virtual ovGraphics::BoundingBox getBoundingBox() const = 0;
    /// Adds an entity for every surface; materials must be loaded.
    virtual void addTo(ovGraphics::RenderQueue& solid, ovGraphics::RenderQueue& blended) const = 0;
    /// The model whose cameras may be chosen; null without one.
    virtual const ovVeldris::Model* getModel() const { return nullptr; }
};

/// A model of a file.
class ModelSubject : public SceneSubject {
public:
    /// @param model not null
    explicit ModelSubject(ovMemory::UniquePtr<ovVeldris::Model> model)
        : _model(std::move(model)) {}

    ovMemory::Buffer<SubjectMaterial> getMaterials() const override;
    ovGraphics::BoundingBox getBoundingBox() const override { return _model->getBoundingBox(); }
    void addTo(ovGraphics::RenderQueue& solid, ovGraphics::RenderQueue& blended) const override {
        _model->addTo(solid, blended);
    }
    const ovVeldris::Model* getModel() const override { return _model.get(); }

private:
    ovMemory::UniquePtr<ovVeldris::Model> _model;
};

} // namespace veldris
