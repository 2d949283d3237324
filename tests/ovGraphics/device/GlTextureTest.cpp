#include <algorithm>
#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

namespace {

TextureDesc cube(FORMAT format, unsigned int side, unsigned int mips = 1, unsigned int slices = 6) {
    TextureDesc desc = flat(format, side, side, mips);
    desc.type = TEXTURE_TYPE::CUBE;
    desc.slices = slices;
    return desc;
}

TextureDesc arrayOf(FORMAT format, unsigned int width, unsigned int height, unsigned int slices,
                    unsigned int mips = 1) {
    TextureDesc desc = flat(format, width, height, mips);
    desc.slices = slices;
    return desc;
}

Bytes countingBytes(std::size_t size, unsigned int seed) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 + seed * 31 + 1);
    return bytes;
}

} // namespace

TEST(GlTexture, everySliceAndMipKeepsItsOwnBytes) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const TextureDesc descs[] = {
        flat(FORMAT::R8G8B8A8_UNORM, 13, 7, 4),  arrayOf(FORMAT::R8G8_UNORM, 9, 4, 3, 4),
        cube(FORMAT::R8G8B8A8_UNORM, 8, 4),      cube(FORMAT::R16_UINT, 4, 2, 12),
        arrayOf(FORMAT::BC1_UNORM, 12, 8, 2, 4), cube(FORMAT::BC7_UNORM, 8, 4),
        flat(FORMAT::BC3_UNORM, 5, 7, 3)};
    for (const TextureDesc& desc : descs) {
        const auto texture = makeTexture(*device, desc);
        ASSERT_TRUE(texture);
        const auto bytesOfImage = [&](unsigned int slice, unsigned int mip) {
            const unsigned int width = std::max(desc.width >> mip, 1u);
            const unsigned int height = std::max(desc.height >> mip, 1u);
            return countingBytes(TextureUtils::getSliceSize(desc.format, width, height), slice * 8 + mip);
        };
        for (unsigned int slice = 0; slice < desc.slices; ++slice)
            for (unsigned int mip = 0; mip < desc.mips; ++mip)
                device->uploadTexture(*texture, slice, mip, bytesOfImage(slice, mip), 0);
        for (unsigned int slice = 0; slice < desc.slices; ++slice)
            for (unsigned int mip = 0; mip < desc.mips; ++mip)
                EXPECT_EQ(readBytes(*device, *texture, slice, mip), bytesOfImage(slice, mip))
                    << TextureUtils::getFormatName(desc.format) << ", slice " << slice << ", mip " << mip;
        Bytes none;
        EXPECT_FALSE(device->readTexture(*texture, desc.slices, 0, none));
        EXPECT_FALSE(device->readTexture(*texture, 0, desc.mips, none));
        EXPECT_TRUE(none.empty());
    }
    expectNoDriverErrors(*device);
}

TEST(GlTexture, rowPitchIsHonoured) {
    struct Row {
        FORMAT format;
        unsigned int width, height, pitch;
    };
    constexpr Row ROWS[] = {{FORMAT::R8G8B8A8_UNORM, 3, 4, 16},
                            {FORMAT::R8_UNORM, 5, 3, 7},
                            {FORMAT::R32G32B32_FLOAT, 2, 2, 29},
                            {FORMAT::BC1_UNORM, 8, 8, 24},
                            {FORMAT::D24_UNORM_S8_UINT, 2, 3, 12}};
    const auto device = openDevice();
    ASSERT_TRUE(device);
    for (const Row& row : ROWS) {
        const auto texture = makeTexture(*device, flat(row.format, row.width, row.height));
        const std::size_t rowSize = TextureUtils::getRowPitch(row.format, row.width);
        const std::size_t rows = TextureUtils::getRowCount(row.format, row.height);
        Bytes padded((rows - 1) * row.pitch + rowSize); // the last row needs no padding
        Bytes tight(rows * rowSize);
        for (std::size_t y = 0; y < rows; ++y)
            for (std::size_t x = 0; x < rowSize; ++x)
                tight[y * rowSize + x] = padded[y * row.pitch + x] =
                    static_cast<unsigned char>((y * 40 + x) % 63);
        device->uploadTexture(*texture, 0, 0, padded, row.pitch);
        EXPECT_EQ(readBytes(*device, *texture), tight) << TextureUtils::getFormatName(row.format);
        expectNoDriverErrors(*device);
        // Too little data changes nothing.
        padded.pop_back();
        std::fill(padded.begin(), padded.end(), static_cast<unsigned char>(1));
        device->uploadTexture(*texture, 0, 0, padded, row.pitch);
        EXPECT_EQ(readBytes(*device, *texture), tight) << TextureUtils::getFormatName(row.format);
        EXPECT_NE(device->takeDebugErrors(), "");
    }
}

TEST(GlTexture, refusedUploadsAndCopiesSayWhy) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto texture = makeTexture(*device, flat(FORMAT::R8G8B8A8_UNORM, 4, 4, 2));
    const auto other = makeTexture(*device, flat(FORMAT::R16_FLOAT, 8, 4));
    const Bytes bytes(64);
    device->uploadTexture(*texture, 1, 0, bytes, 0);
    EXPECT_EQ(device->takeDebugErrors(),
              "Nothing was uploaded to slice 1, mip 0 of a texture with 1 slices, 2 mips and "
              "1 samples: there is no such image, or it is multisampled");
    device->uploadTexture(*texture, 0, 40, bytes, 0);
    EXPECT_EQ(device->takeDebugErrors(),
              "Nothing was uploaded to slice 0, mip 40 of a texture with 1 slices, 2 mips "
              "and 1 samples: there is no such image, or it is multisampled");
    device->uploadTexture(*texture, 0, 0, {bytes.data(), 60}, 0);
    EXPECT_EQ(device->takeDebugErrors(),
              "Nothing was uploaded to slice 0, mip 0 of a R8G8B8A8_UNORM texture: 4 rows of "
              "16 bytes every 16 bytes do not fit in 60 bytes");
    device->uploadTexture(*texture, 0, 0, bytes, 8);
    EXPECT_EQ(device->takeDebugErrors(),
              "Nothing was uploaded to slice 0, mip 0 of a R8G8B8A8_UNORM texture: 4 rows of "
              "16 bytes every 8 bytes do not fit in 64 bytes");
    device->copyTexture(*texture, 0, 1, *other, 0, 0);
    EXPECT_EQ(
        device->takeDebugErrors(),
        "Slice 0, mip 1 of a R8G8B8A8_UNORM texture (2x2 texels) was not copied to slice 0, mip 0 of a "
        "R16_FLOAT "
        "texture (8x4 texels, 1 samples): both must exist, agree in size and format, and the second have one "
        "sample");
    expectNoDriverErrors(*device);
}

TEST(GlTexture, impossibleTexturesAreRefusedWithBothNumbers) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const DeviceInfo& info = device->getInfo();
    const auto with = [](TextureDesc desc, unsigned int samples) {
        desc.samples = samples;
        return desc;
    };
    const ovMemory::String limit = std::to_string(info.maxTextureSize);
    struct Row {
        TextureDesc desc;
        ovMemory::String error;
    };
    const Row rows[] = {
        {flat(FORMAT::R8_UNORM, 0, 16),
         "Texture of 0x16 texels, 1 slices, 1 mips and 1 samples cannot be made: each "
         "number must be 1 or more"},
        {flat(FORMAT::R8_UNORM, 16, 16, 0),
         "Texture of 16x16 texels, 1 slices, 0 mips and 1 samples cannot be made: "
         "each number must be 1 or more"},
        {flat(FORMAT::R8_UNORM, 100000, 16),
         "Texture of 100000x16 texels is larger than the device's limit of " + limit},
        {flat(FORMAT::R8_UNORM, 16, 4294967295u),
         "Texture of 16x4294967295 texels is larger than the device's limit of " + limit},
        {cube(FORMAT::R8_UNORM, 100000),
         "Cube texture of 100000x100000 texels is larger than the device's limit of " +
             std::to_string(info.maxCubeSize)},
        {cube(FORMAT::R8_UNORM, 8, 1, 5),
         "Cube texture of 8x8 texels and 5 slices cannot be made: its faces must be "
         "square and its slices a multiple of 6"},
        {arrayOf(FORMAT::R8_UNORM, 4, 4, 100000),
         "Texture of 100000 slices has more than the device's limit of " +
             std::to_string(info.maxArraySlices)},
        {flat(FORMAT::R8_UNORM, 16, 16, 6), "Texture of 16x16 texels has at most 5 mips, not 6"},
        {flat(FORMAT::R1_UNORM, 16, 16), "Texture format R1_UNORM is not supported by the device"},
        {with(flat(FORMAT::R8G8B8A8_UNORM, 4, 4), 1000),
         "Texture of 1000 samples has more than the device's limit of " + std::to_string(info.maxSamples)},
        {with(flat(FORMAT::R8G8B8A8_UNORM, 4, 4, 2), 4),
         "Texture of 4 samples must be flat, with one slice and one mip, not 1 slices and 2 mips"},
        {with(flat(FORMAT::BC1_UNORM, 4, 4), 4),
         "Texture format BC1_UNORM cannot be multisampled: the device does not draw to it"},
    };
    for (const Row& row : rows) {
        ovMemory::String error;
        EXPECT_FALSE(device->createTexture(row.desc, error)) << row.error;
        EXPECT_EQ(error, row.error);
    }
    expectNoDriverErrors(*device);
}

TEST(GlTexture, hugeTexturesFailWithoutHarm) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const unsigned int side = device->getInfo().maxTextureSize;
    ovMemory::String error;
    const auto huge = device->createTexture(
        arrayOf(FORMAT::R32G32B32A32_FLOAT, side, side, device->getInfo().maxArraySlices), error);
    ASSERT_FALSE(huge);
    EXPECT_EQ(error.find("The device has no memory for a texture of " + std::to_string(side)), 0u) << error;
    device->takeDebugErrors(); // the driver reports it as well
    const auto small = makeTexture(*device, flat(FORMAT::R8_UNORM, 4, 4));
    ASSERT_TRUE(small);
    device->uploadTexture(*small, 0, 0, countingBytes(16, 3), 0);
    EXPECT_EQ(readBytes(*device, *small), countingBytes(16, 3));
    expectNoDriverErrors(*device);
}

TEST(GlTexture, generatedMipsAreAverages) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    TextureDesc descs[] = {flat(FORMAT::R32_FLOAT, 8, 8, 4), arrayOf(FORMAT::R32_FLOAT, 8, 4, 2, 4),
                           cube(FORMAT::R32_FLOAT, 4, 3)};
    for (const TextureDesc& desc : descs) {
        const auto texture = makeTexture(*device, desc);
        ovMemory::Buffer<ovMemory::Buffer<float>> expected(desc.slices);
        for (unsigned int slice = 0; slice < desc.slices; ++slice) {
            for (unsigned int i = 0; i < desc.width * desc.height; ++i)
                expected[slice].push_back(static_cast<float>((i * 13 + slice * 5) % 32));
            device->uploadTexture(*texture, slice, 0, bytesOf(expected[slice]), 0);
        }
        device->generateMips(*texture);
        for (unsigned int slice = 0; slice < desc.slices; ++slice) {
            ovMemory::Buffer<float> above = expected[slice];
            for (unsigned int mip = 1; mip < desc.mips; ++mip) {
                const unsigned int fromWidth = std::max(desc.width >> (mip - 1), 1u);
                const unsigned int fromHeight = std::max(desc.height >> (mip - 1), 1u);
                const unsigned int width = std::max(desc.width >> mip, 1u);
                const unsigned int height = std::max(desc.height >> mip, 1u);
                ovMemory::Buffer<float> level;
                for (unsigned int y = 0; y < height; ++y) {
                    for (unsigned int x = 0; x < width; ++x) {
                        const unsigned int right = std::min(2 * x + 1, fromWidth - 1);
                        const unsigned int below = std::min(2 * y + 1, fromHeight - 1);
                        level.push_back((above[2 * y * fromWidth + 2 * x] + above[2 * y * fromWidth + right] +
                                         above[below * fromWidth + 2 * x] +
                                         above[below * fromWidth + right]) /
                                        4.0f);
                    }
                }
                const auto actual = readFloats(*device, *texture, slice, mip);
                ASSERT_EQ(actual.size(), level.size());
                for (std::size_t i = 0; i < level.size(); ++i)
                    // The filter's weights are exact halves; only sums of small numbers are rounded.
                    EXPECT_NEAR(actual[i], level[i], 1e-4f)
                        << "slice " << slice << ", mip " << mip << ", " << i;
                above = level;
            }
        }
    }
    expectNoDriverErrors(*device);
}

TEST(GlTexture, mipsOfGammaCorrectedTexturesAreAveragedInLinearLight) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    TextureDesc desc = flat(FORMAT::R8G8B8A8_UNORM, 2, 2, 2);
    const Bytes checker = {0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 255};
    for (const bool gammaCorrected : {false, true}) {
        desc.gammaCorrected = gammaCorrected;
        const auto texture = makeTexture(*device, desc);
        device->uploadTexture(*texture, 0, 0, checker, 0);
        device->generateMips(*texture);
        const Bytes mip = readBytes(*device, *texture, 0, 1);
        // Half of the light is 188 as an sRGB code (187.5 before rounding) and 127.5 as a plain one.
        EXPECT_NEAR(mip[0], gammaCorrected ? 187.5 : 127.5, 1.0);
    }
    expectNoDriverErrors(*device);
}

TEST(GlTexture, copiesMoveOneImage) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    struct Row {
        TextureDesc source, target;
        unsigned int sourceSlice, sourceMip, targetSlice, targetMip;
    };
    const Row rows[] = {
        {flat(FORMAT::R8G8B8A8_UNORM, 8, 8, 3), flat(FORMAT::R8G8B8A8_UNORM, 4, 4), 0, 1, 0, 0},
        {flat(FORMAT::R32_FLOAT, 4, 2), cube(FORMAT::R32_FLOAT, 4), 0, 0, 0, 0},
        {flat(FORMAT::R8G8B8A8_UNORM, 4, 4), cube(FORMAT::R8G8B8A8_UNORM, 8, 2), 0, 0, 3, 1},
        {cube(FORMAT::R8G8B8A8_UNORM, 8, 2), arrayOf(FORMAT::R8G8B8A8_UNORM, 4, 4, 4), 5, 1, 2, 0},
        {flat(FORMAT::BC1_UNORM, 8, 8), arrayOf(FORMAT::BC1_UNORM, 8, 8, 2), 0, 0, 1, 0},
        {flat(FORMAT::D32_FLOAT, 4, 4), flat(FORMAT::D32_FLOAT, 8, 8, 2), 0, 0, 0, 1},
    };
    for (const Row& row : rows) {
        const auto source = makeTexture(*device, row.source);
        const auto target = makeTexture(*device, row.target);
        const unsigned int width = row.source.width >> row.sourceMip;
        const unsigned int height = row.source.height >> row.sourceMip;
        const bool sizesMatch =
            row.target.width >> row.targetMip == width && row.target.height >> row.targetMip == height;
        Bytes bytes = countingBytes(TextureUtils::getSliceSize(row.source.format, width, height), 9);
        for (unsigned char& byte : bytes)
            byte &= 0x3f; // a small number as a float
        device->uploadTexture(*source, row.sourceSlice, row.sourceMip, bytes, 0);
        device->copyTexture(*source, row.sourceSlice, row.sourceMip, *target, row.targetSlice, row.targetMip);
        EXPECT_EQ(readBytes(*device, *target, row.targetSlice, row.targetMip) == bytes, sizesMatch);
        EXPECT_EQ(device->takeDebugErrors().empty(), sizesMatch);
    }
}

// What a texture of one kind reads as where a shader declares another.
TEST(GlTexture, texturesAreReadAsTheDeclaredKind) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto result = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
    const auto read = [&](const char* type, const char* coordinates) {
        return makeProgram(
            *device, pixelText(ovMemory::String("colour = textureLod(source, ") + coordinates + ", 0.0);",
                               ovMemory::String("layout(binding = 0) uniform ") + type + " source;"));
    };
    const auto asFlat = read("sampler2D", "vec2(0.5)");
    const auto asArray = read("sampler2DArray", "vec3(0.5, 0.5, 1.0)");
    const auto asCube = read("samplerCube", "vec3(0.0, -1.0, 0.0)");            // face 3
    const auto asCubes = read("samplerCubeArray", "vec4(0.0, 0.0, -1.0, 1.0)"); // cube 1, face 5
    const auto plain = makeTexture(*device, flat(FORMAT::R32_FLOAT, 2, 2));
    const auto array = makeTexture(*device, arrayOf(FORMAT::R32_FLOAT, 2, 2, 8));
    const auto oneCube = makeTexture(*device, cube(FORMAT::R32_FLOAT, 2));
    const auto twoCubes = makeTexture(*device, cube(FORMAT::R32_FLOAT, 2, 1, 12));
    for (GpuTexture* texture : {plain.get(), array.get(), oneCube.get(), twoCubes.get()})
        for (unsigned int slice = 0; slice < texture->getDesc().slices; ++slice)
            device->uploadTexture(*texture, slice, 0,
                                  bytesOf(ovMemory::Buffer<float>(4, static_cast<float>(slice) + 10.0f)), 0);
    struct Row {
        GpuTexture* texture;
        GpuProgram* program;
        TEXTURE_TYPE type;
        bool array;
        float expected;
    };
    const TEXTURE_TYPE flatType = TEXTURE_TYPE::TEXTURE_2D, cubeType = TEXTURE_TYPE::CUBE;
    const Row rows[] = {{plain.get(), asFlat.get(), flatType, false, 10.0f},
                        {plain.get(), asArray.get(), flatType, true, 10.0f},
                        {plain.get(), asCube.get(), cubeType, false, 0.0f},
                        {array.get(), asFlat.get(), flatType, false, 10.0f},
                        {array.get(), asArray.get(), flatType, true, 11.0f},
                        {array.get(), asCube.get(), cubeType, false, 13.0f},
                        {oneCube.get(), asFlat.get(), flatType, false, 10.0f},
                        {oneCube.get(), asArray.get(), flatType, true, 11.0f},
                        {oneCube.get(), asCube.get(), cubeType, false, 13.0f},
                        {twoCubes.get(), asCubes.get(), cubeType, true, 21.0f},
                        // Eight slices are one cube; asking for the second gives the last.
                        {array.get(), asCubes.get(), cubeType, true, 15.0f},
                        {nullptr, asFlat.get(), flatType, false, 0.0f},
                        {nullptr, asArray.get(), flatType, true, 0.0f},
                        {nullptr, asCube.get(), cubeType, false, 0.0f},
                        {nullptr, asCubes.get(), cubeType, true, 0.0f}};
    for (const Row& row : rows) {
        device->setTextureUnit(0, row.texture, nullptr, row.type, row.array);
        drawOver(*device, *result, *row.program);
        expectColor(texelOf(readFloats(*device, *result), 1, 0, 0), {row.expected, 0.0f, 0.0f, 1.0f}, 0.0f,
                    "row " + std::to_string(&row - rows));
    }
    expectNoDriverErrors(*device);
}

// An edge through the middle of a texel covers some of its samples: their average shows after resolving.
TEST(GlTexture, multisampledTexturesAreResolvedWhenRead) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const unsigned int samples = device->getInfo().maxSamples;
    ASSERT_GE(samples, 4u);
    TextureDesc desc = flat(FORMAT::R32G32B32A32_FLOAT, 2, 1);
    desc.samples = 4;
    const auto multisampled = makeTexture(*device, desc);
    const auto plain = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 2, 1));
    const auto target = makeTarget(*device, {{multisampled.get(), 0, 0}});
    // Covers the left three quarters.
    const auto program = makeProgram(*device, pixelText("colour = vec4(1.0);"), R"(#version 450
layout(location = 0) in vec4 position;
layout(location = 2) in vec2 coordinates;
layout(location = 0) out vec2 uv;
void main() { uv = coordinates; gl_Position = vec4(position.x * 0.75 - 0.25, position.yzw); }
)");
    const auto fetch =
        makeProgram(*device, pixelText("colour = texelFetch(source, ivec2(gl_FragCoord.xy), 0);",
                                       "layout(binding = 0) uniform sampler2D source;"));
    for (const float background : {0.0f, 3.0f}) {
        device->setTarget(*target, {0, 0, 2, 1});
        device->setRasterState(noCulling());
        device->setDepthStencilState(noDepth());
        device->setBlendState({});
        device->clearColor(0, {background, background, background, background});
        device->setProgram(*program);
        device->drawFullScreenQuad();
        const float half = (1.0f + background) / 2.0f;
        const auto back = readFloats(*device, *multisampled);
        EXPECT_NEAR(back[0], 1.0f, 1e-6f);
        EXPECT_NEAR(back[4], half, 1e-6f); // 2 of the 4 samples lie left of the middle
        device->setTextureUnit(0, multisampled.get(), nullptr, TEXTURE_TYPE::TEXTURE_2D, false);
        drawOver(*device, *plain, *fetch);
        EXPECT_EQ(readFloats(*device, *plain), back);
        device->copyTexture(*multisampled, 0, 0, *plain, 0, 0);
        EXPECT_EQ(readFloats(*device, *plain), back);
    }
    expectNoDriverErrors(*device);
}

} // namespace ovGraphics::device::testing
