#include <algorithm>
#include <cmath>
#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

namespace {

// Weights of linear filters have 8 bits on the software rasteriser, times differences of up to 8 here.
constexpr float FILTER_TOLERANCE = 8.0f / 256.0f;

/// Draws a shader's colour for one place, with a texture and sampler in unit 0.
class Probe {
public:
    explicit Probe(Device& device)
        : _device(device)
        , _result(makeTexture(device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1))) {}

    float read(GpuTexture& texture, GpuSampler* sampler, GpuProgram& program) {
        _device.setTextureUnit(0, &texture, sampler, TEXTURE_TYPE::TEXTURE_2D, false);
        drawOver(_device, *_result, program);
        return texelOf(readFloats(_device, *_result), 1, 0, 0)[0];
    }

private:
    Device& _device;
    ovMemory::UniquePtr<GpuTexture> _result;
};

ovMemory::UniquePtr<GpuProgram> sampleAt(Device& device, float u, float v, float level) {
    return makeProgram(device, pixelText("colour = textureLod(source, vec2(" + std::to_string(u) + ", " +
                                             std::to_string(v) + "), " + std::to_string(level) + ");",
                                         "layout(binding = 0) uniform sampler2D source;"));
}

} // namespace

TEST(GlSampler, addressesOutsideTheTexture) {
    constexpr unsigned int WIDTH = 4;
    constexpr float BORDER = -7.5f;
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto texture = makeTexture(*device, flat(FORMAT::R32_FLOAT, WIDTH, WIDTH));
    ovMemory::Buffer<float> values;
    for (unsigned int y = 0; y < WIDTH; ++y)
        for (unsigned int x = 0; x < WIDTH; ++x)
            values.push_back(static_cast<float>(x + y * 10));
    device->uploadTexture(*texture, 0, 0, bytesOf(values), 0);
    // Draws the coordinates -2 to 3 along both axes, a texel of the result for each texel read.
    // one each.
    constexpr unsigned int SIDE = 5 * WIDTH;
    const auto result = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, SIDE, SIDE));
    const auto program = makeProgram(*device, pixelText("colour = textureLod(source, uv * 5.0 - 2.0, 0.0);",
                                                        "layout(binding = 0) uniform sampler2D source;"));
    const auto texelAt = [](TEXTURE_ADDRESS address, int at) {
        const int size = static_cast<int>(WIDTH);
        const int wrapped = ((at % size) + size) % size;
        switch (address) {
        case TEXTURE_ADDRESS::WRAP:
            return wrapped;
        case TEXTURE_ADDRESS::MIRROR: {
            const int twice = ((at % (2 * size)) + 2 * size) % (2 * size);
            return twice < size ? twice : 2 * size - 1 - twice;
        }
        case TEXTURE_ADDRESS::BORDER:
            return at < 0 || at >= size ? -1 : at;
        case TEXTURE_ADDRESS::MIRROR_ONCE:
            return std::min(at < 0 ? -1 - at : at, size - 1);
        default:
            return std::clamp(at, 0, size - 1);
        }
    };
    constexpr TEXTURE_ADDRESS ADDRESSES[] = {TEXTURE_ADDRESS::WRAP, TEXTURE_ADDRESS::MIRROR,
                                             TEXTURE_ADDRESS::CLAMP, TEXTURE_ADDRESS::BORDER,
                                             TEXTURE_ADDRESS::MIRROR_ONCE};
    for (const TEXTURE_ADDRESS u : ADDRESSES) {
        for (const TEXTURE_ADDRESS v : {u, TEXTURE_ADDRESS::CLAMP}) {
            SamplerDesc desc;
            desc.filter = FILTER::MIN_MAG_MIP_POINT;
            desc.addressU = u;
            desc.addressV = v;
            desc.borderColor = {BORDER, 0.0f, 0.0f, 1.0f};
            const auto sampler = makeSampler(*device, desc);
            device->setTextureUnit(0, texture.get(), sampler.get(), TEXTURE_TYPE::TEXTURE_2D, false);
            drawOver(*device, *result, *program);
            const auto read = readFloats(*device, *result);
            for (unsigned int y = 0; y < SIDE; ++y) {
                for (unsigned int x = 0; x < SIDE; ++x) {
                    const int column = texelAt(u, static_cast<int>(x) - 2 * static_cast<int>(WIDTH));
                    const int row = texelAt(v, static_cast<int>(y) - 2 * static_cast<int>(WIDTH));
                    const float expected =
                        column < 0 || row < 0 ? BORDER : static_cast<float>(column + row * 10);
                    EXPECT_EQ(texelOf(read, SIDE, x, y)[0], expected)
                        << "address " << static_cast<unsigned int>(u) << ", texel " << x << ", " << y;
                }
            }
        }
    }
    expectNoDriverErrors(*device);
}

// Two texels in mip 0 and one value in each mip below: what is read tells the filter of each axis.
TEST(GlSampler, filtersAreTakenApart) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    Probe probe(*device);
    const auto texture = makeTexture(*device, flat(FORMAT::R32_FLOAT, 8, 8, 4));
    const auto levelValue = [](unsigned int mip, unsigned int x) {
        return static_cast<float>(mip * 8 + (x % 2) * 4);
    };
    for (unsigned int mip = 0; mip < 4; ++mip) {
        ovMemory::Buffer<float> values;
        const unsigned int side = 8u >> mip;
        for (unsigned int i = 0; i < side * side; ++i)
            values.push_back(levelValue(mip, i % side));
        device->uploadTexture(*texture, 0, mip, bytesOf(values), 0);
    }
    // At u = 0.53125 of mip 0 (width 8): texel 4.25, so 3/4 of texel 4 and 1/4 of texel 3 when linear.
    constexpr float U = 0.53125f;
    const auto levelRead = [&](unsigned int mip, bool linear) {
        const float width = static_cast<float>(8u >> mip);
        const float at = U * width - 0.5f;
        const unsigned int left = static_cast<unsigned int>(std::max(std::floor(at), 0.0f));
        const unsigned int right = std::min(left + 1, (8u >> mip) - 1);
        if (!linear)
            return levelValue(mip, static_cast<unsigned int>(U * width));
        const float fraction = std::clamp(at - static_cast<float>(left), 0.0f, 1.0f);
        return levelValue(mip, left) * (1.0f - fraction) + levelValue(mip, right) * fraction;
    };
    struct Row {
        FILTER filter;
        bool min, mag, mip;
    };
    constexpr Row ROWS[] = {{FILTER::MIN_MAG_MIP_POINT, false, false, false},
                            {FILTER::MIN_MAG_POINT_MIP_LINEAR, false, false, true},
                            {FILTER::MIN_POINT_MAG_LINEAR_MIP_POINT, false, true, false},
                            {FILTER::MIN_POINT_MAG_MIP_LINEAR, false, true, true},
                            {FILTER::MIN_LINEAR_MAG_MIP_POINT, true, false, false},
                            {FILTER::MIN_LINEAR_MAG_POINT_MIP_LINEAR, true, false, true},
                            {FILTER::MIN_MAG_LINEAR_MIP_POINT, true, true, false},
                            {FILTER::MIN_MAG_MIP_LINEAR, true, true, true}};
    const auto magnified = sampleAt(*device, U, 0.5f, 0.0f);
    const auto minified = sampleAt(*device, U, 0.5f, 1.75f);
    for (const Row& row : ROWS) {
        SamplerDesc desc;
        desc.filter = row.filter;
        const auto sampler = makeSampler(*device, desc);
        const ovMemory::String what = "filter " + std::to_string(static_cast<unsigned int>(row.filter));
        EXPECT_NEAR(probe.read(*texture, sampler.get(), *magnified), levelRead(0, row.mag), FILTER_TOLERANCE)
            << what;
        const float below = levelRead(2, row.min);
        const float expected = row.mip ? levelRead(1, row.min) * 0.25f + below * 0.75f : below;
        EXPECT_NEAR(probe.read(*texture, sampler.get(), *minified), expected, FILTER_TOLERANCE) << what;
    }
    // Without a sampler: single texels of the nearest mip.
    EXPECT_EQ(probe.read(*texture, nullptr, *magnified), levelRead(0, false));
    EXPECT_EQ(probe.read(*texture, nullptr, *minified), levelRead(2, false));
    expectNoDriverErrors(*device);
}

// Eight texels across but one down fall into each texel drawn: a plain filter takes a small mip and loses the
// rows, an anisotropic one keeps them. (Explicit levels are not tried: this driver's anisotropic filter
// ignores them.)
TEST(GlSampler, anisotropicFiltersKeepTheSharpAxis) {
    constexpr unsigned int SIDE = 8;
    const auto device = openDevice();
    ASSERT_TRUE(device);
    ASSERT_GE(device->getInfo().maxAnisotropy, 8.0f);
    const auto texture = makeTexture(*device, flat(FORMAT::R32_FLOAT, SIDE, SIDE, 4));
    ovMemory::Buffer<float> rows;
    for (unsigned int i = 0; i < SIDE * SIDE; ++i)
        rows.push_back(static_cast<float>(i / SIDE % 2) * 8.0f);
    device->uploadTexture(*texture, 0, 0, bytesOf(rows), 0);
    device->generateMips(*texture);
    const auto result = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, SIDE, SIDE));
    const auto program = makeProgram(*device, pixelText("colour = texture(source, vec2(uv.x * 8.0, uv.y));",
                                                        "layout(binding = 0) uniform sampler2D source;"));
    for (const FILTER filter : {FILTER::MIN_MAG_MIP_LINEAR, FILTER::ANISOTROPIC}) {
        SamplerDesc desc;
        desc.filter = filter;
        desc.addressU = TEXTURE_ADDRESS::WRAP;
        desc.maxAnisotropy = 16;
        const auto sampler = makeSampler(*device, desc);
        device->setTextureUnit(0, texture.get(), sampler.get(), TEXTURE_TYPE::TEXTURE_2D, false);
        drawOver(*device, *result, *program);
        const auto read = readFloats(*device, *result);
        const float contrast = texelOf(read, SIDE, 4, 3)[0] - texelOf(read, SIDE, 4, 4)[0];
        // How much blur is left is the driver's choice.
        EXPECT_EQ(contrast > 1.0f, filter == FILTER::ANISOTROPIC) << contrast;
    }
    expectNoDriverErrors(*device);
}

TEST(GlSampler, levelsAreClampedAndShifted) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    Probe probe(*device);
    const auto texture = makeTexture(*device, flat(FORMAT::R32_FLOAT, 8, 8, 4));
    for (unsigned int mip = 0; mip < 4; ++mip) {
        const std::size_t count = std::size_t{8u >> mip} * (8u >> mip);
        device->uploadTexture(*texture, 0, mip,
                              bytesOf(ovMemory::Buffer<float>(count, static_cast<float>(mip))), 0);
    }
    struct Row {
        float minLod, maxLod, bias, level, expected;
    };
    constexpr float ALL = 3.402823466e+38f;
    constexpr Row ROWS[] = {
        {0, 0, 0, 3, 0},   {0, ALL, 0, 1.5f, 1.5f}, {0, 1.25f, 0, 3, 1.25f}, {2, ALL, 0, 0, 2},
        {0, ALL, 0, 9, 3}, {1, 2, 0, 0, 1},         {0, ALL, 1.0f, 1, 2},    {-ALL, ALL, -1.0f, 2.5f, 1.5f}};
    for (const Row& row : ROWS) {
        SamplerDesc desc;
        desc.minLod = row.minLod;
        desc.maxLod = row.maxLod;
        desc.lodBias = row.bias;
        const auto sampler = makeSampler(*device, desc);
        const auto program = sampleAt(*device, 0.5f, 0.5f, row.level);
        EXPECT_NEAR(probe.read(*texture, sampler.get(), *program), row.expected, FILTER_TOLERANCE)
            << row.minLod << ", " << row.maxLod << ", level " << row.level;
    }
    expectNoDriverErrors(*device);
}

TEST(GlSampler, comparisonsOfAReferenceWithTheStoredDepth) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    Probe probe(*device);
    const auto texture = makeTexture(*device, flat(FORMAT::D32_FLOAT, 2, 1));
    device->uploadTexture(*texture, 0, 0, bytesOf(ovMemory::Buffer<float>{0.25f, 0.75f}), 0);
    const auto program = [&](float u, float reference) {
        return makeProgram(*device, pixelText("colour = vec4(textureLod(source, vec3(" + std::to_string(u) +
                                                  ", 0.5, " + std::to_string(reference) + "), 0.0));",
                                              "layout(binding = 0) uniform sampler2DShadow source;"));
    };
    const auto outcome = [](COMPARISON comparison, float reference, float stored) {
        switch (comparison) {
        case COMPARISON::LESS:
            return reference < stored;
        case COMPARISON::EQUAL:
            return reference == stored;
        case COMPARISON::LESS_EQUAL:
            return reference <= stored;
        case COMPARISON::GREATER:
            return reference > stored;
        case COMPARISON::NOT_EQUAL:
            return reference != stored;
        case COMPARISON::GREATER_EQUAL:
            return reference >= stored;
        default:
            return comparison == COMPARISON::ALWAYS;
        }
    };
    for (unsigned int number = 1; number <= 8; ++number) {
        const COMPARISON comparison = static_cast<COMPARISON>(number);
        SamplerDesc desc;
        desc.filter = FILTER::COMPARISON_MIN_MAG_MIP_POINT;
        desc.comparison = comparison;
        const auto point = makeSampler(*device, desc);
        desc.filter = FILTER::COMPARISON_MIN_MAG_LINEAR_MIP_POINT;
        const auto linear = makeSampler(*device, desc);
        for (const float reference : {0.125f, 0.25f, 0.5f, 0.75f}) {
            const bool left = outcome(comparison, reference, 0.25f);
            const bool right = outcome(comparison, reference, 0.75f);
            const ovMemory::String what =
                "comparison " + std::to_string(number) + " of " + std::to_string(reference);
            EXPECT_EQ(probe.read(*texture, point.get(), *program(0.25f, reference)), left ? 1.0f : 0.0f)
                << what;
            EXPECT_EQ(probe.read(*texture, point.get(), *program(0.75f, reference)), right ? 1.0f : 0.0f)
                << what;
            // Half way between the texels both outcomes count the same.
            EXPECT_NEAR(probe.read(*texture, linear.get(), *program(0.5f, reference)),
                        ((left ? 1.0f : 0.0f) + (right ? 1.0f : 0.0f)) / 2.0f, 1.0f / 256.0f)
                << what;
        }
    }
    // Nothing bound: a depth of 0.
    SamplerDesc desc;
    desc.filter = FILTER::COMPARISON_MIN_MAG_MIP_POINT;
    desc.comparison = COMPARISON::LESS_EQUAL;
    const auto sampler = makeSampler(*device, desc);
    const auto result = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
    for (const float reference : {0.0f, 0.5f}) {
        device->setTextureUnit(0, nullptr, sampler.get(), TEXTURE_TYPE::TEXTURE_2D, false);
        drawOver(*device, *result, *program(0.5f, reference));
        EXPECT_EQ(readFloats(*device, *result)[0], reference <= 0.0f ? 1.0f : 0.0f);
    }
    expectNoDriverErrors(*device);
}

// A cube of one texel a face: between two faces a seamless cube blends both.
TEST(GlSampler, cubesAreFilteredAcrossTheirEdges) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    TextureDesc desc = flat(FORMAT::R32_FLOAT, 1, 1);
    desc.type = TEXTURE_TYPE::CUBE;
    desc.slices = 6;
    const auto texture = makeTexture(*device, desc);
    for (unsigned int face = 0; face < 6; ++face)
        device->uploadTexture(*texture, face, 0, bytesOf(ovMemory::Buffer<float>{static_cast<float>(face)}),
                              0);
    const auto sampler = makeSampler(*device, {});
    const auto result = makeTexture(*device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
    struct Row {
        const char* direction;
        float expected;
    };
    constexpr Row ROWS[] = {{"1.0, 0.0, 0.0", 0},    {"-1.0, 0.0, 0.0", 1},    {"0.0, 1.0, 0.0", 2},
                            {"0.0, -1.0, 0.0", 3},   {"0.0, 0.0, 1.0", 4},     {"0.0, 0.0, -1.0", 5},
                            {"1.0, 0.0, 0.9999", 2}, {"-1.0, -0.9999, 0.0", 2}};
    for (const Row& row : ROWS) {
        const auto program =
            makeProgram(*device, pixelText(ovMemory::String("colour = textureLod(source, vec3(") +
                                               row.direction + "), 0.0);",
                                           "layout(binding = 0) uniform samplerCube source;"));
        device->setTextureUnit(0, texture.get(), sampler.get(), TEXTURE_TYPE::CUBE, false);
        drawOver(*device, *result, *program);
        EXPECT_NEAR(readFloats(*device, *result)[0], row.expected, FILTER_TOLERANCE) << row.direction;
    }
    expectNoDriverErrors(*device);
}

TEST(GlSampler, levelsInTheWrongOrderAreRefused) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    SamplerDesc desc;
    desc.minLod = 3.0f;
    desc.maxLod = 1.5f;
    ovMemory::String error;
    EXPECT_FALSE(device->createSampler(desc, error));
    EXPECT_EQ(error,
              "Sampler with levels from 3 to 1.5 cannot be made: the first must not be above the second");
}

} // namespace ovGraphics::device::testing
