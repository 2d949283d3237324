#include <veldris/projects/ProjectSubject.h>

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/MaterialSettings.h>
#include <veldris/Session.h>

namespace veldris {

using ovGraphics::GLTF_ALPHA_MODE;
using ovMemory::Buffer;
using ovMemory::String;
using ovVeldris::PbsMaterial;

namespace {

/// The material of the project whose shader an entity has; null for none.
PbsMaterial* materialOf(const ovGraphics::Entity& entity, const ovVeldris::ProjectLoadResult& project) {
    const ovGraphics::Shader* const shader = entity.getShader();
    const auto found = std::ranges::find_if(project._materials, [&](const ovVeldris::Material* material) {
        return shader && material->getShader() == shader;
    });
    return found == project._materials.end() ? nullptr : dynamic_cast<PbsMaterial*>(*found);
}

} // namespace

ovMemory::UniquePtr<ProjectSubject> ProjectSubject::load(Session& session, const ProjectFiles& files,
                                                         Buffer<String>& warnings, String& error) {
    if (!std::filesystem::is_regular_file(files.set)) {
        error = fmt::format("there is no project '{}'.", files.set);
        return nullptr;
    }
    const ProjectFolder folder(files);
    ovVeldris::MaterialSettingsReader settings(session.getSystem());
    ovVeldris::ProjectLoadQuery query;
    query._path = files.name;
    query._callback = &settings;
    const ovVeldris::ProjectLoadResult project = session.getSystem().getProjectLoader()->load(query);
    for (const String& line : session.getLogger().takeLines())
        warnings.push_back(line);
    ovMemory::UniquePtr<ProjectSubject> subject(new ProjectSubject);
    for (const ovGraphics::RenderQueue* queue : project._resourceSet._queues)
        subject->_addQueue(*queue, project);
    if (!subject->_parts.empty())
        return subject;
    error = fmt::format(
        "the project '{}' has nothing to draw: none of its queues has an entity with a mesh and a "
        "material; veldris project check {} tells more.",
        files.set, files.set);
    return nullptr;
}

void ProjectSubject::_addQueue(const ovGraphics::RenderQueue& queue,
                               const ovVeldris::ProjectLoadResult& project) {
    const bool isBlended = queue.getName() == BLENDED_QUEUE;
    for (unsigned int i = 0; i < queue.getEntityCount(); ++i) {
        const ovGraphics::Entity* const entity = queue.getEntity(i);
        PbsMaterial* const material = materialOf(*entity, project);
        if (!material || !entity->getMesh() || !entity->getVisible())
            continue;
        _parts.push_back({entity, isBlended});
        // Opaque surfaces have no alpha that a cut-off could meet: they are masked ones without holes.
        const auto known = std::ranges::find(_materials, material, &SubjectMaterial::material);
        if (known == _materials.end())
            _materials.push_back({material, isBlended ? GLTF_ALPHA_MODE::BLEND : GLTF_ALPHA_MODE::MASK});
    }
}

ovGraphics::BoundingBox ProjectSubject::getBoundingBox() const {
    ovGraphics::BoundingBox box;
    for (const Part& part : _parts) {
        const ovGraphics::Node* const node = part.entity->getNode();
        const ovGraphics::BoundingBox& own = part.entity->getMesh()->getBoundingBox();
        box.add(node ? own.getTransformed(node->getWorldMatrix()) : own);
    }
    return box;
}

void ProjectSubject::addTo(ovGraphics::RenderQueue& solid, ovGraphics::RenderQueue& blended) const {
    for (const Part& part : _parts)
        (part.isBlended ? blended : solid)
            .addEntity(part.entity->getMesh(), part.entity->getShader(), part.entity->getNode())
            ->setDoubleSided(part.entity->getDoubleSided());
}

} // namespace veldris
