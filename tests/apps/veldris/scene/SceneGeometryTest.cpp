#include <veldris/scene/SceneGeometry.h>

#include <ovGraphics/compositor/RenderContext.h>
#include <veldris/pictures/PictureTextures.h>
#include <veldris/scene/CornerScene.h>

namespace {

using ovGraphics::FORMAT;
using ovMemory::String;

class SceneGeometryTest : public CornerScene {};

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
        const auto depth = veldris::makeTarget(graphics, "depth", FORMAT::D32_FLOAT, SIDE, SIDE);
        ASSERT_TRUE(geometry);
        EXPECT_EQ(geometry->getNormals() != nullptr, withNormals);
        const auto compositor = ovGraphics::Compositor::create(&graphics);
        geometry->appendPass(*compositor->appendNode(), *depth, picture->getSolid(), picture->getCamera());
        ASSERT_TRUE(geometry->add(picture->getSolid(), *_material, ovGraphics::GLTF_ALPHA_MODE::OPAQUE));
        const auto context = ovGraphics::RenderContext::create(&graphics);
        context->setDescriptor({.texture = geometry->getPositions()});
        context->setCompositor(compositor.get());
        ASSERT_TRUE(graphics.frame(context.get())) << _session.getLogger().take();

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
