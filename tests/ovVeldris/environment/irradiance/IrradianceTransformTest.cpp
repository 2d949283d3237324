#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovVeldris/environment/irradiance/IrradianceTexels.h>

using namespace ovVeldris;
using irradianceReference::noise;
using irradianceReference::readAs;
using irradianceReference::Texels;
using ovGraphics::FORMAT;

namespace {

using Slices = ovMemory::Buffer<ovMemory::Buffer<unsigned char>>;

struct Size {
    unsigned int width;
    unsigned int height;
};

constexpr Size MAP_SIZES[] = {{1, 1}, {2, 1}, {1, 2}, {3, 3}, {16, 8}, {13, 7}};
constexpr Size CUBE_SIZES[] = {{1, 1}, {2, 2}, {3, 3}, {8, 8}};

/// Each shape, size, set of instructions and width of gaps between rows.
template <typename Check>
void forEachLayout(FORMAT format, const Check& check) {
    for (const bool isCube : {false, true})
        for (const auto [width, height] : isCube ? ovMemory::BufferView<const Size>(CUBE_SIZES)
                                                 : ovMemory::BufferView<const Size>(MAP_SIZES))
            for (const std::size_t gap : {std::size_t{0}, std::size_t{4}, std::size_t{52}})
                for (const auto instructions :
                     {IRRADIANCE_INSTRUCTIONS::BEST, IRRADIANCE_INSTRUCTIONS::PLAIN}) {
                    SCOPED_TRACE(ovMemory::String(ovGraphics::TextureUtils::getFormatName(format)) +
                                 (isCube ? ", cube of " : ", map of ") + std::to_string(width) + " x " +
                                 std::to_string(height) + ", gap " + std::to_string(gap) + ", instructions " +
                                 std::to_string(unsigned(instructions)));
                    check(IrradianceMapLayout{isCube, format, width, height, isCube ? 6u : 1u}, gap,
                          instructions);
                }
}

/// Slices without a gap after the last row, so that a sanitizer sees reads beyond.
Slices makeSlices(const IrradianceMapLayout& layout, const Texels& texels, std::size_t gap) {
    Slices slices;
    const std::size_t size = (layout.width * texels.texelSize + gap) * layout.height - gap;
    for (unsigned int slice = 0; slice < layout.slices; ++slice)
        slices.push_back(noise(size, texels.read == readAs<float>, slice + 1));
    return slices;
}

IrradianceCoefficients project(IrradianceTransform& transform, const Slices& slices,
                               std::size_t rowPitch = 0) {
    IrradianceCoefficients coefficients;
    for (unsigned int slice = 0; slice < slices.size(); ++slice)
        EXPECT_TRUE(transform.project(slice, slices[slice], rowPitch, coefficients));
    return coefficients;
}

/// Slices of one float colour.
Slices constantSlices(const IrradianceMapLayout& layout, const std::array<float, 4>& color) {
    const std::size_t texels = std::size_t{layout.width} * layout.height;
    ovMemory::Buffer<unsigned char> slice(texels * sizeof(color));
    for (std::size_t i = 0; i < texels; ++i)
        std::memcpy(&slice[i * sizeof(color)], &color, sizeof(color));
    return Slices(layout.slices, slice);
}

ovMemory::Buffer<float> drawFloats(IrradianceTransform& transform, unsigned int slice,
                                   const IrradianceCoefficients& coefficients) {
    ovMemory::Buffer<unsigned char> bytes(transform.getTightPitch() * transform.getLayout().height);
    EXPECT_TRUE(transform.evaluate(coefficients, slice, bytes, 0));
    ovMemory::Buffer<float> floats(bytes.size() / sizeof(float));
    std::memcpy(floats.data(), bytes.data(), bytes.size());
    return floats;
}

} // namespace

TEST(IrradianceTransformTest, sumsUpEveryFormatAndShape) {
    for (const Texels& texels : irradianceReference::FORMATS)
        forEachLayout(texels.format, [&](const IrradianceMapLayout& layout, std::size_t gap,
                                         IRRADIANCE_INSTRUCTIONS instructions) {
            const Slices slices = makeSlices(layout, texels, gap);
            const std::size_t pitch = layout.width * texels.texelSize + gap;
            double size = 0.0;
            const IrradianceCoefficients expected =
                irradianceReference::project(layout, [&](unsigned int slice, unsigned int i, unsigned int j) {
                    const std::array<double, 3> color = texels.colorAt(slices[slice], pitch, i, j);
                    for (const double component : color)
                        size = std::max(size, std::abs(component));
                    return color;
                });
            IrradianceTransform transform(layout, instructions);
            EXPECT_EQ(transform.getTightPitch(), pitch - gap);
            const IrradianceCoefficients actual = project(transform, slices, gap > 0 ? pitch : 0);
            for (std::size_t k = 0; k < actual.values.size(); ++k)
                for (std::size_t channel = 0; channel < 3; ++channel)
                    // Means of at most 400 terms, each rounded to 1e-16 of the largest.
                    EXPECT_NEAR(actual.values[k][channel], expected.values[k][channel], 1e-13 * size);
        });
}

TEST(IrradianceTransformTest, drawsEveryFormatAndShape) {
    IrradianceCoefficients coefficients;
    for (std::size_t k = 0; k < coefficients.values.size(); ++k)
        for (std::size_t channel = 0; channel < 3; ++channel)
            coefficients.values[k][channel] = 1.3 * std::cos(double(k) + 2.0 * double(channel));
    for (const Texels& texels : irradianceReference::FORMATS)
        forEachLayout(texels.format, [&](const IrradianceMapLayout& layout, std::size_t gap,
                                         IRRADIANCE_INSTRUCTIONS instructions) {
            const std::size_t pitch = layout.width * texels.texelSize + gap;
            const ovMemory::Buffer<unsigned char> before(pitch * layout.height - gap, 0x5a);
            IrradianceTransform transform(layout, instructions);
            for (unsigned int slice = 0; slice < layout.slices; ++slice) {
                ovMemory::Buffer<unsigned char> bytes = before;
                ASSERT_TRUE(transform.evaluate(coefficients, slice, bytes, gap > 0 ? pitch : 0));
                ovMemory::Buffer<unsigned char> rest = bytes; // texels' components are put back as they were
                for (unsigned int j = 0; j < layout.height; ++j)
                    for (unsigned int i = 0; i < layout.width; ++i) {
                        const auto color = irradianceReference::evaluate(coefficients, layout, slice, i, j);
                        for (std::size_t channel = 0; channel < texels.channels; ++channel) {
                            const std::size_t place =
                                j * pitch + i * texels.texelSize + channel * texels.componentSize;
                            const double value = channel < 3 ? color[channel] * texels.scale : texels.scale;
                            const double actual = texels.read(bytes, place);
                            if (texels.read == readAs<float>)
                                EXPECT_NEAR(actual, value, 1.2e-7 * std::abs(value) + 1e-14);
                            else if (texels.componentSize == 4)
                                EXPECT_EQ(uint32_t(int64_t(actual)), uint32_t(int64_t(value)));
                            else // small enough for a plain conversion
                                EXPECT_EQ(uint8_t(int(actual)), uint8_t(int(value)));
                            std::copy_n(before.begin(), texels.componentSize,
                                        rest.begin() + std::ptrdiff_t(place));
                        }
                    }
                EXPECT_EQ(rest, before);
            }
        });
}

TEST(IrradianceTransformTest, keepsAConstantOnACube) {
    const IrradianceMapLayout layout = {true, FORMAT::R32G32B32A32_FLOAT, 256, 256, 6};
    const std::array<float, 4> color = {1.0f, 0.25f, 110000.0f, 7.0f};
    IrradianceTransform transform(layout);
    const IrradianceCoefficients coefficients = project(transform, constantSlices(layout, color));
    double worst = 0.0;
    for (unsigned int face = 0; face < 6; ++face) {
        const ovMemory::Buffer<float> floats = drawFloats(transform, face, coefficients);
        for (std::size_t i = 0; i < floats.size(); ++i) {
            if (i % 4 == 3)
                ASSERT_EQ(floats[i], 1.0f);
            else
                worst = std::max(worst, std::abs(double(floats[i] / color[i % 4]) - 1.0));
        }
    }
    // Corners stand for texels: a face is seen half a texel off, 1/256 of its half side, to the left and up.
    // Over the faces that is a mean direction of (-2, 4, 0) / 6 times 1/256 times the mean of k = 0.79, and
    // the irradiance has twice of it where it points: 0.46 % without the curvature of the faces, 0.4 % with
    // it.
    EXPECT_LT(worst, 0.0043);
    EXPECT_GT(worst, 0.0040);
}

TEST(IrradianceTransformTest, theFirstBasisFunctionIsTheOneOfTheFamily) {
    // Six texels of 1: the sum is exact, and the digits of both constants decide. They are written out here,
    // as other tools of the family have them.
    const IrradianceMapLayout layout = {true, FORMAT::R32G32B32A32_FLOAT, 1, 1, 6};
    IrradianceTransform transform(layout);
    const IrradianceCoefficients coefficients =
        project(transform, constantSlices(layout, {1.0f, 1.0f, 1.0f, 1.0f}));
    EXPECT_NEAR(coefficients.values[0][0], 0.28209478329945054 * 12.566370964050293, 2e-15);
}

TEST(IrradianceTransformTest, weighsAConstantMapByItsTexels) {
    // With every texel of the same weight, the mean of cos^2(theta) is 1/2 instead of 1/3, and that of
    // cos(theta) is 1 / height, as the first row is at the pole and none at the other. So a constant c
    // becomes c (1 + 2 y / height + 5/32 (3 y^2 - 1)).
    for (const unsigned int height : {8u, 256u, 1024u}) {
        const IrradianceMapLayout layout = {false, FORMAT::R32G32B32A32_FLOAT, 2 * height, height, 1};
        IrradianceTransform transform(layout);
        const IrradianceCoefficients coefficients =
            project(transform, constantSlices(layout, {1.0f, 0.5f, 2.0f, 1.0f}));
        const ovMemory::Buffer<float> floats = drawFloats(transform, 0, coefficients);
        for (unsigned int j = 0; j < height; ++j) {
            const double y = std::cos(3.14159265358979 * j / height);
            const double expected = 1.0 + 2.0 * y / height + 5.0 / 32.0 * (3.0 * y * y - 1.0);
            for (const unsigned int i : {0u, height / 3, 2 * height - 1}) {
                const float* const texel = &floats[(std::size_t{j} * 2 * height + i) * 4];
                // Constants are held as 32-bit floats.
                EXPECT_NEAR(double(texel[0]), expected, 1e-6);
                EXPECT_NEAR(double(texel[1]), 0.5 * expected, 1e-6);
                EXPECT_NEAR(double(texel[2]), 2.0 * expected, 2e-6);
            }
        }
        const std::size_t equator = std::size_t{height / 2} * 2 * height * 4;
        EXPECT_NEAR(double(floats[equator]), 0.84375, 1e-6);
        EXPECT_NEAR(double(floats[0]), 1.3125 + 2.0 / height, 1e-6);
    }
}

TEST(IrradianceTransformTest, letsOverflowsOfBytesBecomeDark) {
    // A white map is 1.3 of white at the poles, which is 335 and more: modulo 256 that is dark grey.
    const IrradianceMapLayout layout = {false, FORMAT::R8G8B8A8_UNORM, 512, 256, 1};
    IrradianceTransform transform(layout);
    IrradianceCoefficients coefficients =
        project(transform, {ovMemory::Buffer<unsigned char>(512 * 256 * 4, 255)});
    ovMemory::Buffer<unsigned char> bytes(512 * 256 * 4);
    ASSERT_TRUE(transform.evaluate(coefficients, 0, bytes, 0));
    EXPECT_EQ(int(bytes[0]), int(255.0 * (1.3125 + 2.0 / 256.0)) - 256);
    EXPECT_EQ(int(bytes[512 * 128 * 4]), int(255.0 * 0.84375));
    EXPECT_EQ(int(bytes[3]), 255);
    // Just above white is black.
    coefficients = {};
    coefficients.values[0] = {3.5592, 3.5592, 3.5592}; // times 0.28209 is 1.004, and that times 255 is 256.02
    ASSERT_TRUE(transform.evaluate(coefficients, 0, bytes, 0));
    for (std::size_t i = 0; i < bytes.size(); ++i)
        ASSERT_EQ(int(bytes[i]), i % 4 == 3 ? 255 : 0);
}

TEST(IrradianceTransformTest, takesALightWhereItIs) {
    // One bright texel; the irradiance is highest in its own direction, which for a map counts from +z to +x.
    struct Case {
        bool isCube;
        unsigned int slice, i, j;
        std::array<double, 3> axis;
    };
    const Case cases[] = {
        {false, 0, 0, 4, {0, 0, 1}},   {false, 0, 4, 4, {1, 0, 0}}, {false, 0, 8, 4, {0, 0, -1}},
        {false, 0, 12, 4, {-1, 0, 0}}, {false, 0, 5, 0, {0, 1, 0}}, {true, 0, 4, 4, {1, 0, 0}},
        {true, 1, 4, 4, {-1, 0, 0}},   {true, 2, 4, 4, {0, 1, 0}},  {true, 3, 4, 4, {0, -1, 0}},
        {true, 4, 4, 4, {0, 0, 1}},    {true, 5, 4, 4, {0, 0, -1}},
    };
    for (const Case& row : cases) {
        const IrradianceMapLayout layout = {row.isCube, FORMAT::R32G32B32A32_FLOAT, row.isCube ? 8u : 16u, 8,
                                            row.isCube ? 6u : 1u};
        Slices slices = constantSlices(layout, {0.0f, 0.0f, 0.0f, 0.0f});
        const float light = 1.0f;
        std::memcpy(&slices[row.slice][(row.j * layout.width + row.i) * 16], &light, sizeof(light));
        IrradianceTransform transform(layout);
        const IrradianceCoefficients coefficients = project(transform, slices);
        const double linear[3] = {coefficients.values[1][0], coefficients.values[2][0],
                                  coefficients.values[3][0]};
        for (std::size_t axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(linear[axis],
                        linear[0] * row.axis[0] * row.axis[axis] + linear[1] * row.axis[1] * row.axis[axis] +
                            linear[2] * row.axis[2] * row.axis[axis],
                        1e-8);
        const ovMemory::Buffer<float> floats = drawFloats(transform, row.slice, coefficients);
        const float there = floats[(row.j * layout.width + row.i) * 4];
        EXPECT_GT(there, 0.0f);
        for (std::size_t i = 0; i < floats.size(); i += 4)
            EXPECT_LE(floats[i], there * 1.000001f);
    }
}

TEST(IrradianceTransformTest, doesNotDecodeSrgb) {
    const ovMemory::Buffer<unsigned char> bytes = noise(8 * 4 * 4, false, 1);
    IrradianceTransform linear({false, FORMAT::R8G8B8A8_UNORM, 8, 4, 1});
    IrradianceTransform srgb({false, FORMAT::R8G8B8A8_UNORM_SRGB, 8, 4, 1});
    EXPECT_EQ(project(linear, {bytes}).values, project(srgb, {bytes}).values);
}

TEST(IrradianceTransformTest, spreadsWhatIsNotFiniteInItsChannelOnly) {
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()})
        for (const auto instructions : {IRRADIANCE_INSTRUCTIONS::BEST, IRRADIANCE_INSTRUCTIONS::PLAIN}) {
            const IrradianceMapLayout layout = {true, FORMAT::R32G32B32A32_FLOAT, 5, 5, 6};
            Slices slices = constantSlices(layout, {1.0f, 1.0f, 1.0f, 1.0f});
            std::memcpy(&slices[2][7 * 16 + 4], &bad, sizeof(bad));
            IrradianceTransform transform(layout, instructions);
            const IrradianceCoefficients coefficients = project(transform, slices);
            for (const auto& value : coefficients.values) {
                EXPECT_TRUE(std::isfinite(value[0]));
                EXPECT_FALSE(std::isfinite(value[1]));
                EXPECT_TRUE(std::isfinite(value[2]));
            }
            const ovMemory::Buffer<float> floats = drawFloats(transform, 0, coefficients);
            for (std::size_t i = 0; i < floats.size(); ++i)
                EXPECT_EQ(std::isfinite(floats[i]), i % 4 != 1);
        }
}

TEST(IrradianceTransformTest, projectsEachFaceOnItsOwn) {
    // Maps of several slices are the mean of their slices; the order of the calls does not matter.
    const IrradianceMapLayout layout = {false, FORMAT::R32G32B32A32_FLOAT, 6, 3, 3};
    const IrradianceMapLayout single = {false, FORMAT::R32G32B32A32_FLOAT, 6, 3, 1};
    const std::size_t size = 6 * 3 * 16;
    const Slices slices = {noise(size, true, 1), noise(size, true, 2), noise(size, true, 3)};
    IrradianceTransform transform(layout);
    IrradianceTransform one(single);
    IrradianceCoefficients forwards;
    IrradianceCoefficients backwards;
    IrradianceCoefficients sum;
    for (unsigned int slice = 0; slice < 3; ++slice) {
        EXPECT_TRUE(transform.project(slice, slices[slice], 0, forwards));
        EXPECT_TRUE(transform.project(2 - slice, slices[2 - slice], 0, backwards));
        EXPECT_TRUE(one.project(0, slices[slice], 0, sum));
    }
    for (std::size_t k = 0; k < sum.values.size(); ++k) {
        EXPECT_NEAR(forwards.values[k][0], backwards.values[k][0], 1e-13);
        EXPECT_NEAR(forwards.values[k][0], sum.values[k][0] / 3.0, 1e-13);
    }
}

TEST(IrradianceTransformTest, refusesWhatItCannotWorkOn) {
    constexpr ovMemory::StringView EMPTY = "Its width, height and number of slices must be 1 or more.";
    constexpr ovMemory::StringView FACES = "A cube must have 6 slices.";
    constexpr ovMemory::StringView COMPRESSED = "Its format is compressed; decompress it first.";
    constexpr ovMemory::StringView BLOCKS =
        "Its format has no texels of their own; convert it to another one first.";
    struct Case {
        IrradianceMapLayout layout;
        ovMemory::StringView problem;
    };
    const Case cases[] = {
        {{false, FORMAT::R32G32B32A32_FLOAT, 0, 4, 1}, EMPTY},
        {{false, FORMAT::R32G32B32A32_FLOAT, 4, 0, 1}, EMPTY},
        {{false, FORMAT::R32G32B32A32_FLOAT, 4, 4, 0}, EMPTY},
        {{true, FORMAT::R32G32B32A32_FLOAT, 4, 4, 1}, FACES},
        {{true, FORMAT::R32G32B32A32_FLOAT, 4, 4, 12}, FACES},
        {{false, FORMAT::BC1_UNORM, 4, 4, 1}, COMPRESSED},
        {{false, FORMAT::BC6H_UF16, 4, 4, 1}, COMPRESSED},
        {{false, FORMAT::UNKNOWN, 4, 4, 1}, BLOCKS},
        {{false, FORMAT::R1_UNORM, 8, 4, 1}, BLOCKS},
        {{false, FORMAT(1000), 8, 4, 1}, BLOCKS},
        {{}, EMPTY},
    };
    for (const Case& row : cases) {
        IrradianceTransform transform(row.layout);
        EXPECT_EQ(transform.getProblem(), row.problem);
        IrradianceCoefficients coefficients;
        ovMemory::Buffer<unsigned char> bytes(4096, 0x5a);
        EXPECT_FALSE(transform.project(0, bytes, 0, coefficients));
        EXPECT_FALSE(transform.evaluate(coefficients, 0, bytes, 0));
        EXPECT_EQ(coefficients.values, IrradianceCoefficients().values);
        EXPECT_EQ(bytes, ovMemory::Buffer<unsigned char>(4096, 0x5a));
    }
}

TEST(IrradianceTransformTest, refusesBytesThatAreTooFew) {
    struct Case {
        unsigned int slice;
        std::size_t size;
        std::size_t rowPitch;
        bool isEnough;
    };
    // Three rows of five texels of 16 bytes.
    const Case cases[] = {
        {0, 240, 0, true},
        {0, 240, 80, true},
        {0, 1000, 0, true},
        {0, 280, 100, true}, // the last row needs no gap
        {0, 239, 0, false},
        {0, 279, 100, false},
        {0, 240, 79, false},
        {0, 0, 0, false},
        {1, 240, 0, false},
        {0, 240, std::numeric_limits<std::size_t>::max(), false},
        {0, 240, std::numeric_limits<std::size_t>::max() / 2, false},
    };
    IrradianceTransform transform({false, FORMAT::R32G32B32A32_FLOAT, 5, 3, 1});
    EXPECT_EQ(transform.getProblem(), "");
    for (const Case& row : cases) {
        SCOPED_TRACE(std::to_string(row.size) + " bytes every " + std::to_string(row.rowPitch));
        ovMemory::Buffer<unsigned char> bytes(row.size, 0x5a);
        IrradianceCoefficients coefficients;
        EXPECT_EQ(transform.evaluate(coefficients, row.slice, bytes, row.rowPitch), row.isEnough);
        EXPECT_EQ(bytes == ovMemory::Buffer<unsigned char>(row.size, 0x5a), !row.isEnough);
        const float one = 1.0f;
        if (row.size >= sizeof(one))
            std::memcpy(bytes.data(), &one, sizeof(one));
        EXPECT_EQ(transform.project(row.slice, bytes, row.rowPitch, coefficients), row.isEnough);
        EXPECT_EQ(coefficients.values[0][0] != 0.0, row.isEnough);
    }
    // Sizes whose product does not fit in 64 bits take no memory before the bytes are there.
    IrradianceTransform huge({true, FORMAT::R32G32B32A32_FLOAT, 4294967295u, 4294967295u, 6});
    IrradianceCoefficients coefficients;
    EXPECT_FALSE(huge.project(0, ovMemory::Buffer<unsigned char>(64), 0, coefficients));
}
