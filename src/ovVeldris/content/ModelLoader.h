// Models of files as they are drawn.
#pragma once

#include <ovMemory/Result.h>
#include <ovVeldris/content/Model.h>
#include <ovVeldris/content/ModelLoadProgress.h>

namespace ovVeldris {

/// A model, or why there is none.
struct ModelLoadResult : ovMemory::Result {
    ovMemory::UniquePtr<Model> model; ///< null on failure

    explicit operator bool() const { return model != nullptr; }
};

/// Makes meshes, nodes, textures and physically based materials of glTF files.
///
/// The material knows a diffuse colour and a reflectance, while files tell base colour and metalness. Where
/// both are numbers, or the metalness is the same all over, that is arithmetic; where they vary, textures of
/// diffuse colour ("<material> diffuse") and reflectance ("<material> reflectance") are computed from the
/// file's. Dielectrics reflect 4 %, as glTF 2.0, appendix B, has it. A picture that is missing is drawn as a
/// chequerboard of magenta and black. Surfaces with two sides get their back faces as triangles of their own,
/// so that both sides are lit from where they look.
class OV_API ModelLoader {
public:
    /// @param system not owned; models made without it, or after it is gone, fail
    explicit ModelLoader(System* system);
    ~ModelLoader();

    /// Who is told of what load() and create() do; an empty function ends it.
    void setProgress(ModelLoadProgress progress) { _progress = std::move(progress); }

    /// Reads a .glb or .gltf file. Materials are not loaded yet.
    ModelLoadResult load(ovMemory::StringView path) const;
    /// Makes a model of what was read.
    ModelLoadResult create(const ovGraphics::GltfScene& scene) const;

private:
    ovMemory::Borrowed<System> _system;
    ModelLoadProgress _progress;
};

} // namespace ovVeldris
