#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

TEST(GlTarget, severalColorsEachWithItsOwnBlendingAndMask) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const FORMAT formats[] = {FORMAT::R32G32B32A32_FLOAT, FORMAT::R8G8B8A8_UNORM, FORMAT::R16G16B16A16_FLOAT};
    ovMemory::Buffer<ovMemory::UniquePtr<GpuTexture>> textures;
    ovMemory::Buffer<TargetAttachment> colors;
    for (const FORMAT format : formats) {
        textures.push_back(makeTexture(*device, flat(format, 1, 1)));
        colors.push_back({textures.back().get(), 0, 0});
    }
    colors.insert(colors.begin() + 1, TargetAttachment{}); // an output that goes nowhere
    const auto target = makeTarget(*device, colors);
    const auto program = makeProgram(*device, R"(#version 450
layout(location = 0) out vec4 a;
layout(location = 1) out vec4 b;
layout(location = 2) out vec4 c;
layout(location = 3) out vec4 d;
void main() { a = vec4(0.25); b = vec4(9.0); c = vec4(0.2, 0.4, 0.6, 1.0); d = vec4(0.5); }
)");
    BlendStateDesc blend;
    blend.independentBlend = true;
    blend.targets[0].enabled = true;
    blend.targets[0].destinationFactor = blend.targets[0].alphaDestinationFactor = BLEND::ONE;
    blend.targets[2].writeMask = COLOR_WRITE_GREEN | COLOR_WRITE_ALPHA;
    device->setTarget(*target, {0, 0, 1, 1});
    for (unsigned int i = 0; i < 4; ++i)
        device->clearColor(i, {1.0f, 1.0f, 1.0f, 0.0f});
    device->setProgram(*program);
    device->setBlendState(blend);
    device->setDepthStencilState(noDepth());
    device->drawFullScreenQuad();
    EXPECT_EQ(readFloats(*device, *textures[0]), (ovMemory::Buffer<float>{1.25f, 1.25f, 1.25f, 0.25f}));
    EXPECT_EQ(readBytes(*device, *textures[1]), (Bytes{255, 102, 255, 255}));
    EXPECT_EQ(readBytes(*device, *textures[2]), (Bytes{0, 0x38, 0, 0x38, 0, 0x38, 0, 0x38})); // 0.5 as a half
    expectNoDriverErrors(*device);
}

TEST(GlTarget, drawsReachOneSliceAndMip) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    TextureDesc cube = flat(FORMAT::R32G32B32A32_FLOAT, 4, 4, 3);
    cube.type = TEXTURE_TYPE::CUBE;
    cube.slices = 6;
    TextureDesc array = flat(FORMAT::R32G32B32A32_FLOAT, 8, 4, 2);
    array.slices = 3;
    const auto program = makeProgram(*device, pixelText("colour = vec4(uv, 0.5, 1.0);"));
    for (const TextureDesc& desc : {cube, array, flat(FORMAT::R32G32B32A32_FLOAT, 4, 4, 3)}) {
        const auto texture = makeTexture(*device, desc);
        for (unsigned int slice = 0; slice < desc.slices; ++slice) {
            for (unsigned int mip = 0; mip < desc.mips; ++mip) {
                const auto target = makeTarget(*device, {{texture.get(), slice, mip}});
                device->setTarget(*target, {0, 0, desc.width >> mip, desc.height >> mip});
                const float mark = static_cast<float>(slice * 10 + mip);
                device->clearColor(0, {mark, mark, mark, mark});
            }
        }
        const unsigned int slice = desc.slices - 1;
        const auto target = makeTarget(*device, {{texture.get(), slice, 1}});
        const unsigned int width = desc.width >> 1;
        const unsigned int height = desc.height >> 1;
        device->setTarget(*target, {0, 0, width, height});
        device->setProgram(*program);
        device->setDepthStencilState(noDepth());
        device->drawFullScreenQuad();
        for (unsigned int s = 0; s < desc.slices; ++s) {
            for (unsigned int mip = 0; mip < desc.mips; ++mip) {
                const auto values = readFloats(*device, *texture, s, mip);
                if (s != slice || mip != 1) {
                    EXPECT_EQ(values,
                              ovMemory::Buffer<float>(values.size(), static_cast<float>(s * 10 + mip)));
                    continue;
                }
                // The top left texel of the image, whatever face it is.
                expectColor(texelOf(values, width, 0, 0),
                            {0.5f / static_cast<float>(width), 0.5f / static_cast<float>(height), 0.5f, 1.0f},
                            1e-5f, "slice " + std::to_string(s));
            }
        }
    }
    expectNoDriverErrors(*device);
}

TEST(GlTarget, impossibleTargetsAreRefusedWithTheReason) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto color = makeTexture(*device, flat(FORMAT::R8G8B8A8_UNORM, 4, 4, 2));
    const auto depth = makeTexture(*device, flat(FORMAT::D32_FLOAT, 4, 4));
    const auto shared = makeTexture(*device, flat(FORMAT::R9G9B9E5_SHAREDEXP, 4, 4));
    TextureDesc desc = flat(FORMAT::R8G8B8A8_UNORM, 4, 4);
    desc.samples = 4;
    const auto multisampled = makeTexture(*device, desc);
    struct Row {
        TargetDesc desc;
        const char* error;
    };
    const Row rows[] = {
        {{{}, {}}, "A target needs a texture to draw to, and has none"},
        {{{{}}, {}}, "A target needs a texture to draw to, and has none"},
        {{ovMemory::Buffer<TargetAttachment>(9, {color.get(), 0, 0}), {}},
         "Target of 9 colours has more than the device's limit of 8"},
        {{{{color.get(), 1, 0}}, {}},
         "Slice 1, mip 0 cannot be drawn to: the texture has 1 slices and 2 mips"},
        {{{{color.get(), 0, 2}}, {}},
         "Slice 0, mip 2 cannot be drawn to: the texture has 1 slices and 2 mips"},
        {{{{depth.get(), 0, 0}}, {}}, "Texture of format D32_FLOAT cannot be a colour of a target"},
        {{{}, {color.get(), 0, 0}}, "Texture of format R8G8B8A8_UNORM cannot be a depth buffer of a target"},
        {{{{shared.get(), 0, 0}}, {}},
         "Texture of format R9G9B9E5_SHAREDEXP cannot be drawn to on this device"},
        {{{{multisampled.get(), 0, 0}}, {depth.get(), 0, 0}},
         "The device cannot draw to this set of textures, as its textures differ in samples: R8G8B8A8_UNORM "
         "4x4 with 4 "
         "samples, D32_FLOAT 4x4 with 1 samples"},
    };
    for (const Row& row : rows) {
        ovMemory::String error;
        EXPECT_FALSE(device->createTarget(row.desc, error)) << row.error;
        EXPECT_EQ(error, row.error);
    }
    expectNoDriverErrors(*device);
}

TEST(GlTarget, texturesMayGoBeforeTheirTargets) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    TextureDesc desc = flat(FORMAT::R8G8B8A8_UNORM, 4, 4);
    desc.samples = 4;
    auto multisampled = makeTexture(*device, desc);
    auto plain = makeTexture(*device, flat(FORMAT::R8G8B8A8_UNORM, 4, 4));
    const auto first = makeTarget(*device, {{multisampled.get(), 0, 0}});
    const auto second = makeTarget(*device, {{plain.get(), 0, 0}});
    const auto program = makeProgram(*device, pixelText("colour = vec4(1.0);"));
    device->setProgram(*program);
    device->setTarget(*first, {0, 0, 4, 4});
    multisampled.reset();
    device->setTarget(*first, {0, 0, 4, 4});
    device->setTarget(*second, {0, 0, 4, 4});
    plain.reset();
    device->finish();
    expectNoDriverErrors(*device);
}

} // namespace ovGraphics::device::testing
