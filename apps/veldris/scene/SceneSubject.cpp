#include <veldris/scene/SceneSubject.h>

namespace veldris {

SceneSubject::~SceneSubject() = default;

ovMemory::Buffer<SubjectMaterial> ModelSubject::getMaterials() const {
    ovMemory::Buffer<SubjectMaterial> materials;
    for (const ovVeldris::ModelMaterial& own : _model->getMaterials())
        materials.push_back({own.material.get(), own.alphaMode});
    return materials;
}

} // namespace veldris
