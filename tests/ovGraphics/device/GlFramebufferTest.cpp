#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

// Integers and depths have no averages: their mips take one texel of each four.
TEST(GlFramebuffer, mipsOfIntegersAndDepthsAreSingleTexels) {
    struct Row {
        FORMAT format;
        TEXTURE_TYPE type;
        unsigned int slices;
    };
    constexpr Row ROWS[] = {{FORMAT::R32_UINT, TEXTURE_TYPE::TEXTURE_2D, 1},
                            {FORMAT::R32_SINT, TEXTURE_TYPE::TEXTURE_2D, 3},
                            {FORMAT::R32_UINT, TEXTURE_TYPE::CUBE, 6},
                            {FORMAT::D32_FLOAT, TEXTURE_TYPE::TEXTURE_2D, 1},
                            {FORMAT::D24_UNORM_S8_UINT, TEXTURE_TYPE::TEXTURE_2D, 1}};
    constexpr unsigned int SIDE = 4;
    const auto device = openDevice();
    ASSERT_TRUE(device);
    for (const Row& row : ROWS) {
        TextureDesc desc = flat(row.format, SIDE, SIDE, 3);
        desc.type = row.type;
        desc.slices = row.slices;
        const auto texture = makeTexture(*device, desc);
        for (unsigned int slice = 0; slice < row.slices; ++slice) {
            ovMemory::Buffer<unsigned int> values;
            for (unsigned int i = 0; i < SIDE * SIDE; ++i)
                values.push_back(0x3c000000u + (i + slice * 100) * 65536); // floats in [0, 1] too
            device->uploadTexture(*texture, slice, 0, bytesOf(values), 0);
        }
        device->generateMips(*texture);
        for (unsigned int slice = 0; slice < row.slices; ++slice) {
            for (unsigned int mip = 1; mip < 3; ++mip) {
                const auto above = valuesOf<unsigned int>(readBytes(*device, *texture, slice, mip - 1));
                const auto level = valuesOf<unsigned int>(readBytes(*device, *texture, slice, mip));
                const unsigned int side = SIDE >> mip;
                ASSERT_EQ(level.size(), std::size_t{side} * side);
                for (unsigned int y = 0; y < side; ++y)
                    for (unsigned int x = 0; x < side; ++x) {
                        bool found = false;
                        for (unsigned int corner = 0; corner < 4; ++corner)
                            found = found || above[(2 * y + corner / 2) * side * 2 + 2 * x + corner % 2] ==
                                                 level[y * side + x];
                        EXPECT_TRUE(found) << TextureUtils::getFormatName(row.format) << ", slice " << slice
                                           << ", mip " << mip << ", texel " << x << ", " << y;
                    }
            }
        }
    }
    expectNoDriverErrors(*device);
}

} // namespace ovGraphics::device::testing
