#include <ovImages/cubes/CubeMap.h>

#include <gtest/gtest.h>

namespace {

using ovImages::Image;

TEST(CubeMapTest, facesLieBelowEachOther) {
    Image mip(2, 12, 3, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    for (unsigned int y = 0; y < 12; ++y)
        mip.setComponent(1, y, 2, static_cast<float>(y));
    for (unsigned int face = 0; face < ovImages::FACE_COUNT; ++face) {
        const ovImages::ImageView view = ovImages::faceOf(mip, face);
        ASSERT_TRUE(ovImages::isValid(view));
        EXPECT_EQ(view.height, 2u);
        EXPECT_EQ(view.bytes.data(), mip.getBytes().data() + face * 2 * 2 * 3 * sizeof(float));
        EXPECT_EQ(ovImages::faceBytesOf(mip, face).data(), view.bytes.data());
        EXPECT_EQ(ovImages::faceBytesOf(mip, face).size(), view.bytes.size());
    }
}

TEST(CubeMapTest, theSideIsThatOfTheFirstMip) {
    ovImages::CubeMap cube;
    EXPECT_EQ(cube.getSide(), 0u);
    cube.mips.emplace_back(5, 30, 4, ovImages::COMPONENT_TYPE::HALF, ovImages::COLOR_ENCODING::LINEAR);
    EXPECT_EQ(cube.getSide(), 5u);
}

} // namespace
