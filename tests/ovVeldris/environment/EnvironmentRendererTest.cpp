#include <limits>
#include <ovGraphics/Managers.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/environment/EnvironmentFixture.h>
#include <ovVeldris/environment/EnvironmentRenderer.h>
#include <support/Numbers.h>

using namespace ovVeldris;
using namespace environmentReference;
using ovGraphics::FORMAT;
using ovGraphics::TEXTURE_TYPE;

namespace {

constexpr ovMemory::StringView SENDER = "EnvironmentRenderer";

constexpr ovMemory::StringView DIRECTION_VERTEX_TEXT = R"(
ovConstantBufferDecl(constants, 0) { ovFloat4 corners[4]; };
#ifdef OV_HLSL
struct VertexInput { float4 position : POSITION; uint vertex : SV_VertexID; };
struct PixelInput { float4 position : SV_POSITION; float4 corner : CORNER; };
PixelInput main(VertexInput input) {
    PixelInput output;
    output.position = input.position;
    output.corner = corners[input.vertex];
    return output;
}
#else
in vec4 POSITION;
out vec4 CORNER;
void main() {
    gl_Position = POSITION;
    CORNER = corners[gl_VertexID];
}
#endif
)";

constexpr ovMemory::StringView DIRECTION_PIXEL_TEXT = R"(
#ifdef OV_HLSL
struct PixelInput { float4 position : SV_POSITION; float4 corner : CORNER; };
float4 main(PixelInput input) : SV_TARGET { return float4(normalize(input.corner.xyz), 1.0); }
#else
in vec4 CORNER;
out vec4 OUT_COLOR;
void main() { OUT_COLOR = vec4(normalize(CORNER.xyz), 1.0); }
#endif
)";

/// A loaded shader whose colour is the direction of the pixel.
struct DirectionShader {
    ovMemory::UniquePtr<ovGraphics::Program> program;
    ovMemory::UniquePtr<ovGraphics::Shader> shader;

    explicit DirectionShader(ovGraphics::System& graphics)
        : program(ovGraphics::Program::create(&graphics))
        , shader(ovGraphics::Shader::create(&graphics)) {
        ovGraphics::ProgramSourcesHolder sources;
        sources.setVertexMemory(DIRECTION_VERTEX_TEXT);
        sources.setPixelMemory(DIRECTION_PIXEL_TEXT);
        program->setSources(sources);
        program->setActivateCrossCompilerDefines(true);
        EXPECT_TRUE(program->load());
        shader->setProgram(program.get());
        shader->addConstantBuffer(0, 0)->addPassMemorySlot()->setAsCamCornersWorld();
        EXPECT_TRUE(shader->load());
    }
};

Color directionColor(const Direction& d) {
    return {d[0], d[1], d[2], 1.0};
}

FloatPixel noise(const Direction& d) {
    const double wave = std::sin(d[0] * 127.1 + d[1] * 311.7 + d[2] * 74.3) * 437.5;
    const float value = float(wave - std::floor(wave));
    return {value, 10.0f * value, 1.0f - value, 0.25f};
}

class EnvironmentRendererTest : public EnvironmentFixture {
protected:
    EnvironmentRenderer& tool() { return *getSystem()->getEnvironmentRenderer(); }

    /// A cube of one mip, so that a sampler has no choice.
    static Environment makeFlatCube(unsigned int size) {
        Environment cube = makeCube(size, noise);
        cube.mips.resize(1);
        return cube;
    }

    void expectOneMessage(ovMemory::StringView message) {
        ASSERT_EQ(getLog().messages.size(), 1u) << message << "\n" << getLog().getText();
        EXPECT_EQ(getLog().messages[0].message, message);
        EXPECT_EQ(getLog().messages[0].sender, SENDER);
        getLog().messages.clear();
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, EnvironmentRendererTest, bothLanguages(), languageName);

TEST_P(EnvironmentRendererTest, rendersFacesInTheCubesConvention) {
    const DirectionShader direction(getGraphics());
    for (const unsigned int size : {1u, 5u, 16u}) {
        const auto output = makeOutput();
        tool().renderCubemap(output.get(), direction.shader.get(), size, FORMAT::R32G32B32A32_FLOAT);
        EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
        ASSERT_FALSE(output->isUnloaded());
        for (unsigned int face = 0; face < 6; ++face)
            // Interpolated and normalised: a few roundings of 6e-8.
            EXPECT_TRUE(picturesMatch("cubemap_directions", readSlice(*output, face, 0),
                                      drawFace(face, size, directionColor), {.worst = 5e-7f, .mean = 1e-7f}))
                << "size " << size << ", face " << face;
    }
}

TEST_P(EnvironmentRendererTest, fillsTheMipsFromTheFaces) {
    const DirectionShader direction(getGraphics());
    const auto output = makeOutput();
    tool().renderCubemap(output.get(), direction.shader.get(), 8, FORMAT::R32G32B32A32_FLOAT);
    ASSERT_EQ(output->getMipCount(), 4u);
    for (unsigned int face = 0; face < 6; ++face)
        for (unsigned int mip = 1; mip < 4; ++mip) {
            const FloatPicture finer = readSlice(*output, face, mip - 1);
            FloatPicture expected(finer.width / 2, finer.height / 2);
            for (unsigned int y = 0; y < finer.height; ++y)
                for (unsigned int x = 0; x < finer.width; ++x)
                    for (std::size_t i = 0; i < 4; ++i)
                        expected.at(x / 2, y / 2)[i] += 0.25f * finer.at(x, y)[i];
            EXPECT_TRUE(picturesMatch("cubemap_mips", readSlice(*output, face, mip), expected,
                                      {.worst = 3e-7f, .mean = 1e-7f}));
        }
}

TEST_P(EnvironmentRendererTest, setsTheCubeUp) {
    struct Case {
        FORMAT format;
        bool gammaCorrected;
    };
    const DirectionShader direction(getGraphics());
    for (const Case& row : {Case{FORMAT::R8G8B8A8_UNORM, true}, Case{FORMAT::R8G8B8A8_UNORM_SRGB, false},
                            Case{FORMAT::B8G8R8A8_UNORM, true}, Case{FORMAT::R16G16B16A16_FLOAT, false},
                            Case{FORMAT::R11G11B10_FLOAT, false}, Case{FORMAT::R8_UNORM, false}}) {
        SCOPED_TRACE(ovGraphics::TextureUtils::getFormatName(row.format));
        const auto output = makeTexture(FloatPicture(3, 2)); // what it was before does not matter
        tool().renderCubemap(output.get(), direction.shader.get(), 4, row.format);
        EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
        ASSERT_FALSE(output->isUnloaded()) << getGraphicsLogger().getText();
        EXPECT_EQ(output->getTexType(), TEXTURE_TYPE::CUBE);
        EXPECT_EQ(output->getFormat(), row.format);
        EXPECT_EQ(output->getGammaCorrected(), row.gammaCorrected);
        EXPECT_EQ(output->getWidth(), 4u);
        EXPECT_EQ(output->getHeight(), 4u);
        EXPECT_EQ(output->getMipCount(), 3u);
        EXPECT_TRUE(output->getUsableAsRenderTarget());
        EXPECT_TRUE(output->getMightManuallyGenerateMip());
        // The middle of +Z looks along z: 1 in the third channel, encoded or not.
        if (row.format == FORMAT::R8G8B8A8_UNORM) {
            const auto bytes = output->readBack(4, 0);
            ASSERT_TRUE(bytes);
            const float x = float(texelDirection(4, 2, 1, 4)[0]); // 0.2355 is 0.5225 in sRGB
            const float encoded = 1.055f * std::pow(x, 1.0f / 2.4f) - 0.055f;
            EXPECT_NEAR(float((*bytes)[4 * (1 * 4 + 2)]), 255.0f * encoded, 1.0f);
        }
    }
}

TEST_P(EnvironmentRendererTest, unwrapsACubePerTexel) {
    struct Case {
        unsigned int cube;
        unsigned int width;
        unsigned int height;
    };
    for (const Case& row : {Case{16, 64, 32}, Case{4, 32, 16}, Case{1, 8, 4}, Case{5, 13, 7}, Case{16, 1, 1},
                            Case{8, 16, 64}, Case{64, 16, 8}}) {
        const Environment cube = makeFlatCube(row.cube);
        const auto input = makeEnvironment(cube);
        const auto output = makeOutput();
        tool().cubemapToSphericalMap(output.get(), input.get(), row.width, row.height);
        EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
        ASSERT_FALSE(output->isUnloaded()) << getGraphicsLogger().getText();
        FloatPicture expected(row.width, row.height);
        for (unsigned int y = 0; y < row.height; ++y)
            for (unsigned int x = 0; x < row.width; ++x) {
                const Color color =
                    cube.sample(mapDirection((x + 0.5) / row.width, (y + 0.5) / row.height), 0.0);
                expected.at(x, y) = {float(color[0]), float(color[1]), float(color[2]), 1.0f};
            }
        // Sines and cosines of the driver, right to 1e-6, move the place by that; texels next to each other
        // differ by up to 10 over 1/32 and less of the sphere.
        EXPECT_TRUE(
            picturesMatch("spherical_map", readFloats(*output), expected, {.worst = 2e-3f, .mean = 5e-5f}))
            << row.cube << " to " << row.width << " x " << row.height;
    }
}

TEST_P(EnvironmentRendererTest, putsTheAxesWhereTheMapsReadersLook) {
    const DirectionShader direction(getGraphics());
    const auto cube = makeOutput();
    tool().renderCubemap(cube.get(), direction.shader.get(), 64, FORMAT::R32G32B32A32_FLOAT);
    const auto map = makeOutput();
    tool().cubemapToSphericalMap(map.get(), cube.get(), 65, 129); // odd: the middle of the map is a texel's
    const FloatPicture picture = readFloats(*map);
    const auto expectDirection = [&](unsigned int x, unsigned int y, const Direction& expected,
                                     double tolerance) {
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(double(picture.at(x, y)[i]), expected[i], tolerance) << x << ", " << y;
    };
    // The map's texels are as large as those of the cube's mip 2, 1/8 wide, whose means lie within the
    // sphere.
    expectDirection(32, 64, {1.0, 0.0, 0.0}, 5e-3);
    for (const unsigned int x : {0u, 20u, 64u}) {
        expectDirection(x, 0, {0.0, 1.0, 0.0}, 0.013); // half a row from the pole: pi / 258
        expectDirection(x, 128, {0.0, -1.0, 0.0}, 0.013);
    }
    expectDirection(48, 64, mapDirection(48.5 / 65.0, 0.5), 5e-3);
    EXPECT_GT(picture.at(48, 64)[2], 0.9f); // +z lies right of +x
    EXPECT_LT(picture.at(16, 64)[2], -0.9f);
}

TEST_P(EnvironmentRendererTest, setsTheMapUp) {
    struct Case {
        FORMAT format;
        bool gammaCorrected;
        FORMAT outputFormat;
    };
    for (const Case& row : {Case{FORMAT::R8G8B8A8_UNORM, true, FORMAT::R8G8B8A8_UNORM},
                            Case{FORMAT::R16G16B16A16_FLOAT, false, FORMAT::R16G16B16A16_FLOAT},
                            Case{FORMAT::BC1_UNORM, true, FORMAT::R8G8B8A8_UNORM},
                            Case{FORMAT::BC7_UNORM, false, FORMAT::R8G8B8A8_UNORM},
                            Case{FORMAT::BC6H_UF16, false, FORMAT::R8G8B8A8_UNORM}}) {
        SCOPED_TRACE(ovGraphics::TextureUtils::getFormatName(row.format));
        const auto input = ovGraphics::Texture::create(&getGraphics());
        input->setTexType(TEXTURE_TYPE::CUBE);
        input->setWidth(4);
        input->setHeight(4);
        input->setFormat(row.format);
        input->setGammaCorrected(row.gammaCorrected);
        const ovMemory::Buffer<unsigned char> zeros(ovGraphics::TextureUtils::getSliceSize(row.format, 4, 4));
        for (unsigned int face = 0; face < 6; ++face)
            input->setCpuData(face, 0, zeros);
        ASSERT_TRUE(input->load()) << getGraphicsLogger().getText();
        const auto output = makeTexture(FloatPicture(3, 2));
        tool().cubemapToSphericalMap(output.get(), input.get(), 16, 8);
        EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
        ASSERT_FALSE(output->isUnloaded()) << getGraphicsLogger().getText();
        EXPECT_EQ(output->getTexType(), TEXTURE_TYPE::TEXTURE_2D);
        EXPECT_EQ(output->getFormat(), row.outputFormat);
        EXPECT_EQ(output->getGammaCorrected(), row.gammaCorrected);
        EXPECT_EQ(output->getWidth(), 16u);
        EXPECT_EQ(output->getHeight(), 8u);
        EXPECT_EQ(output->getMipCount(), 5u);
        EXPECT_TRUE(output->getUsableAsRenderTarget());
        EXPECT_TRUE(output->getMightManuallyGenerateMip());
        const auto last = output->readBack(0, 4);
        ASSERT_TRUE(last);
        if (row.outputFormat == FORMAT::R8G8B8A8_UNORM) {
            EXPECT_EQ((*last)[3], 255); // alpha is 1 in every mip
        }
    }
}

TEST_P(EnvironmentRendererTest, refusesWhatCannotBecomeACube) {
    const DirectionShader direction(getGraphics());
    const auto unloaded = ovGraphics::Shader::create(&getGraphics());
    useLanguage(getOtherLanguage());
    const DirectionShader foreign(getGraphics());
    const auto foreignOutput = makeOutput();
    useLanguage(getOtherLanguage());
    const FloatPicture before(2, 2, {1.0f, 2.0f, 3.0f, 4.0f});
    const auto output = makeTexture(before);

    constexpr ovMemory::StringView MISSING =
        "Missing output texture or shader to render a cube map. Aborting.";
    constexpr ovMemory::StringView DIFFERENT =
        "The outout texture or the shader come from a different system than the renderer's one. Aborting.";
    struct Case {
        ovGraphics::Texture* output;
        ovGraphics::Shader* shader;
        ovMemory::StringView message;
    };
    for (const Case& row :
         {Case{nullptr, direction.shader.get(), MISSING}, Case{output.get(), nullptr, MISSING},
          Case{foreignOutput.get(), direction.shader.get(), DIFFERENT},
          Case{output.get(), foreign.shader.get(), DIFFERENT},
          Case{output.get(), unloaded.get(),
               "The shader to render a cube map with is not loaded, load it and its program first. "
               "Aborting."}}) {
        tool().renderCubemap(row.output, row.shader, 16, FORMAT::R32G32B32A32_FLOAT);
        expectOneMessage(row.message);
        EXPECT_TRUE(picturesAreIdentical("cubemap_untouched", readFloats(*output), before));
    }
    EXPECT_TRUE(foreignOutput->isUnloaded());
}

TEST_P(EnvironmentRendererTest, refusesWhatCannotBecomeAMap) {
    const auto cube = makeEnvironment(makeFlatCube(2));
    const auto flat = makeEnvironment(makeMap(2, 1, noise));
    const auto unloaded = ovGraphics::Texture::create(&getGraphics());
    unloaded->setTexType(TEXTURE_TYPE::CUBE);
    const auto integers = ovGraphics::Texture::create(&getGraphics());
    integers->setTexType(TEXTURE_TYPE::CUBE);
    integers->setFormat(FORMAT::R8G8B8A8_UINT);
    ASSERT_TRUE(integers->load()) << getGraphicsLogger().getText();
    useLanguage(getOtherLanguage());
    const auto foreign = makeEnvironment(makeFlatCube(2));
    const auto foreignOutput = makeOutput();
    useLanguage(getOtherLanguage());
    const FloatPicture before(2, 2, {1.0f, 2.0f, 3.0f, 4.0f});
    const auto output = makeTexture(before);

    constexpr ovMemory::StringView MISSING =
        "The input, or output texture is nullptr, cannot convert the cubemap to a spherical map. Aborting.";
    constexpr ovMemory::StringView NOT_A_CUBE = "The input texture for spherical map conversion is either "
                                                "not loaded, either not a cubemap. Aborting.";
    constexpr ovMemory::StringView DIFFERENT =
        "Input and output textures are not from the same graphics system as the renderer. Aborting.";
    struct Case {
        ovGraphics::Texture* output;
        ovGraphics::Texture* input;
        ovMemory::StringView message;
    };
    for (const Case& row :
         {Case{nullptr, cube.get(), MISSING}, Case{output.get(), nullptr, MISSING},
          Case{output.get(), unloaded.get(), NOT_A_CUBE}, Case{output.get(), flat.get(), NOT_A_CUBE},
          Case{output.get(), foreign.get(), DIFFERENT}, Case{foreignOutput.get(), cube.get(), DIFFERENT},
          Case{foreignOutput.get(), foreign.get(), DIFFERENT},
          Case{cube.get(), cube.get(),
               "The input texture for spherical map conversion is the output texture too, convert it "
               "into another one. Aborting."},
          Case{output.get(), integers.get(),
               "The input texture for spherical map conversion holds whole numbers, give a UNORM, "
               "SNORM or FLOAT one. Aborting."}}) {
        tool().cubemapToSphericalMap(row.output, row.input, 4, 2);
        expectOneMessage(row.message);
        EXPECT_TRUE(picturesAreIdentical("spherical_untouched", readFloats(*output), before));
        EXPECT_FALSE(cube->isUnloaded());
    }
    EXPECT_TRUE(foreignOutput->isUnloaded());
}

TEST_P(EnvironmentRendererTest, logsOutputsThatTheDeviceRefuses) {
    const DirectionShader direction(getGraphics());
    const auto cube = makeEnvironment(makeFlatCube(2));
    const auto output = makeOutput();
    const ovGraphics::device::DeviceInfo& info = *getGraphics().getDeviceInfo();
    struct CubeCase {
        unsigned int resolution;
        FORMAT format;
    };
    for (const CubeCase& row :
         {CubeCase{0, FORMAT::R8G8B8A8_UNORM}, CubeCase{info.maxCubeSize + 1, FORMAT::R8G8B8A8_UNORM},
          CubeCase{4, FORMAT::BC1_UNORM}, CubeCase{4, FORMAT::UNKNOWN}, CubeCase{4, FORMAT::D32_FLOAT}}) {
        tool().renderCubemap(output.get(), direction.shader.get(), row.resolution, row.format);
        expectOneMessage("Error while loading the cubemap to render the effect in. Aborting generation.");
        EXPECT_TRUE(output->isUnloaded());
    }
    struct MapCase {
        unsigned int width;
        unsigned int height;
    };
    for (const MapCase& row : {MapCase{0, 4}, MapCase{4, 0}, MapCase{info.maxTextureSize + 1, 1}}) {
        tool().cubemapToSphericalMap(output.get(), cube.get(), row.width, row.height);
        expectOneMessage(
            "Error while loading the spherical map to render the cubemap in. Aborting generation.");
        EXPECT_TRUE(output->isUnloaded());
    }
    // It can be drawn into again.
    tool().renderCubemap(output.get(), direction.shader.get(), 4, FORMAT::R8G8B8A8_UNORM);
    EXPECT_TRUE(getLog().messages.empty());
    EXPECT_FALSE(output->isUnloaded());
}

TEST_P(EnvironmentRendererTest, keepsWhatIsNotFiniteInItsPlace) {
    for (const float bad : {INFINITE, -INFINITE, std::numeric_limits<float>::quiet_NaN()}) {
        Environment cube = makeFlatCube(8);
        cube.mips[0][0].at(3, 3)[0] = bad; // at +x
        const auto input = makeEnvironment(cube);
        const auto output = makeOutput();
        tool().cubemapToSphericalMap(output.get(), input.get(), 32, 16);
        const FloatPicture picture = readFloats(*output);
        EXPECT_FALSE(std::isfinite(picture.at(16, 7)[0]));
        for (unsigned int y = 0; y < 16; ++y)
            EXPECT_TRUE(std::isfinite(picture.at(0, y)[0])); // at -x
    }
}

TEST_P(EnvironmentRendererTest, leavesTheGraphicsSystemAsItWas) {
    const DirectionShader direction(getGraphics());
    const auto output = makeOutput();
    const auto map = makeOutput();
    const auto camera = ovGraphics::Camera::create(&getGraphics());
    const auto context = ovGraphics::RenderContext::create(&getGraphics());
    getGraphics().getCameraManager()->setActiveRenderCamera(camera.get());
    getGraphics().getRenderContextManager()->setActiveRenderContext(context.get());
    const auto countAll = [&] {
        return getGraphics().getCameraManager()->getCount() +
               getGraphics().getRenderContextManager()->getCount() +
               getGraphics().getCompositorManager()->getCount() +
               getGraphics().getShaderManager()->getCount();
    };
    const unsigned int before = countAll();
    tool().renderCubemap(output.get(), direction.shader.get(), 4, FORMAT::R8G8B8A8_UNORM);
    tool().cubemapToSphericalMap(map.get(), output.get(), 8, 4);
    EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
    EXPECT_EQ(countAll(), before);
    EXPECT_EQ(getGraphics().getCameraManager()->getActiveRenderCamera(), camera.get());
    EXPECT_EQ(getGraphics().getRenderContextManager()->getActiveRenderContext(), context.get());
}

TEST_P(EnvironmentRendererTest, worksAfterTheGraphicsSystemStartedAnew) {
    System system;
    ASSERT_TRUE(initializeOwn(system));
    ovGraphics::System& graphics = *system.getGraphicsEngine()->getGraphicsSystem();
    const auto input = ovGraphics::Texture::create(&graphics);
    input->setTexType(TEXTURE_TYPE::CUBE);
    const auto output = ovGraphics::Texture::create(&graphics);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(input->load());
        system.getEnvironmentRenderer()->cubemapToSphericalMap(output.get(), input.get(), 4, 2);
        EXPECT_FALSE(output->isUnloaded()) << getLog().getText();
        graphics.shutdown();
        ASSERT_TRUE(graphics.initialize(HeadlessSystem::makeConfiguration(getLanguage(), &getLog())));
    }
    EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
}

TEST_P(EnvironmentRendererTest, followsItsSystemToOtherGraphics) {
    System system;
    EnvironmentRenderer renderer(&system);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(initializeOwn(system));
        ovGraphics::System& graphics = *system.getGraphicsEngine()->getGraphicsSystem();
        const auto input = ovGraphics::Texture::create(&graphics);
        input->setTexType(TEXTURE_TYPE::CUBE);
        ASSERT_TRUE(input->load());
        const auto output = ovGraphics::Texture::create(&graphics);
        renderer.cubemapToSphericalMap(output.get(), input.get(), 4, 2);
        EXPECT_FALSE(output->isUnloaded()) << round << getLog().getText();
        system.shutdown();
    }
}

TEST_P(EnvironmentRendererTest, drawsTheSameBitsInBothLanguages) {
    const auto drawAll = [&] {
        ovMemory::Buffer<FloatPicture> pictures;
        const DirectionShader direction(getGraphics());
        const auto cube = makeOutput();
        const auto map = makeOutput();
        tool().renderCubemap(cube.get(), direction.shader.get(), 8, FORMAT::R32G32B32A32_FLOAT);
        tool().cubemapToSphericalMap(map.get(), cube.get(), 32, 16);
        for (unsigned int face = 0; face < 6; ++face)
            pictures.push_back(readSlice(*cube, face, 0));
        pictures.push_back(readFloats(*map));
        return pictures;
    };
    const ovMemory::Buffer<FloatPicture> pictures = drawAll();
    useLanguage(getOtherLanguage());
    const ovMemory::Buffer<FloatPicture> others = drawAll();
    for (std::size_t i = 0; i < pictures.size(); ++i)
        EXPECT_TRUE(picturesAreIdentical("environment_languages", others[i], pictures[i])) << i;
}
