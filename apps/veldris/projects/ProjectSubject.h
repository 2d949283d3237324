// A project as a picture shows it.
#pragma once

#include <ovMemory/Borrowed.h>
#include <ovVeldris/content/ProjectLoader.h>
#include <veldris/projects/ProjectFiles.h>
#include <veldris/scene/SceneSubject.h>

namespace veldris {

class Session;

/// The queue of a project whose entities are drawn blended, from back to front, behind all others.
inline constexpr ovMemory::StringView BLENDED_QUEUE = "blended";
/// The queue that the program puts all others into.
inline constexpr ovMemory::StringView SOLID_QUEUE = "solid";

/// The visible entities of a project's queues that have a mesh and a physically based material.
class ProjectSubject : public SceneSubject {
public:
    /// Loads a project into the session's system.
    /// @param warnings gets a line for each thing that is wrong with it
    /// @return null with one line in error when there is nothing to draw
    static ovMemory::UniquePtr<ProjectSubject> load(Session& session, const ProjectFiles& files,
                                                    ovMemory::Buffer<ovMemory::String>& warnings,
                                                    ovMemory::String& error);

    ovMemory::Buffer<SubjectMaterial> getMaterials() const override { return _materials; }
    ovGraphics::BoundingBox getBoundingBox() const override;
    void addTo(ovGraphics::RenderQueue& solid, ovGraphics::RenderQueue& blended) const override;

private:
    ProjectSubject() = default;
    void _addQueue(const ovGraphics::RenderQueue& queue, const ovVeldris::ProjectLoadResult& project);

    struct Part {
        const ovGraphics::Entity* entity;
        bool isBlended;
    };
    ovMemory::Buffer<Part> _parts;
    ovMemory::Buffer<SubjectMaterial> _materials;
};

} // namespace veldris
