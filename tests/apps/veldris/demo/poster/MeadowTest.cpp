#include <veldris/demo/poster/Meadow.h>

#include <cmath>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovImages/Image.h>
#include <veldris/SessionTesting.h>
#include <veldris/demo/SurfaceVertices.h>

namespace {

using ovMaths::Vector;

class MeadowTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session)); }

    veldris::Session _session;
};

TEST_F(MeadowTest, liesOnTopOfAHill) {
    for (float angle = 0.0f; angle < 6.28f; angle += 0.1f) {
        const auto heightAt = [&](float radius) {
            return veldris::meadowHeight(radius * std::cos(angle), radius * std::sin(angle));
        };
        for (float radius = 0.0f; radius < 30.0f; radius += 1.0f)
            EXPECT_TRUE(heightAt(radius) >= 0.0f && heightAt(radius) < 1.3f);
        EXPECT_LT(heightAt(300.0f), -100.0f);
    }
}

TEST_F(MeadowTest, theMeshLiesOnTheHeights) {
    const auto mesh = veldris::makeMeadow(_session.getGraphics(), 8.0f, 5);
    ASSERT_TRUE(mesh);
    const auto vertices = surfaceVertices(*mesh);
    ASSERT_EQ(vertices.size(), 5u * 5u * 3u);
    for (std::size_t i = 0; i < vertices.size(); i += 3) {
        EXPECT_FLOAT_EQ(vertices[i].y, veldris::meadowHeight(vertices[i].x, vertices[i].z));
        EXPECT_GT(vertices[i + 1].y, 0.5f) << "normals point up";
    }
    EXPECT_EQ(mesh->getBoundingBox().getMaximum().x, 8.0f);
}

TEST_F(MeadowTest, bladesStandOnADiscAndAreSeenFromBothSides) {
    constexpr unsigned int BLADES = 40;
    const auto grass = veldris::makeGrass(_session.getGraphics(), 0, BLADES);
    ASSERT_TRUE(grass);
    EXPECT_EQ(grass->getIndexCount(), BLADES * 3u * 12u);
    const auto vertices = surfaceVertices(*grass);
    const auto& indices = grass->getCurrentIndexArray();
    for (std::size_t i = 0; i < vertices.size(); i += 3) {
        const Vector& place = vertices[i];
        EXPECT_LE(place.x * place.x + place.z * place.z, 1.3f * 1.3f);
        EXPECT_TRUE(place.y >= 0.0f && place.y <= 0.5f);
    }
    // Every triangle has one of the same corners that turns the other way.
    for (std::size_t i = 0; i < indices.size(); i += 6) {
        EXPECT_EQ(indices[i], indices[i + 3]);
        EXPECT_EQ(indices[i + 1], indices[i + 5]);
        EXPECT_EQ(indices[i + 2], indices[i + 4]);
    }
    const auto other = veldris::makeGrass(_session.getGraphics(), 1, BLADES);
    EXPECT_NE(surfaceVertices(*other).front(), vertices.front());
}

TEST_F(MeadowTest, grassIsGreenAndItsTipsAreLighter) {
    const auto texture = veldris::paintGrass(_session.getGraphics());
    const auto ground = veldris::paintMeadow(_session.getGraphics(), 20.0f, 128);
    ASSERT_TRUE(texture && ground);
    const auto image = texture->convertToImage();
    const unsigned int last = image->getHeight() - 1;
    EXPECT_GT(image->getComponent(0, last, 1), 2.0f * image->getComponent(0, 0, 1));
    EXPECT_GT(image->getComponent(0, last, 1), 1.1f * image->getComponent(0, last, 0)) << "green";
    EXPECT_GT(image->getComponent(last, last, 0), image->getComponent(last, last, 1)) << "dry";
    const auto meadow = ground->convertToImage();
    EXPECT_LT(meadow->getComponent(100, 100, 2), meadow->getComponent(100, 100, 1)) << "no blue ground";
}

} // namespace
