#include <veldris/scene/SceneSubject.h>

#include <ovGraphics/scene/RenderQueue.h>
#include <ovVeldris/content/ModelLoader.h>
#include <veldris/SessionTesting.h>
#include <veldris/commands/ModelFile.h>

TEST(SceneSubjectTest, isAModelWithItsMaterials) {
    const TemporaryFolder folder;
    veldris::Session session;
    openOnSoftware(session);
    auto loaded =
        ovVeldris::ModelLoader(&session.getSystem()).load(writeQuad(folder, R"(, "alphaMode": "BLEND")"));
    ASSERT_TRUE(loaded) << loaded.error;
    const ovVeldris::Model* const model = loaded.model.get();
    const veldris::ModelSubject subject(std::move(loaded.model));
    EXPECT_EQ(subject.getModel(), model);
    ASSERT_EQ(subject.getMaterials().size(), 1u);
    EXPECT_EQ(subject.getMaterials().front().material->getName(), "paint");
    EXPECT_EQ(subject.getMaterials().front().alphaMode, ovGraphics::GLTF_ALPHA_MODE::BLEND);
    EXPECT_EQ(subject.getBoundingBox().getSize().x, 2.0f);
    ASSERT_TRUE(subject.getMaterials().front().material->load());
    const auto solid = ovGraphics::RenderQueue::create(&session.getGraphics());
    const auto blended = ovGraphics::RenderQueue::create(&session.getGraphics());
    subject.addTo(*solid, *blended);
    EXPECT_EQ(solid->getEntityCount(), 0u);
    EXPECT_EQ(blended->getEntityCount(), 1u);
}
