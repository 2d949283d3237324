#include <veldris/projects/ProjectSubject.h>

#include <ovGraphics/scene/RenderQueue.h>
#include <veldris/projects/ProjectTesting.h>

using namespace veldris;
using ovMemory::Buffer;
using ovMemory::String;

namespace {

/// What a project gives when it is loaded anew.
struct LoadedProject {
    explicit LoadedProject(const QuadProject& project) {
        openOnSoftware(session);
        subject = ProjectSubject::load(session, project.files, warnings, error);
    }
    Session session;
    Buffer<String> warnings;
    String error;
    ovMemory::UniquePtr<ProjectSubject> subject;
};

} // namespace

TEST(ProjectSubjectTest, hasTheSurfacesOfTheProject) {
    for (const bool blends : {false, true}) {
        const QuadProject project(blends ? R"(, "alphaMode": "BLEND")" : "");
        LoadedProject loaded(project);
        ASSERT_NE(loaded.subject, nullptr) << loaded.error;
        EXPECT_EQ(loaded.warnings, Buffer<String>());
        EXPECT_EQ(loaded.subject->getModel(), nullptr);
        ASSERT_EQ(loaded.subject->getMaterials().size(), 1u);
        EXPECT_EQ(loaded.subject->getMaterials().front().alphaMode,
                  blends ? ovGraphics::GLTF_ALPHA_MODE::BLEND : ovGraphics::GLTF_ALPHA_MODE::MASK);
        EXPECT_EQ(loaded.subject->getBoundingBox().getSize().y, 2.0f);
        const auto solid = ovGraphics::RenderQueue::create(&loaded.session.getGraphics());
        const auto blended = ovGraphics::RenderQueue::create(&loaded.session.getGraphics());
        loaded.subject->addTo(*solid, *blended);
        EXPECT_EQ(solid->getEntityCount(), blends ? 0u : 1u);
        EXPECT_EQ(blended->getEntityCount(), blends ? 1u : 0u);
    }
}

TEST(ProjectSubjectTest, leavesOutWhatIsHiddenAndSaysSoWhenNothingIsLeft) {
    const QuadProject project;
    QuadProject::edit(project.files.set, "\"visible\": true", "\"visible\": false");
    const LoadedProject loaded(project);
    EXPECT_EQ(loaded.subject, nullptr);
    EXPECT_EQ(loaded.error,
              "the project '" + project.files.set +
                  "' has nothing to draw: none of its queues has an entity with a mesh and a material; "
                  "veldris project check " +
                  project.files.set + " tells more.");
}

TEST(ProjectSubjectTest, tellsWhatTheLibraryLogs) {
    const QuadProject project;
    QuadProject::write(project.files.data, "cut");
    const LoadedProject loaded(project);
    EXPECT_EQ(loaded.subject, nullptr);
    EXPECT_FALSE(loaded.warnings.empty());
}
