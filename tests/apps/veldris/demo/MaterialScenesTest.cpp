#include <veldris/demo/MaterialScenes.h>

#include <cmath>
#include <gtest/gtest.h>
#include <set>
#include <veldris/Session.h>

namespace {

class MaterialScenesTest : public testing::Test {
protected:
    void SetUp() override {
        veldris::DrawingOptions options;
        options.device = "software";
        options.noCache = true;
        ovMemory::String error;
        ASSERT_TRUE(_session.open(options, error)) << error;
    }

    veldris::Session _session;
};

TEST_F(MaterialScenesTest, drawsPicturesThatDifferAndHoldNumbers) {
    std::set<ovMemory::StringView> names;
    ovMemory::String error;
    const bool drawn = veldris::drawMaterialPictures(
        _session, 64, 36,
        [&](veldris::MaterialPicture& picture, ovMemory::String&) {
            EXPECT_TRUE(names.insert(picture.name).second) << picture.name;
            EXPECT_FALSE(picture.caption.empty());
            const auto image = picture.texture->convertToImage();
            EXPECT_EQ(image->getWidth(), 64u);
            std::set<float> values;
            for (unsigned int x = 0; x < 64; ++x) {
                const float value = image->getComponent(x, 18, 0);
                EXPECT_TRUE(std::isfinite(value)) << picture.name;
                values.insert(value);
            }
            EXPECT_GT(values.size(), 10u) << picture.name << " shows something in its middle row";
            return true;
        },
        error);
    EXPECT_TRUE(drawn) << error;
    EXPECT_GE(names.size(), 4u);
}

TEST_F(MaterialScenesTest, stopsWhereThePicturesGoWrong) {
    int taken = 0;
    ovMemory::String error;
    const auto refuse = [&](veldris::MaterialPicture&, ovMemory::String& reason) {
        ++taken;
        reason = "the disk is full";
        return false;
    };
    EXPECT_FALSE(veldris::drawMaterialPictures(_session, 32, 32, refuse, error));
    EXPECT_EQ(taken, 1);
    EXPECT_EQ(error, "the disk is full");
}

} // namespace
