#include <veldris/demo/SkyScenes.h>

#include <gtest/gtest.h>
#include <map>
#include <support/TemporaryFolder.h>
#include <veldris/SessionTesting.h>

namespace {

TEST(SkyScenesTest, drawsTheSkyItsTablesAndALowSun) {
    const TemporaryFolder folder;
    veldris::Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session, {.cache = folder.getPath("cache")}));
    ovMemory::String error;
    std::map<ovMemory::String, ovImages::Image> pictures;
    const bool drawn = veldris::drawSkyPictures(
        session, 96, 48, "",
        [&](veldris::MaterialPicture& picture, ovMemory::String&) {
            EXPECT_TRUE(pictures.emplace(picture.name, *picture.texture->convertToImage()).second);
            return true;
        },
        error);
    ASSERT_TRUE(drawn) << error;
    ASSERT_EQ(pictures.size(), veldris::skyPictureNames().size());
    for (const auto name : veldris::skyPictureNames())
        ASSERT_TRUE(pictures.contains(ovMemory::String(name))) << name;

    // Cells of 32 x 24 with gaps of 4: the higher the sun, the brighter the sky beside it.
    const ovImages::Image& sheet = pictures["sky-sun-heights"];
    ASSERT_EQ(sheet.getWidth(), 3u * 36 + 4);
    ASSERT_EQ(sheet.getHeight(), 2u * 28 + 4);
    float before = 0.0f;
    for (unsigned int i = 0; i < 6; ++i) {
        const float blue = sheet.getComponent(4 + i % 3 * 36 + 2, 4 + i / 3 * 28 + 3, 2);
        EXPECT_GT(blue, 1.1f * before) << i;
        before = blue;
    }
    // Nothing arrives of a sun below, nearly all of one overhead as seen from the top of the air.
    const ovImages::Image& tables = pictures["sky-tables"];
    EXPECT_EQ(tables.getComponent(10, 10, 0), 0.0f);
    EXPECT_NEAR(tables.getComponent(760, 190, 2), 1.0f, 1e-3f);
    EXPECT_GT(tables.getComponent(760, 220, 2), 0.1f);
    // Blue above, and below it the ground, which the low sun reddens.
    const ovImages::Image& low = pictures["sky-low-sun"];
    EXPECT_GT(low.getComponent(3, 1, 2), low.getComponent(3, 1, 0));
    EXPECT_LT(low.getComponent(90, 46, 2), low.getComponent(90, 46, 0));
}

} // namespace
