// What the macros of the shader dialect draw, against numbers worked out here.
#include <cmath>
#include <functional>
#include <ovGraphics/Canvas.h>
#include <ovGraphics/resources/ConstantBuffer.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/ShaderPassMemorySlot.h>
#include <ovGraphics/resources/Texture.h>
#include <support/PictureTest.h>

using namespace ovGraphics;
using ovMemory::String;

namespace {

constexpr unsigned int SIDE = 4; // of the picture and of the textures
constexpr unsigned int X = 1;    // the pixel that is looked at
constexpr unsigned int Y = 2;

// No two numbers are equal, so that a row, a column or a term in another's place shows.
constexpr double VALUE[4] = {2, 3, 5, 7};
constexpr double MATRIX_4[4][4] = {{1, 2, 3, 4}, {6, 8, 9, 10}, {11, 12, 13, 15}, {17, 19, 23, 29}};
constexpr double MATRIX_3[3][3] = {{31, 37, 41}, {43, 47, 53}, {59, 61, 67}};
constexpr double MATRIX_2[2][4] = {{71, 73, 79, 83}, {89, 97, 101, 103}};

const String BUFFER =
    "ovConstantBufferDecl(constants, 0) { ovFloat4 value; ovFloat4x4 matrix4; ovFloat3x3 matrix3; "
    "ovFloat2x4 matrix2; ovInt4 whole; };\n";
const String TEXTURE = "ovTexture2dDecl(image, 0);\novSamplerDecl(state, 0);\n";
const String CUBE = "ovTextureCubeDecl(image, 0);\novSamplerDecl(state, 0);\n";
const String SHADOW = "ovTexture2dShadowDecl(image, 0);\novSamplerComparisonDecl(state, 0);\n";

FloatPixel pixelOf(double x, double y = 0.0, double z = 0.0, double w = 0.0) {
    return {float(x), float(y), float(z), float(w)};
}

/// The product of row i of a matrix and a vector.
template <std::size_t COUNT>
double rowTimes(const double (&row)[COUNT], const double* vector) {
    double sum = 0.0;
    for (std::size_t i = 0; i < COUNT; ++i)
        sum += row[i] * vector[i];
    return sum;
}

/// (A (B v)) for a square matrix A and the same with its rows in the order last, first, second, ...
template <std::size_t SIZE>
FloatPixel twiceTimes(const double (&matrix)[SIZE][SIZE]) {
    double inner[SIZE];
    for (std::size_t row = 0; row < SIZE; ++row)
        inner[row] = rowTimes(matrix[(row + SIZE - 1) % SIZE], VALUE);
    FloatPixel result = {};
    for (std::size_t row = 0; row < SIZE; ++row)
        result[row] = float(rowTimes(matrix[row], inner));
    return result;
}

/// What texel (x, y) of a mip of a slice holds.
FloatPixel texel(unsigned int x, unsigned int y, unsigned int mip, unsigned int slice = 0) {
    return pixelOf(x, y, mip, slice + 1);
}

struct MacroCase {
    const char* name;
    String declarations;
    String statements;
    FloatPixel expected;
    float tolerance = 0.0f; ///< relative; whole numbers below 2^24 are exact
};

// PIX_TEXCOORD of the pixel is (0.375, 0.625). The textures are as large as the picture, so that the implicit
// mip is the first; cubes are seen through their face 4, +Z.
const String TOWARDS_Z = "ovFloat3(PIX_TEXCOORD.x * 2.0 - 1.0, 1.0 - PIX_TEXCOORD.y * 2.0, 1.0)";

const MacroCase CASES[] = {
    {"types", "",
     "ovFloat2 a = ovFloat2(1.0, 2.0); ovFloat3 b = ovFloat3(a, 3.0); ovReturn(ovFloat4(b, 4.0));",
     pixelOf(1, 2, 3, 4)},
    {"integers", BUFFER,
     "ovInt2 a = whole.xy; ovInt3 b = ovInt3(a, 9); ovInt4 c = ovInt4(b, whole.w); "
     "ovReturn(ovFloat4(float(c.x), "
     "float(c.y), float(c.z), float(c.w)));",
     pixelOf(SIDE, SIDE, 9, 3)},
    {"unsigned", BUFFER,
     "ovUint4 a = ovUint4(1u, 2u, 3u, 4294967295u); ovReturn(ovFloat4(float(a.x), float(a.y), float(a.z), "
     "a.w > 5u ? 1.0 : 0.0));",
     pixelOf(1, 2, 3, 1)},
    {"lessThan", BUFFER,
     "ovBool4 b = ovLessThan(value, ovFloat4(2.0, 4.0, 4.0, 8.0)); ovReturn(ovFloat4(b.x ? 1.0 : 0.0, b.y ? "
     "1.0 "
     ": 0.0, b.z ? 1.0 : 0.0, b.w ? 1.0 : 0.0));",
     pixelOf(0, 1, 0, 1)},
    {"rows44", BUFFER, "ovReturn(matrix4[2]);", pixelOf(11, 12, 13, 15)},
    {"rows33", BUFFER, "ovReturn(ovFloat4(matrix3[1], matrix3[2].x));", pixelOf(43, 47, 53, 59)},
    {"rows24", BUFFER, "ovReturn(matrix2[1]);", pixelOf(89, 97, 101, 103)},
    {"mul44", BUFFER, "ovReturn(ovMul(matrix4, value));",
     pixelOf(rowTimes(MATRIX_4[0], VALUE), rowTimes(MATRIX_4[1], VALUE), rowTimes(MATRIX_4[2], VALUE),
             rowTimes(MATRIX_4[3], VALUE))},
    {"mul33", BUFFER, "ovReturn(ovFloat4(ovMul(matrix3, value.xyz), 1.0));",
     pixelOf(rowTimes(MATRIX_3[0], VALUE), rowTimes(MATRIX_3[1], VALUE), rowTimes(MATRIX_3[2], VALUE), 1)},
    {"mul24", BUFFER, "ovReturn(ovFloat4(ovMul(matrix2, value), 0.0, 1.0));",
     pixelOf(rowTimes(MATRIX_2[0], VALUE), rowTimes(MATRIX_2[1], VALUE), 0, 1)},
    {"mul4444", BUFFER,
     "ovFloat4x4 other = ovFloat4x4(matrix4[3], matrix4[0], matrix4[1], matrix4[2]); "
     "ovReturn(ovMul(ovMul(matrix4, other), value));",
     twiceTimes(MATRIX_4)},
    {"mul3333", BUFFER,
     "ovFloat3x3 other = ovFloat3x3(matrix3[2], matrix3[0], matrix3[1]); "
     "ovReturn(ovFloat4(ovMul(ovMul(matrix3, other), value.xyz), 0.0));",
     twiceTimes(MATRIX_3)},
    {"constructors", BUFFER,
     "ovFloat3x3 a = ovFloat3x3(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0); ovFloat2x4 b = "
     "ovFloat2x4(value, value.wzyx); ovReturn(ovFloat4(a[1], b[1].x));",
     pixelOf(4, 5, 6, 7)},
    {"static",
     "ovStatic const ovFloat3x3 ROWS = ovFloat3x3(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0);\n"
     "ovStatic const ovFloat3 KERNEL[2] = { ovFloat3(0.5, 0.25, 0.125), ovFloat3(1.0, 2.0, 4.0) };\n",
     "ovReturn(ovFloat4(ovMul(ROWS, KERNEL[1]), KERNEL[0].z));", pixelOf(17, 38, 59, 0.125)},
    {"saturate", BUFFER, "ovReturn(ovSaturate(value * 0.25 - 0.75));", pixelOf(0, 0, 0.5, 1)},
    {"lerp", BUFFER, "ovReturn(ovLerp(value, value.wzyx, 0.25));", pixelOf(3.25, 3.5, 4.5, 5.75)},
    {"frac", BUFFER, "ovReturn(ovFrac(value * 0.25 - 1.0));", pixelOf(0.5, 0.75, 0.25, 0.75)},
    {"atan2", BUFFER, "ovReturn(ovFloat4(ovAtan2(value.x, -value.y), ovAtan2(-value.y, value.x), 0.0, 0.0));",
     pixelOf(std::atan2(2.0, -3.0), std::atan2(-3.0, 2.0)), 2e-5f},
    {"derivatives", "",
     "ovFloat2 p = PIX_TEXCOORD * ovFloat2(8.0, 16.0); ovReturn(ovFloat4(ovDdx(p), ovDdy(p)));",
     pixelOf(2, 0, 0, 4)},
    {"sample", TEXTURE, "ovReturn(ovSample(image, state, PIX_TEXCOORD));", texel(X, Y, 0)},
    {"sampleLevel", TEXTURE, "ovReturn(ovSampleLevel(image, state, PIX_TEXCOORD, 1.0));", texel(0, 1, 1)},
    {"sampleBias", TEXTURE, "ovReturn(ovSampleBias(image, state, PIX_TEXCOORD, 2.0));", texel(0, 0, 2)},
    {"sampleCube", CUBE, "ovReturn(ovSample(image, state, " + TOWARDS_Z + "));", texel(X, Y, 0, 4)},
    {"sampleLevelCube", CUBE, "ovReturn(ovSampleLevel(image, state, " + TOWARDS_Z + ", 1.0));",
     texel(0, 1, 1, 4)},
    {"sampleBiasCube", CUBE, "ovReturn(ovSampleBias(image, state, " + TOWARDS_Z + ", 2.0));",
     texel(0, 0, 2, 4)},
    {"load", TEXTURE, "ovReturn(ovLoad(image, ovInt2(3, 1), 0) + ovLoad(image, ovInt2(1, 0), 1));",
     pixelOf(4, 1, 1, 2)},
    {"loadOffset", TEXTURE, "ovReturn(ovLoadOffset(image, ovInt2(1, 2), 0, ovInt2(2, -1)));", texel(3, 1, 0)},
    {"parameters",
     TEXTURE +
         "ovFloat4 read(ovTexture2d t, ovSampler s, ovFloat2 uv) { return ovSampleLevel(t, s, uv, 0.0) + "
         "ovLoad(t, ovInt2(3, 3), 0); }\n",
     "ovReturn(read(image, state, PIX_TEXCOORD));", pixelOf(4, 5, 0, 2)},
    {"cubeParameter",
     CUBE +
         "ovFloat4 read(ovTextureCube t, ovSampler s, ovFloat3 d) { return ovSampleLevel(t, s, d, 0.0); }\n",
     "ovReturn(read(image, state, ovFloat3(-1.0, 0.1, 0.1)));", texel(2, 1, 0, 1)},
    // The texels hold a depth of 0.5 at the pixel and of 0 elsewhere; what is nearer is lit.
    {"compare", SHADOW,
     "ovReturn(ovFloat4(ovSampleCompareLevelZero(image, state, PIX_TEXCOORD, 0.4), "
     "ovSampleCompareLevelZero(image, state, PIX_TEXCOORD, 0.6), "
     "ovSampleCompareLevelZero(image, state, ovFloat2(0.1, 0.1), 0.4), 1.0));",
     pixelOf(1, 0, 0, 1)},
    {"shadowParameter",
     SHADOW + "float lit(ovTexture2dShadow t, ovSamplerComparison s, ovFloat2 uv) { return "
              "ovSampleCompareLevelZero(t, s, uv, 0.4); }\n",
     "ovReturn(ovFloat4(lit(image, state, PIX_TEXCOORD), 0.0, 0.0, 1.0));", pixelOf(1, 0, 0, 1)},
};

class DialectTest : public PictureTest {
protected:
    void SetUp() override {
        PictureTest::SetUp();
        _flat = makeMipped(TEXTURE_TYPE::TEXTURE_2D, 1);
        _cube = makeMipped(TEXTURE_TYPE::CUBE, 6);
        _depth = makeDepth();
        _sampler = makeSampler(FILTER::MIN_MAG_MIP_POINT);
        _comparison = makeSampler(FILTER::COMPARISON_MIN_MAG_MIP_POINT);
    }

    ovMemory::UniquePtr<Texture> makeMipped(TEXTURE_TYPE type, unsigned int slices) {
        auto texture = Texture::create(&getGraphics());
        texture->setTexType(type);
        texture->setFormat(FORMAT::R32G32B32A32_FLOAT);
        texture->setWidth(SIDE);
        texture->setHeight(SIDE);
        texture->setMipCount(3);
        for (unsigned int slice = 0; slice < slices; ++slice)
            for (unsigned int mip = 0; mip < 3; ++mip) {
                ovMemory::Buffer<FloatPixel> texels;
                for (unsigned int i = 0; i < (SIDE >> mip) * (SIDE >> mip); ++i)
                    texels.push_back(texel(i % (SIDE >> mip), i / (SIDE >> mip), mip, slice));
                texture->setCpuData(slice, mip, bytesOf(texels));
            }
        EXPECT_TRUE(texture->load()) << getGraphicsLogger().getText();
        return texture;
    }

    ovMemory::UniquePtr<Texture> makeDepth() {
        auto texture = Texture::create(&getGraphics());
        texture->setFormat(FORMAT::D32_FLOAT);
        texture->setWidth(SIDE);
        texture->setHeight(SIDE);
        ovMemory::Buffer<float> depths(SIDE * SIDE, 0.0f);
        depths[Y * SIDE + X] = 0.5f;
        texture->setCpuData(0, 0, bytesOf(depths));
        EXPECT_TRUE(texture->load()) << getGraphicsLogger().getText();
        return texture;
    }

    ovMemory::UniquePtr<Sampler> makeSampler(FILTER filter) {
        auto sampler = Sampler::create(&getGraphics());
        sampler->setFilter(filter);
        sampler->setComparison(COMPARISON::LESS_EQUAL);
        EXPECT_TRUE(sampler->load());
        return sampler;
    }

    template <typename T>
    static ovMemory::BufferView<const unsigned char> bytesOf(const ovMemory::Buffer<T>& values) {
        return {reinterpret_cast<const unsigned char*>(values.data()), values.size() * sizeof(T)};
    }

    void bind(Shader& shader, const String& declarations) {
        ConstantBuffer& buffer = *shader.addConstantBuffer(0, 0);
        const auto add = [&](const double* row, std::size_t count) {
            const auto at = [&](std::size_t i) { return i < count ? float(row[i]) : 999.0f; };
            buffer.addPassMemorySlot()->setFromVector({at(0), at(1), at(2), at(3)});
        };
        add(VALUE, 4);
        for (const auto& row : MATRIX_4)
            add(row, 4);
        for (const auto& row : MATRIX_3)
            add(row, 3);
        for (const auto& row : MATRIX_2)
            add(row, 4);
        buffer.addPassMemorySlot()->setAsTextureSize(_flat.get()); // width, height, slices, mips
        const bool compares = declarations.find("Shadow") != String::npos;
        const bool isCube = declarations.find("TextureCubeDecl") != String::npos;
        shader.addTexture(compares ? _depth.get() : isCube ? _cube.get() : _flat.get(), 0, 0);
        shader.addSampler(compares ? _comparison.get() : _sampler.get(), 0, 0);
    }

    ovMemory::UniquePtr<Texture> _flat;
    ovMemory::UniquePtr<Texture> _cube;
    ovMemory::UniquePtr<Texture> _depth;
    ovMemory::UniquePtr<Sampler> _sampler;
    ovMemory::UniquePtr<Sampler> _comparison;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, DialectTest, bothLanguages(), languageName);

TEST_P(DialectTest, eachMacroDrawsWhatItMeans) {
    for (const MacroCase& row : CASES) {
        SCOPED_TRACE(row.name);
        TestShader shader(getGraphics(), pixelTextOf(row.statements, row.declarations));
        ASSERT_TRUE(shader.loaded) << getGraphicsLogger().getText();
        bind(*shader, row.declarations);
        const FloatPixel drawn = draw(*shader, SIDE, SIDE).at(X, Y);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(drawn[i], row.expected[i], row.tolerance * std::abs(row.expected[i]))
                << "component " << i;
    }
}
