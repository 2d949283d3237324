#include <veldris/scene/SceneGeometry.h>

#include <ovGraphics/compositor/RenderContext.h>
#include <veldris/pictures/PictureTextures.h>
#include <veldris/scene/CornerScene.h>

namespace {

using ovGraphics::FORMAT;
using ovMemory::String;

class SceneGeometryTest : public CornerScene {
protected:
    /// Draws what a picture has, of one material.
    void drawGeometry(veldris::SceneGeometry& geometry, veldris::ScenePicture& picture,
                      ovGraphics::GLTF_ALPHA_MODE alphaMode) {
        ovGraphics::System& graphics = _session.getGraphics();
        const auto depth = veldris::makeTarget(graphics, "depth", FORMAT::D32_FLOAT, SIDE, SIDE);
        const auto compositor = ovGraphics::Compositor::create(&graphics);
        geometry.appendPass(*compositor->appendNode(), *depth, picture.getSolid(), picture.getCamera());
        ASSERT_TRUE(geometry.add(picture.getSolid(), *_material, alphaMode));
        const auto context = ovGraphics::RenderContext::create(&graphics);
        context->setDescriptor({.texture = geometry.getPositions()});
        context->setCompositor(compositor.get());
        ASSERT_TRUE(graphics.frame(context.get())) << _session.getLogger().take();
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, SceneGeometryTest, testing::Values("glsl", "hlsl"),
                         [](const auto& test) { return String(test.param); });

TEST_P(SceneGeometryTest, holdsWhatIsSeen) {
    _wallHeight = 1.5f;
    _wall->setScale({8.0f, _wallHeight, 1.0f});
    const auto picture = makePicture(""); // its queue and its camera
    ovGraphics::System& graphics = _session.getGraphics();
    for (const bool withNormals : {false, true}) {
        const auto geometry = veldris::SceneGeometry::create(graphics, SIDE, SIDE, withNormals, 2);
        ASSERT_TRUE(geometry);
        EXPECT_EQ(geometry->getNormals() != nullptr, withNormals);
        drawGeometry(*geometry, *picture, ovGraphics::GLTF_ALPHA_MODE::OPAQUE);

        const FloatPicture positions = toFloats(*geometry->getPositions());
        const FloatPicture normals = withNormals ? toFloats(*geometry->getNormals()) : FloatPicture();
        const ssaoReference::View view = {&picture->getCamera(), SIDE, SIDE};
        for (unsigned int y = 0; y < SIDE; ++y)
            for (unsigned int x = 0; x < SIDE; ++x) {
                const ssaoReference::Point direction = view.directionOf(x, y);
                const ssaoReference::Hit seen = hit(direction);
                EXPECT_EQ(positions.at(x, y)[3], seen.z == 0.0 ? 0.0f : 1.0f) << x << ", " << y;
                for (unsigned int i = 0; i < 3; ++i) {
                    EXPECT_NEAR(positions.at(x, y)[i], direction[i] * seen.z, 2e-5) << x << ", " << y;
                    const double normal = withNormals ? double(normals.at(x, y)[i]) : seen.normal[i];
                    EXPECT_NEAR(normal, seen.normal[i], 1e-3) << x << ", " << y;
                }
            }
    }
}

TEST_P(SceneGeometryTest, aSizeBeyondTheDeviceIsNull) {
    EXPECT_EQ(veldris::SceneGeometry::create(_session.getGraphics(), 1u << 20, 4, true, 2), nullptr);
    EXPECT_NE(_session.getLogger().take(), "");
}

TEST_P(SceneGeometryTest, whatIsMaskedAsAWholeIsNotThere) {
    struct Case {
        float alpha, cutoff;
        bool isThere;
    };
    const auto picture = makePicture("");
    for (const Case& row : {Case{0.4f, 0.3f, true}, {0.3f, 0.4f, false}, {0.8f, 0.7f, true}}) {
        _material->setAlpha(row.alpha);
        _material->setAlphaCutoff(row.cutoff);
        for (unsigned int i = 0; i < picture->getSolid().getEntityCount(); ++i)
            picture->getSolid().getEntity(i)->setShader(nullptr, 2);
        const auto geometry = veldris::SceneGeometry::create(_session.getGraphics(), SIDE, SIDE, false, 2);
        drawGeometry(*geometry, *picture, ovGraphics::GLTF_ALPHA_MODE::MASK);
        EXPECT_EQ(toFloats(*geometry->getPositions()).at(16, 30)[3], row.isThere ? 1.0f : 0.0f) << row.alpha;
    }
}
