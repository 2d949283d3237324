#include <algorithm>
#include <cmath>
#include <ovGraphics/device/DeviceTesting.h>
#include <set>

namespace ovGraphics::device::testing {

namespace {

constexpr unsigned int FORMAT_COUNT = 100;

/// Formats that OpenGL has no equal for.
const std::set<FORMAT> ABSENT = {FORMAT::UNKNOWN, FORMAT::R1_UNORM, FORMAT::R8G8_B8G8_UNORM,
                                 FORMAT::G8R8_G8B8_UNORM, FORMAT::R10G10B10_XR_BIAS_A2_UNORM};

bool hasPaddingBytes(FORMAT format) {
    return format == FORMAT::R32G8X24_TYPELESS || format == FORMAT::D32_FLOAT_S8X24_UINT ||
           format == FORMAT::R32_FLOAT_X8X24_TYPELESS || format == FORMAT::X32_TYPELESS_G8X24_UINT;
}

/// Bytes that differ from texel to texel and mean a number in every format: with the upper bits clear no
/// exponent is full (no NaN) and no signed number is the one that two codes stand for.
Bytes patternOf(FORMAT format, std::size_t size) {
    const FORMAT_COMPONENT component = TextureUtils::getFormatComponent(format);
    const bool anyBits = component == FORMAT_COMPONENT::UNORM || component == FORMAT_COMPONENT::UINT ||
                         TextureUtils::isFormatCompressed(format);
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] =
            static_cast<unsigned char>((i * 73 + 29) & (anyBits && !hasPaddingBytes(format) ? 0xff : 0x1f));
        if (hasPaddingBytes(format) && i % 8 > 4)
            bytes[i] = 0;
    }
    return bytes;
}

float decodeSrgb(float encoded) {
    return encoded <= 0.04045f ? encoded / 12.92f : std::pow((encoded + 0.055f) / 1.055f, 2.4f);
}

float encodeSrgb(float linear) {
    return linear <= 0.0031308f ? linear * 12.92f : 1.055f * std::pow(linear, 1.0f / 2.4f) - 0.055f;
}

} // namespace

TEST(GlFormats, everyFormatKeepsItsBytes) {
    constexpr unsigned int WIDTH = 12;
    constexpr unsigned int HEIGHT = 8;
    const auto device = openDevice();
    ASSERT_TRUE(device);
    for (unsigned int i = 0; i < FORMAT_COUNT; ++i) {
        const FORMAT format = static_cast<FORMAT>(i);
        const ovMemory::StringView name = TextureUtils::getFormatName(format);
        ASSERT_EQ(device->supportsFormat(format), !ABSENT.contains(format)) << name;
        if (ABSENT.contains(format))
            continue;
        const auto texture = makeTexture(*device, flat(format, WIDTH, HEIGHT, 2));
        ASSERT_TRUE(texture) << name;
        for (unsigned int mip = 0; mip < 2; ++mip) {
            const Bytes bytes =
                patternOf(format, TextureUtils::getSliceSize(format, WIDTH >> mip, HEIGHT >> mip));
            device->uploadTexture(*texture, 0, mip, bytes, 0);
            Bytes back = readBytes(*device, *texture, 0, mip);
            for (std::size_t at = 0; hasPaddingBytes(format) && at < back.size(); ++at)
                back[at] = at % 8 > 4 ? 0 : back[at];
            EXPECT_EQ(back, bytes) << name << ", mip " << mip;
        }
    }
    EXPECT_FALSE(device->supportsFormat(static_cast<FORMAT>(1000)));
    expectNoDriverErrors(*device);
}

TEST(GlFormats, whatTheStandardPromisesCanBeDrawnTo) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    for (unsigned int i = 0; i < FORMAT_COUNT; ++i) {
        const FORMAT format = static_cast<FORMAT>(i);
        const ovMemory::StringView name = TextureUtils::getFormatName(format);
        const unsigned int use = TextureUtils::isFormatDepth(format) ? TextureUtils::BIND_DEPTH_STENCIL
                                                                     : TextureUtils::BIND_RENDER_TARGET;
        if (TextureUtils::isFormatCompatibleForRenderFlag(format, 1, use)) {
            EXPECT_TRUE(device->supportsRenderTarget(format)) << name;
        }
        if (TextureUtils::isFormatCompressed(format) || ABSENT.contains(format) ||
            format == FORMAT::A8_UNORM) {
            EXPECT_FALSE(device->supportsRenderTarget(format)) << name;
        }
        if (!device->supportsRenderTarget(format))
            continue;
        const auto texture = makeTexture(*device, flat(format, 4, 4));
        const TargetAttachment attachment{texture.get(), 0, 0};
        const bool depth = TextureUtils::isFormatDepth(format);
        EXPECT_TRUE(depth ? makeTarget(*device, {}, attachment) : makeTarget(*device, {attachment})) << name;
    }
    expectNoDriverErrors(*device);
}

// What a shader reads from the bytes 0x40 0x80 0xc0 0x20 (or the format's own), by the format's definition.
TEST(GlFormats, shadersReadTheNamedComponents) {
    struct Row {
        FORMAT format;
        Bytes bytes;
        Color expected;
    };
    const auto part = [](unsigned int value, unsigned int most) {
        return static_cast<float>(value) / static_cast<float>(most);
    };
    const Bytes bytes = {0x40, 0x80, 0xc0, 0x20};
    const float r = part(0x40, 255), g = part(0x80, 255), b = part(0xc0, 255), a = part(0x20, 255);
    const Row rows[] = {
        {FORMAT::R8G8B8A8_UNORM, bytes, {r, g, b, a}},
        {FORMAT::B8G8R8A8_UNORM, bytes, {b, g, r, a}},
        {FORMAT::B8G8R8X8_UNORM, bytes, {b, g, r, 1.0f}},
        {FORMAT::A8_UNORM, {0x40}, {0, 0, 0, r}},
        {FORMAT::R8_UNORM, {0x40}, {r, 0, 0, 1}},
        {FORMAT::R8G8_UNORM, {0x40, 0x80}, {r, g, 0, 1}},
        {FORMAT::R8G8_SNORM, {0x40, 0x81}, {part(0x40, 127), -1.0f, 0, 1}},
        // B in the low 5 bits: 0b10101'000011'11000 = 0xa878
        {FORMAT::B5G6R5_UNORM, {0x78, 0xa8}, {part(21, 31), part(3, 63), part(24, 31), 1}},
        // 0b1'00001'00010'00011 = 0x8443
        {FORMAT::B5G5R5A1_UNORM, {0x43, 0x84}, {part(1, 31), part(2, 31), part(3, 31), 1}},
        // A 0b10, B 3, G 2, R 1
        {FORMAT::R10G10B10A2_UNORM,
         {0x01, 0x08, 0x30, 0x80},
         {part(1, 1023), part(2, 1023), part(3, 1023), part(2, 3)}},
        // R 1.0 (exponent 15, bits 6..10), G 2.0 (16 << 6), B 0.5 (14 << 5)
        {FORMAT::R11G11B10_FLOAT, {0xc0, 0x03, 0x20, 0x70}, {1.0f, 2.0f, 0.5f, 1.0f}},
        // mantissas 256, 128, 64 of 512 with exponent 16 (2 to the 1): 1, 0.5, 0.25
        {FORMAT::R9G9B9E5_SHAREDEXP, {0x00, 0x01, 0x01, 0x81}, {1.0f, 0.5f, 0.25f, 1.0f}},
        {FORMAT::R16_FLOAT, {0x00, 0x3e}, {1.5f, 0, 0, 1}},
        {FORMAT::R16_UNORM, {0xff, 0xff}, {1.0f, 0, 0, 1}},
        // depth in the low 24 bits, stencil above
        {FORMAT::D24_UNORM_S8_UINT, {0xff, 0xff, 0xff, 0x12}, {1.0f, 0, 0, 1}},
        {FORMAT::D24_UNORM_S8_UINT, {0x00, 0x00, 0x00, 0xff}, {0.0f, 0, 0, 1}},
        {FORMAT::D32_FLOAT, {0x00, 0x00, 0x00, 0x3f}, {0.5f, 0, 0, 1}},
        // one colour (0xf800, red) in both ends, all indices 0
        {FORMAT::BC1_UNORM, {0x00, 0xf8, 0x00, 0xf8, 0, 0, 0, 0}, {1, 0, 0, 1}},
        // both ends 128 of 255
        {FORMAT::BC4_UNORM, {0x80, 0x80, 0, 0, 0, 0, 0, 0}, {part(128, 255), 0, 0, 1}},
        {FORMAT::BC5_UNORM,
         {0x80, 0x80, 0, 0, 0, 0, 0, 0, 0x40, 0x40, 0, 0, 0, 0, 0, 0},
         {part(128, 255), part(64, 255), 0, 1}},
    };
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto result = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
    const auto program = makeProgram(*device, pixelText("colour = texelFetch(source, ivec2(0), 0);",
                                                        "layout(binding = 0) uniform sampler2D source;"));
    for (const Row& row : rows) {
        const unsigned int side = TextureUtils::getFormatBlockWidth(row.format);
        const auto texture = makeTexture(*device, flat(row.format, side, side));
        device->uploadTexture(*texture, 0, 0, row.bytes, 0);
        device->setTextureUnit(0, texture.get(), nullptr, TEXTURE_TYPE::TEXTURE_2D, false);
        drawOver(*device, *result, *program);
        // Half a step of 16 bits: the rasteriser reads some formats through that many.
        expectColor(texelOf(readFloats(*device, *result), 1, 0, 0), row.expected, 1.0f / 65535.0f,
                    ovMemory::String(TextureUtils::getFormatName(row.format)));
    }
    expectNoDriverErrors(*device);
}

TEST(GlFormats, gammaCorrectedTexturesAreDecodedAndEncoded) {
    constexpr unsigned int COUNT = 256;
    const auto device = openDevice();
    ASSERT_TRUE(device);
    struct Row {
        FORMAT format;
        bool gammaCorrected;
        bool expected;
    };
    constexpr Row ROWS[] = {
        {FORMAT::R8G8B8A8_UNORM, true, true},       {FORMAT::R8G8B8A8_UNORM, false, false},
        {FORMAT::R8G8B8A8_UNORM_SRGB, false, true}, {FORMAT::R8G8B8A8_UNORM_SRGB, true, true},
        {FORMAT::B8G8R8A8_UNORM, true, true},       {FORMAT::R16G16B16A16_UNORM, true, false}};
    const auto fetch =
        makeProgram(*device, pixelText("colour = texelFetch(source, ivec2(gl_FragCoord.xy), 0);",
                                       "layout(binding = 0) uniform sampler2D source;"));
    const auto ramp = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, COUNT, 1));
    ovMemory::Buffer<float> grey;
    for (unsigned int i = 0; i < COUNT; ++i)
        grey.insert(grey.end(), 4, static_cast<float>(i) / 255.0f);
    device->uploadTexture(*ramp, 0, 0, bytesOf(grey), 0);
    for (const Row& row : ROWS) {
        TextureDesc desc = flat(row.format, COUNT, 1);
        desc.gammaCorrected = row.gammaCorrected;
        const auto encoded = makeTexture(*device, desc);
        const auto decoded = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, COUNT, 1));
        device->setTextureUnit(0, ramp.get(), nullptr, TEXTURE_TYPE::TEXTURE_2D, false);
        drawOver(*device, *encoded, *fetch);
        device->setTextureUnit(0, encoded.get(), nullptr, TEXTURE_TYPE::TEXTURE_2D, false);
        drawOver(*device, *decoded, *fetch);
        const Bytes drawn = readBytes(*device, *encoded);
        const auto read = readFloats(*device, *decoded);
        const bool eightBits = TextureUtils::isFormatOver255(row.format);
        for (unsigned int i = 0; i < COUNT; ++i) {
            const float linear = static_cast<float>(i) / 255.0f;
            const float stored = row.expected ? encodeSrgb(linear) : linear;
            // Rounding to the nearest is not asked of encoders: Direct3D allows 0.6 of a step, so one code
            // apart.
            if (eightBits) {
                EXPECT_NEAR(static_cast<float>(drawn[i * 4 + 1]), stored * 255.0f,
                            row.expected ? 1.1f : 0.51f)
                    << i;
            }
            const float code = eightBits ? static_cast<float>(drawn[i * 4 + 1]) / 255.0f : linear;
            // Decoders may use half-precision-like curves: half a step of 8 bits in the linear value.
            EXPECT_NEAR(read[i * 4 + 1], row.expected ? decodeSrgb(code) : code, 0.5f / 255.0f) << i;
        }
    }
    expectNoDriverErrors(*device);
}

} // namespace ovGraphics::device::testing
