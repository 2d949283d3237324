#include <ovVeldris/shaders/ShadowMappingLib.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ovGraphics/resources/Sampler.h>
#include <ovMaths/Matrix.h>
#include <ovVeldris/shaders/SnippetTest.h>
#include <sstream>

using namespace ovGraphics;
using ovMaths::Matrix;

namespace {

/// A light's depth map, as the reference reads it: row 0 is the top, places beyond an edge read the edge.
struct DepthMap {
    int width;
    int height;
    ovMemory::Buffer<float> depths;

    float at(int x, int y) const {
        return depths[std::size_t(std::clamp(y, 0, height - 1) * width + std::clamp(x, 0, width - 1))];
    }
};

/// Options of the snippet: its defines, and what the reference makes of them.
struct Options {
    const char* name;
    const char* defines;
    int taps = 1; ///< of a row and of a column
    double bias = 0.0001;
    double outOfBounds = 1.0;
};

constexpr Options DEFAULT_OPTIONS = {"default", ""};

/// Share of the light at a point by the definition: a grid of comparisons around it, one texel apart. The
/// matrix is of y up and clip z in 0..1; the map is read at the nearest texel.
double referenceShadow(const DepthMap& map, const Matrix& light, const FloatPixel& position,
                       const Options& options) {
    double p[4];
    for (int row = 0; row < 4; ++row)
        p[row] = double(light.m[row][0]) * position[0] + double(light.m[row][1]) * position[1] +
                 double(light.m[row][2]) * position[2] + double(light.m[row][3]) * position[3];
    const double u = 0.5 + 0.5 * p[0] / p[3];
    const double v = 0.5 - 0.5 * p[1] / p[3];
    const double depth = p[2] / p[3];
    const auto outside = [](double value) { return value < 0.0 || value > 1.0; };
    if (outside(u) || outside(v) || outside(depth))
        return options.outOfBounds;
    int lit = 0;
    for (int j = 0; j < options.taps; ++j)
        for (int i = 0; i < options.taps; ++i) {
            const double centre = 0.5 * (options.taps - 1);
            const int x = int(std::floor(u * map.width + i - centre));
            const int y = int(std::floor(v * map.height + j - centre));
            lit += depth - options.bias <= double(map.at(x, y));
        }
    return double(lit) / (options.taps * options.taps);
}

/// The matrix for GLSL's clip space: y down, z from -1.
Matrix toGlslClip(const Matrix& light) {
    const Matrix change = Matrix::newMat4(1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 2, -1, 0, 0, 0, 1);
    return change * light;
}

ovMemory::String toText(const Matrix& matrix) {
    std::ostringstream text;
    text.precision(std::numeric_limits<float>::max_digits10);
    text << std::scientific << "ovFloat4x4(";
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            text << (row + column ? ", " : "") << matrix.m[row][column];
    text << ")";
    return text.str();
}

/// Two numbers with a separator between them.
ovMemory::String toText(int width, int height, ovMemory::StringView separator) {
    return std::to_string(width).append(separator).append(std::to_string(height));
}

class ShadowMappingLibTest : public SnippetTest {
protected:
    ovMemory::UniquePtr<Texture> makeDepthTexture(const DepthMap& map) {
        ovMemory::UniquePtr<Texture> texture = Texture::create(&getGraphics());
        texture->setFormat(FORMAT::D32_FLOAT);
        texture->setWidth(static_cast<unsigned int>(map.width));
        texture->setHeight(static_cast<unsigned int>(map.height));
        texture->setCpuData(
            0, 0,
            {reinterpret_cast<const unsigned char*>(map.depths.data()), map.depths.size() * sizeof(float)});
        EXPECT_TRUE(texture->load()) << getGraphicsLogger().getText();
        return texture;
    }

    ovMemory::UniquePtr<Sampler> makeComparisonSampler() {
        ovMemory::UniquePtr<Sampler> sampler = Sampler::create(&getGraphics());
        sampler->setFilter(FILTER::COMPARISON_MIN_MAG_MIP_POINT);
        sampler->setComparison(COMPARISON::LESS_EQUAL);
        EXPECT_TRUE(sampler->load()) << getGraphicsLogger().getText();
        return sampler;
    }

    /// The snippet's results for world positions.
    FloatPicture drawShadow(const DepthMap& map, const Matrix& light, const FloatPixels& positions,
                            const Options& options) {
        const bool glsl = getLanguage() == SHADER_LANGUAGE::GLSL;
        const ovMemory::String text = joinLines(
            {options.defines, ovVeldris::ShadowMappingLib::ovShadowMap(), DECLARATIONS,
             "ovTexture2dShadowDecl(depthMap, 2);", "ovSamplerComparisonDecl(depthSampler, 2);",
             "ovFloat4 evaluate(ovFloat4 a, ovFloat4 b) {",
             "    ovFloat4x4 light = " + toText(glsl ? toGlslClip(light) : light) + ";",
             "    ovInt2 size = ovInt2(" + toText(map.width, map.height, ", ") + ");",
             "    return ovFloat4(ovShadowMap(depthMap, depthSampler, a, light, size), 0.0, 0.0, 0.0);", "}",
             MAIN});
        const auto program = makeProgram(text);
        const auto inputs = makeTexture(toPicture(positions));
        const auto depthMap = makeDepthTexture(map);
        const auto sampler = makeComparisonSampler();
        const auto shader = Shader::create(&getGraphics());
        shader->setProgram(program.get());
        shader->setTexture(inputs.get(), 0, 0);
        shader->setTexture(inputs.get(), 1, 0);
        shader->setTexture(depthMap.get(), 2, 0);
        shader->setSampler(sampler.get(), 2, 0);
        EXPECT_TRUE(shader->load()) << getGraphicsLogger().getText();
        return draw(*shader, static_cast<unsigned int>(positions.size()), 1);
    }

    /// The same compared with the reference.
    void checkShadow(const ovMemory::String& name, const DepthMap& map, const Matrix& light,
                     const FloatPixels& positions, const Options& options) {
        SCOPED_TRACE(name + ", " + options.name);
        FloatPixels expected;
        for (const FloatPixel& position : positions)
            expected.push_back({float(referenceShadow(map, light, position, options))});
        // Outcomes of comparisons, none of them close; only the weights of the taps are rounded.
        EXPECT_TRUE(picturesMatch("shadow_map_" + name + "_" + options.name,
                                  drawShadow(map, light, positions, options), toPicture(expected),
                                  {.worst = 1e-6f, .mean = 1e-6f}));
    }
};
INSTANTIATE_TEST_SUITE_P(, ShadowMappingLibTest, bothLanguages(), languageName);

/// Neighbours differ, and none is close to the depth of the positions below.
DepthMap makePatternedMap(int width, int height) {
    DepthMap map{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            map.depths.push_back((x * 7 + y * 5 + x * y) % 3 == 0 ? 0.2f : 0.8f);
    return map;
}

DepthMap makeEvenMap(int width, int height, float depth) {
    return {width, height, ovMemory::Buffer<float>(std::size_t(width) * height, depth)};
}

} // namespace

TEST_P(ShadowMappingLibTest, EveryKernelOnMapsOfEveryShape) {
    const Options kernels[] = {
        DEFAULT_OPTIONS,
        {"pcf4", "#define OV_SHADOW_MAP_METHOD_PCF_4_TAP", 2},
        {"pcf9", "#define OV_SHADOW_MAP_METHOD_PCF_9_TAP", 3},
        {"pcf16", "#define OV_SHADOW_MAP_METHOD_PCF_16_TAP", 4},
        {"pcf4_before_others",
         "#define OV_SHADOW_MAP_METHOD_PCF_16_TAP\n#define OV_SHADOW_MAP_METHOD_PCF_4_TAP", 2},
    };
    const std::pair<int, int> sizes[] = {{8, 8}, {9, 4}, {3, 11}, {1, 1}};
    const Matrix light;
    for (const auto& [width, height] : sizes) {
        const DepthMap map = makePatternedMap(width, height);
        FloatPixels positions;
        // A third of a texel from its edge, so that taps half a texel away are not on an edge either.
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                positions.push_back({2.0f * (float(x) + 0.33f) / float(width) - 1.0f,
                                     1.0f - 2.0f * (float(y) + 0.33f) / float(height), 0.5f, 1.0f});
        for (const Options& options : kernels)
            checkShadow(toText(width, height, "x"), map, light, positions, options);
    }
}

TEST_P(ShadowMappingLibTest, PerspectiveLightThatIsTurnedAndMoved) {
    Matrix projection;
    ASSERT_TRUE(projection.setToPerspectiveMatrix(1.1f, 1.5f, 0.5f, 20.0f));
    Matrix view;
    view.setToViewMatrixDirection({3.0f, 4.0f, -5.0f}, {-0.5f, -0.6f, 1.0f});
    const Matrix light = projection * view;
    const DepthMap map = makePatternedMap(12, 8);
    const Matrix toWorld = light.getInverseMat4();
    FloatPixels positions;
    for (int y = -1; y <= 8; ++y)
        for (int x = -1; x <= 12; ++x)
            for (const float depth : {0.1f, 0.5f, 0.9f, 1.1f}) {
                const float clip[4] = {2.0f * (float(x) + 0.4f) / 12.0f - 1.0f,
                                       1.0f - 2.0f * (float(y) + 0.4f) / 8.0f, depth, 1.0f};
                float world[4] = {};
                for (int row = 0; row < 4; ++row)
                    for (int column = 0; column < 4; ++column)
                        world[row] += toWorld.m[row][column] * clip[column];
                positions.push_back({world[0] / world[3], world[1] / world[3], world[2] / world[3], 1.0f});
            }
    checkShadow("perspective", map, light, positions, DEFAULT_OPTIONS);
}

TEST_P(ShadowMappingLibTest, BiasDecidesCloseDepths) {
    const Options options[] = {
        DEFAULT_OPTIONS,
        {"no_bias", "#define OV_SHADOW_MAP_METHOD_BIAS 0.0", 1, 0.0},
        {"large_bias", "#define OV_SHADOW_MAP_METHOD_BIAS 0.01", 1, 0.01},
        {"negative_bias", "#define OV_SHADOW_MAP_METHOD_BIAS -0.01", 1, -0.01},
    };
    const DepthMap map = makeEvenMap(4, 4, 0.5f);
    const Matrix light;
    FloatPixels positions;
    for (const float distance : {-0.02f, -0.005f, -0.00005f, 0.00005f, 0.0002f, 0.005f, 0.02f})
        positions.push_back({0.1f, 0.1f, 0.5f + distance, 1.0f});
    for (const Options& row : options)
        checkShadow("bias", map, light, positions, row);
}

TEST_P(ShadowMappingLibTest, BoundsBelongToTheMap) {
    const Options options[] = {
        DEFAULT_OPTIONS,
        {"debug_oob", "#define OV_SHADOW_MAP_METHOD_DEBUG_OOB", 1, 0.0001, 0.0},
        {"debug_oob_pcf16", "#define OV_SHADOW_MAP_METHOD_DEBUG_OOB\n#define OV_SHADOW_MAP_METHOD_PCF_16_TAP",
         4, 0.0001, 0.0},
    };
    const Matrix light;
    constexpr float BEYOND = 1.00001f;
    FloatPixels positions;
    for (const float x : {-2.0f, -BEYOND, -1.0f, 0.1f, 1.0f, BEYOND, 2.0f})
        for (const float y : {-2.0f, -BEYOND, -1.0f, 0.1f, 1.0f, BEYOND, 2.0f})
            for (const float depth : {-1.0f, -0.00001f, 0.0f, 0.5f, 1.0f, BEYOND, 2.0f})
                positions.push_back({x, y, depth, 1.0f});
    // Even maps, because taps of points on the edge lie on edges of texels. In one of them every depth is
    // lit; in the other only depth 0 is, by the bias.
    for (const Options& row : options) {
        checkShadow("bounds_lit", makeEvenMap(5, 3, 1.0f), light, positions, row);
        checkShadow("bounds_shadowed", makeEvenMap(5, 3, 0.0f), light, positions, row);
    }
}

TEST_P(ShadowMappingLibTest, PointsBehindTheLightAreNotGuarded) {
    const DepthMap map = makePatternedMap(8, 8);
    // w = -1: the quotients are those of the mirrored point.
    const Matrix light;
    FloatPixels positions;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            positions.push_back({1.0f - 2.0f * (float(x) + 0.4f) / 8.0f,
                                 2.0f * (float(y) + 0.4f) / 8.0f - 1.0f, -0.5f, -1.0f});
    checkShadow("behind", map, light, positions, DEFAULT_OPTIONS);

    // w = 0: infinities are outside, and where 0 / 0 leads is open, but it stays a share.
    const FloatPicture actual = drawShadow(
        makeEvenMap(8, 8, 0.0f), light, {{1, 0.5f, 0.5f, 0}, {0, -1, 0, 0}, {0, 0, 0, 0}}, DEFAULT_OPTIONS);
    EXPECT_EQ(actual.at(0, 0)[0], 1.0f);
    EXPECT_EQ(actual.at(1, 0)[0], 1.0f);
    EXPECT_TRUE(actual.at(2, 0)[0] >= 0.0f && actual.at(2, 0)[0] <= 1.0f) << actual.at(2, 0)[0];
}
