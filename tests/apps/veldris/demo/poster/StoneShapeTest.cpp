#include <veldris/demo/poster/StoneShape.h>

#include <gtest/gtest.h>
#include <map>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovImages/Image.h>
#include <tuple>
#include <veldris/SessionTesting.h>
#include <veldris/demo/SurfaceVertices.h>

namespace {

using ovMaths::Vector;

class StoneShapeTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session)); }

    veldris::Session _session;
};

TEST_F(StoneShapeTest, isAClosedRoughBlock) {
    const auto stone = veldris::makeStone(_session.getGraphics(), 1);
    ASSERT_TRUE(stone);
    const ovGraphics::BoundingBox& box = stone->getBoundingBox();
    for (const float limit : {box.getMinimum().x, box.getMinimum().y, box.getMinimum().z})
        EXPECT_GE(limit, -1.1f);
    for (const float limit : {box.getMaximum().x, box.getMaximum().y, box.getMaximum().z}) {
        EXPECT_LE(limit, 1.1f);
        EXPECT_GE(limit, 0.6f);
    }
    // Faces meet without a gap: their edges have the same places, each twice, corners three times.
    const auto vertices = surfaceVertices(*stone);
    std::map<std::tuple<float, float, float>, int> places;
    unsigned int inwards = 0;
    for (std::size_t i = 0; i < vertices.size(); i += 3) {
        const auto rounded = [](float x) { return std::round(x * 1e4f); };
        ++places[{rounded(vertices[i].x), rounded(vertices[i].y), rounded(vertices[i].z)}];
        inwards += vertices[i].dotProductVec3(vertices[i + 1]) < 0.0f ? 1 : 0;
    }
    constexpr unsigned int GRID = 48;
    const unsigned int expected = 6 * (GRID - 2) * (GRID - 2) + 12 * (GRID - 2) + 8;
    EXPECT_NEAR(double(places.size()), expected, 40.0) << "but for roundings";
    EXPECT_LT(inwards, vertices.size() / 3 / 100) << "normals point outwards, but in cracks";
}

TEST_F(StoneShapeTest, noTwoKindsAreAlike) {
    const auto first = veldris::makeStone(_session.getGraphics(), 0);
    const auto second = veldris::makeStone(_session.getGraphics(), 1);
    ASSERT_TRUE(first && second);
    EXPECT_NE(surfaceVertices(*first).front(), surfaceVertices(*second).front());
}

TEST_F(StoneShapeTest, isPaintedGreyAndDarkerAtItsFoot) {
    const auto texture = veldris::paintStone(_session.getGraphics(), 0, 128);
    ASSERT_TRUE(texture);
    const auto image = texture->convertToImage();
    ASSERT_TRUE(image);
    // Of the six cells, three across, the third of the first row is the top, the first of the second the
    // foot.
    const auto meanOf = [&](unsigned int column, unsigned int row) {
        const unsigned int width = image->getWidth() / 3;
        const unsigned int height = image->getHeight() / 2;
        double sum = 0.0;
        for (unsigned int y = 0; y < height; y += 8)
            for (unsigned int x = 0; x < width; x += 8)
                sum += double(image->getComponent(column * width + x, row * height + y, 1));
        return sum;
    };
    EXPECT_GT(meanOf(2, 0), 1.08 * meanOf(0, 1));
}

} // namespace
