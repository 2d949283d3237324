#include <veldris/samples/SampleModel.h>

#include <cmath>
#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfEncoder.h>

namespace {

TEST(SampleModelTest, isAModelThatIsReadWithoutWarnings) {
    const auto bytes = veldris::makeSampleModel();
    const auto read = ovGraphics::GltfEncoder().decode(bytes);
    ASSERT_TRUE(read) << read.error;
    EXPECT_EQ(read.warning, "");
    ASSERT_EQ(read.scene->materials.size(), 2u);
    EXPECT_EQ(read.scene->materials[0].name, "ceramic");
    EXPECT_EQ(read.scene->materials[1].name, "brass");
    EXPECT_EQ(read.scene->images.size(), 1u);
    EXPECT_EQ(veldris::makeSampleModel(), bytes);
}

} // namespace
