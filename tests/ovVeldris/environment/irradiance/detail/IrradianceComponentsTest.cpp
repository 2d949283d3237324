#include <gtest/gtest.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovVeldris/environment/irradiance/detail/IrradianceComponents.h>

using namespace ovVeldris;
using ovGraphics::FORMAT;

TEST(IrradianceComponentsTest, knowsTheTypeOfListedFormats) {
    struct Case {
        unsigned int format;
        IRRADIANCE_COMPONENT component;
        unsigned int channels;
        std::size_t texelSize;
        double scale;
    };
    const Case cases[] = {
        {1, IRRADIANCE_COMPONENT::FLOAT32, 4, 16, 1.0}, {2, IRRADIANCE_COMPONENT::FLOAT32, 4, 16, 1.0},
        {3, IRRADIANCE_COMPONENT::UINT32, 4, 16, 1.0},  {4, IRRADIANCE_COMPONENT::SINT32, 4, 16, 1.0},
        {5, IRRADIANCE_COMPONENT::FLOAT32, 3, 12, 1.0}, {6, IRRADIANCE_COMPONENT::FLOAT32, 3, 12, 1.0},
        {7, IRRADIANCE_COMPONENT::UINT32, 3, 12, 1.0},  {8, IRRADIANCE_COMPONENT::SINT32, 3, 12, 1.0},
        {27, IRRADIANCE_COMPONENT::UINT8, 4, 4, 255.0}, {28, IRRADIANCE_COMPONENT::UINT8, 4, 4, 255.0},
        {29, IRRADIANCE_COMPONENT::UINT8, 4, 4, 255.0}, {30, IRRADIANCE_COMPONENT::UINT8, 4, 4, 1.0},
        {31, IRRADIANCE_COMPONENT::SINT8, 4, 4, 1.0},   {32, IRRADIANCE_COMPONENT::SINT8, 4, 4, 1.0},
    };
    unsigned int listed = 0;
    for (unsigned int format = 0; format < 100; ++format)
        listed += irradianceComponentsOf(FORMAT(format)).isListed ? 1u : 0u;
    EXPECT_EQ(listed, std::size(cases));
    for (const Case& row : cases) {
        const IrradianceComponents components = irradianceComponentsOf(FORMAT(row.format));
        EXPECT_TRUE(components.isListed) << row.format;
        EXPECT_EQ(components.component, row.component) << row.format;
        EXPECT_EQ(components.channels, row.channels) << row.format;
        EXPECT_EQ(components.texelSize, row.texelSize) << row.format;
        EXPECT_EQ(components.scale, row.scale) << row.format;
    }
}

TEST(IrradianceComponentsTest, readsOtherFormatsAsBytes) {
    struct Case {
        FORMAT format;
        unsigned int channels;
        std::size_t texelSize;
        double scale;
    };
    const Case cases[] = {
        {FORMAT::R16G16B16A16_FLOAT, 4, 8, 1.0},
        {FORMAT::R32G32_FLOAT, 2, 8, 1.0},
        {FORMAT::R10G10B10A2_UNORM, 4, 4, 1.0},
        {FORMAT::R11G11B10_FLOAT, 3, 4, 1.0},
        {FORMAT::R32_FLOAT, 1, 4, 1.0},
        {FORMAT::R8G8_UNORM, 2, 2, 255.0},
        {FORMAT::R8_UNORM, 1, 1, 255.0},
        {FORMAT::A8_UNORM, 1, 1, 255.0},
        {FORMAT::R9G9B9E5_SHAREDEXP, 3, 4, 1.0},
        {FORMAT::B5G6R5_UNORM, 2, 2, 1.0},   // three channels in two bytes: there is no third byte
        {FORMAT::B5G5R5A1_UNORM, 2, 2, 1.0}, // nor a fourth
        {FORMAT::B8G8R8A8_UNORM, 4, 4, 255.0},
        {FORMAT::B8G8R8X8_UNORM, 3, 4, 255.0},
        {FORMAT::D24_UNORM_S8_UINT, 2, 4, 1.0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(ovGraphics::TextureUtils::getFormatName(row.format));
        const IrradianceComponents components = irradianceComponentsOf(row.format);
        EXPECT_FALSE(components.isListed);
        EXPECT_EQ(components.component, IRRADIANCE_COMPONENT::UINT8);
        EXPECT_EQ(components.channels, row.channels);
        EXPECT_EQ(components.texelSize, row.texelSize);
        EXPECT_EQ(components.scale, row.scale);
    }
}

TEST(IrradianceComponentsTest, findsNoTexelsInBlocks) {
    for (const FORMAT format :
         {FORMAT::UNKNOWN, FORMAT::R1_UNORM, FORMAT::R8G8_B8G8_UNORM, FORMAT::G8R8_G8B8_UNORM,
          FORMAT::BC1_UNORM, FORMAT::BC7_UNORM_SRGB, FORMAT(100), FORMAT(4294967295u)})
        EXPECT_EQ(irradianceComponentsOf(format).channels, 0u) << unsigned(format);
}
