#include <veldris/demo/MaterialScenes.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <ovGraphics/resources/Camera.h>
#include <veldris/SessionTesting.h>
#include <veldris/scene/BuiltInSky.h>

namespace {

using ovMaths::Vector;

class MaterialScenesTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session)); }

    veldris::Session _session;
};

/// Where the spheres of a picture are, and from where it is looked at.
struct Expected {
    ovMemory::StringView name;
    veldris::CameraChoice camera;
    ovMemory::Buffer<Vector> spheres; ///< centres; of radius 1
};

veldris::CameraChoice orbit(float azimuth, float elevation) {
    veldris::CameraChoice choice;
    choice.azimuth = azimuth;
    choice.elevation = elevation;
    return choice;
}

ovMemory::Buffer<Vector> gridOf(int columns, int rows, float distance) {
    ovMemory::Buffer<Vector> spheres;
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            spheres.emplace_back(distance * static_cast<float>(column), distance * static_cast<float>(row),
                                 0.0f);
    return spheres;
}

/// Whether a ray passes well inside one of the spheres.
bool hits(const Vector& eye, const Vector& direction, const ovMemory::Buffer<Vector>& spheres) {
    return std::any_of(spheres.begin(), spheres.end(), [&](const Vector& center) {
        return Vector::crossVec3(center - eye, direction).getLengthVec3() < 0.9f;
    });
}

TEST_F(MaterialScenesTest, showsEachSphereWhereItIs) {
    const Expected pictures[] = {
        {"spheres-metalness", orbit(0.0f, 5.0f), gridOf(7, 4, 2.2f)},
        {"spheres-glossiness", orbit(0.0f, 5.0f), gridOf(7, 4, 2.2f)},
        {"ground-shadow", orbit(20.0f, 28.0f), {{-2.6f, 0.0f, 0.0f}, {0.0f, 0.0f, 0.8f}, {2.6f, 0.0f, 0.0f}}},
        {"channel-packing", orbit(0.0f, 12.0f), gridOf(5, 1, 2.3f)},
    };
    constexpr unsigned int WIDTH = 96;
    constexpr unsigned int HEIGHT = 54;
    const Vector towardsSun = Vector(-0.5f, 0.75f, -0.6f).getNormalizedVec3();
    std::size_t count = 0;
    ovMemory::String error;
    const auto check = [&](veldris::MaterialPicture& picture, ovMemory::String&) {
        const Expected& expected = pictures[count++];
        EXPECT_EQ(picture.name, expected.name);
        EXPECT_FALSE(picture.caption.empty());
        ovGraphics::BoundingBox box;
        for (const Vector& center : expected.spheres)
            box.add(ovGraphics::BoundingBox::newCube(center, 2.0f));
        const auto camera = ovGraphics::Camera::create(&_session.getGraphics());
        EXPECT_TRUE(
            veldris::placeCamera(expected.camera, box, nullptr, float(WIDTH) / HEIGHT, *camera, error));
        const auto image = picture.texture->convertToImage();
        unsigned int covered = 0;
        unsigned int unlikeTheSky = 0;
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x) {
                const Vector ray =
                    camera->getDirectionAtPixelWorld((float(x) + 0.5f) / WIDTH, (float(y) + 0.5f) / HEIGHT);
                const Vector color(image->getComponent(x, y, 0), image->getComponent(x, y, 1),
                                   image->getComponent(x, y, 2));
                EXPECT_TRUE(std::isfinite(color.x + color.y + color.z)) << picture.name;
                const Vector sky = veldris::skyRadiance(ray, towardsSun);
                if (!hits(camera->getPosition(), ray, expected.spheres))
                    continue;
                ++covered;
                unlikeTheSky += (color - sky).getLengthVec3() > 0.05f * sky.getLengthVec3() ? 1 : 0;
            }
        EXPECT_GT(covered, WIDTH * HEIGHT / 8) << picture.name;
        // Here and there a sphere has the brightness of what is behind it, and some have holes.
        EXPECT_GT(unlikeTheSky, covered * 8 / 10) << picture.name;
        return true;
    };
    EXPECT_TRUE(veldris::drawMaterialPictures(_session, WIDTH, HEIGHT, "", check, error)) << error;
    EXPECT_EQ(count, std::size(pictures));
}

TEST_F(MaterialScenesTest, stopsWhereThePicturesGoWrong) {
    int taken = 0;
    ovMemory::String error;
    const auto refuse = [&](veldris::MaterialPicture&, ovMemory::String& reason) {
        ++taken;
        reason = "the disk is full";
        return false;
    };
    EXPECT_FALSE(veldris::drawMaterialPictures(_session, 32, 32, "", refuse, error));
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(error, "the disk is full");
}

} // namespace
