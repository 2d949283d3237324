#include <veldris/demo/EnvironmentScenes.h>

#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <support/TemporaryFolder.h>
#include <veldris/SessionTesting.h>

namespace {

TEST(EnvironmentScenesTest, drawsEnvironmentsTheirFilteringAndProjections) {
    const TemporaryFolder folder;
    veldris::Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session, {.cache = folder.getPath("cache")}));
    ovMemory::String error;
    std::map<ovMemory::String, ovImages::Image> pictures;
    const bool drawn = veldris::drawEnvironmentPictures(
        session, 64, 36, "",
        [&](veldris::MaterialPicture& picture, ovMemory::String&) {
            EXPECT_TRUE(pictures.emplace(picture.name, *picture.texture->convertToImage()).second)
                << picture.name;
            return true;
        },
        error);
    ASSERT_TRUE(drawn) << error;
    for (const char* name : {"environment-sky", "environment-studio", "environment-dusk", "prefiltered-mips",
                             "projection-flat", "projection-cube", "projection-equirectangular"})
        ASSERT_TRUE(pictures.contains(name)) << name;

    // A view into the cube and one into the panorama it was made of are the same view.
    const ovImages::Image& cube = pictures["projection-cube"];
    const ovImages::Image& panorama = pictures["projection-equirectangular"];
    for (unsigned int y = 0; y < 36; ++y) {
        if (std::abs(static_cast<int>(y) - 20) < 4)
            continue; // across the horizon the two differ by less than a texel, which is much light
        for (unsigned int x = 0; x < 64; ++x) {
            for (unsigned int channel = 0; channel < 3; ++channel)
                EXPECT_NEAR(cube.getComponent(x, y, channel), panorama.getComponent(x, y, channel),
                            0.02f + 0.05f * panorama.getComponent(x, y, channel))
                    << x << ' ' << y;
        }
    }
    // The first row of the strip is the environment: sky above ground.
    const ovImages::Image& strip = pictures["prefiltered-mips"];
    EXPECT_GT(strip.getComponent(64, 20, 2), 2.0f * strip.getComponent(64, 110, 2));
}

} // namespace
