#include <gtest/gtest.h>
#include <ovVeldris/core/PictureContent.h>

using ovVeldris::PICTURE_CONTENT;

TEST(PictureContentTest, textsReadBack) {
    const std::pair<PICTURE_CONTENT, const char*> CASES[] = {
        {PICTURE_CONTENT::SCENE_LINEAR, "scene-linear"},
        {PICTURE_CONTENT::DISPLAY_LINEAR, "display-linear"},
        {PICTURE_CONTENT::SRGB_ENCODED, "srgb-encoded"},
    };
    for (const auto& [content, text] : CASES) {
        EXPECT_EQ(ovVeldris::toText(content), text);
        EXPECT_EQ(ovVeldris::contentFromText(text), content);
    }
    EXPECT_EQ(ovVeldris::contentFromText("linear"), std::nullopt);
}
