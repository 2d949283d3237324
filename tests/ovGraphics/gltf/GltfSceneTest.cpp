#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfTesting.h>

using namespace ovGraphics;
using ovImages::COLOR_ENCODING;

TEST(GltfSceneTest, decodesImagesAsTheirUseSays) {
    GltfImage image;
    image.name = "Red";
    image.bytes = makePng();
    for (const COLOR_ENCODING encoding : {COLOR_ENCODING::SRGB, COLOR_ENCODING::LINEAR}) {
        const ovImages::DecodeResult result = image.decode(encoding);
        ASSERT_TRUE(result) << result.error;
        EXPECT_EQ(result.image->getEncoding(), encoding);
        EXPECT_EQ(result.image->getWidth(), 1u);
        EXPECT_EQ(result.image->getComponent(0, 0, 0), 1.0f);
        EXPECT_EQ(result.image->getComponent(0, 0, 1), 0.0f);
    }
}

TEST(GltfSceneTest, saysWhyAnImageCannotBeDecoded) {
    GltfImage image;
    image.name = "Red";
    EXPECT_TRUE(image.isMissing());
    EXPECT_EQ(image.decode(COLOR_ENCODING::SRGB).error, "image \"Red\" is missing");
    image.bytes = makePng();
    image.bytes.resize(image.bytes.size() / 2);
    EXPECT_FALSE(image.isMissing());
    const ovImages::DecodeResult cut = image.decode(COLOR_ENCODING::SRGB);
    EXPECT_FALSE(cut);
    EXPECT_EQ(cut.error.rfind("image \"Red\": ", 0), 0u) << cut.error;
    image.bytes = makePng();
    EXPECT_FALSE(image.decode(COLOR_ENCODING::SRGB, 3));
}
