#include <map>
#include <ovGraphics/Managers.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/ProgramLibrary.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovVeldris/environment/EnvironmentFixture.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <support/Numbers.h>

// Its names stay its own where the folder is compiled as one.
namespace pbsEnvironmentMapFilterTest {

using namespace ovVeldris;
using namespace environmentReference;
using ovGraphics::FORMAT;
using ovGraphics::TEXTURE_TYPE;

namespace {

constexpr ovMemory::StringView SENDER = "PbsEnvironmentMapFilter";
constexpr ovMemory::StringView REFUSED = "Filter output texture cannot be loaded using given parameters. "
                                         "Problem is within the engine and needs to be fixed "
                                         "there, please give a notice about this. [environment]";

/// Light that changes smoothly with the direction, differently in each channel.
FloatPixel smoothLight(const Direction& d) {
    return {float(1.0 + 0.5 * d[0] + 0.25 * d[1] * d[2]), float(2.0 + d[1] - d[0] * d[2]),
            float(1.5 + 1.4 * d[2]), 0.25f};
}

/// Light without any order, the same for the same direction: every texel differs from its neighbours.
FloatPixel noise(const Direction& d) {
    const auto value = [&](double seed) {
        const double wave = std::sin(d[0] * 1271.1 + d[1] * 3117.7 + d[2] * 743.3 + seed) * 4375.545;
        return float(wave - std::floor(wave));
    };
    return {value(0.0), 10.0f * value(1.0), 100.0f * value(2.0), value(3.0)};
}

float roughnessOf(unsigned int mip, unsigned int mipCount) {
    return mipCount > 1 ? std::min(1.0f, float(mip) / float(mipCount - 1)) : 0.0f;
}

class PbsEnvironmentMapFilterTest : public EnvironmentFixture {
protected:
    PbsEnvironmentMapFilter& filterTool() { return *getSystem()->getPbsEnvironmentMapFilter(); }

    void filterInto(ovGraphics::Texture* input, ovGraphics::Texture* output, unsigned int resolution) {
        getLog().messages.clear();
        filterTool().requestEnvironmentMapFiltering(input, output, resolution);
    }

    ovMemory::UniquePtr<ovGraphics::Texture> filtered(ovGraphics::Texture& input, unsigned int resolution) {
        auto output = makeOutput();
        filterInto(&input, output.get(), resolution);
        EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
        EXPECT_FALSE(output->isUnloaded()) << getGraphicsLogger().getText();
        return output;
    }

    /// Compares every texel of every mip with a function of (direction, roughness).
    template <typename Function>
    void expectTexels(const ovMemory::String& name, ovGraphics::Texture& output, const PictureLimits& limits,
                      const Function& expected) {
        for (unsigned int mip = 0; mip < output.getMipCount(); ++mip)
            for (unsigned int face = 0; face < 6; ++face) {
                const FloatPicture actual = readSlice(output, face, mip);
                const double roughness = double(roughnessOf(mip, output.getMipCount()));
                const ovMemory::String title =
                    "filter_" + name + "_" + std::to_string(mip) + "_" + std::to_string(face);
                const FloatPicture& picture = drawOnce(
                    title, face, actual.width, [&](const Direction& n) { return expected(n, roughness); });
                EXPECT_TRUE(picturesMatch(title, actual, picture, limits));
            }
    }

    /// A face as a reference draws it: slowly, so that the second language gets what the first one got.
    template <typename Function>
    const FloatPicture& drawOnce(const ovMemory::String& name, unsigned int face, unsigned int width,
                                 const Function& colorOf) {
        static std::map<ovMemory::String, FloatPicture> drawn;
        const auto [entry, isNew] = drawn.try_emplace(name + " " + std::to_string(width));
        if (isNew)
            entry->second = drawFace(face, width, colorOf);
        return entry->second;
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(, PbsEnvironmentMapFilterTest, bothLanguages(), languageName);

TEST_P(PbsEnvironmentMapFilterTest, followsItsFormulaPerTexel) {
    struct Case {
        const char* name;
        Environment environment;
        unsigned int resolution;
        PictureLimits limits;
    };
    // 1024 terms of rounded directions. Between texels that have nothing in common and differ by up to 100, a
    // direction that is off by a rounding of 6e-8 reads a colour that is off by that times the texels a
    // radian; the driver's atan is off by up to 2e-5 of a radian, which a map's texels see.
    constexpr PictureLimits CUBE = {.worst = 1e-4f, .mean = 2e-6f};
    constexpr PictureLimits MAP = {.worst = 2e-3f, .mean = 3e-5f};
    const Case cases[] = {
        {"cube", makeCube(16, noise), 16, CUBE},         {"cube_coarse", makeCube(4, noise), 16, CUBE},
        {"cube_fine", makeCube(64, noise), 8, CUBE},     {"cube_odd", makeCube(5, noise), 9, CUBE},
        {"cube_of_one", makeCube(1, noise), 4, CUBE},    {"map", makeMap(32, 16, noise), 16, MAP},
        {"map_fine", makeMap(128, 64, noise), 8, MAP},   {"map_square", makeMap(16, 16, noise), 8, MAP},
        {"map_narrow", makeMap(10, 27, noise), 12, MAP}, {"map_of_one", makeMap(1, 1, noise), 5, MAP},
    };
    for (const Case& row : cases) {
        const auto input = makeEnvironment(row.environment);
        const auto output = filtered(*input, row.resolution);
        expectTexels(row.name, *output, row.limits, [&](const Direction& n, double roughness) {
            return filter(row.environment, n, roughness);
        });
    }
}

TEST_P(PbsEnvironmentMapFilterTest, keepsAConstantAtEveryMip) {
    const FloatPixel light = {0.3f, 7.0f, 110000.0f, 0.5f};
    const auto constant = [&](const Direction&) { return light; };
    // 256 is the usual size: seven mips, from 256 to 4.
    const auto fromMap = makeEnvironment(makeMap(4, 2, constant));
    const auto output = filtered(*fromMap, GetParam() == ovGraphics::SHADER_LANGUAGE::GLSL ? 256 : 32);
    EXPECT_EQ(output->getMipCount(), GetParam() == ovGraphics::SHADER_LANGUAGE::GLSL ? 7u : 4u);
    const auto expected = [&](const Direction&, double) {
        return Color{double(light[0]), double(light[1]), double(light[2]), 1.0};
    };
    // A sum of 1024 terms, rounded at each.
    const PictureLimits limits = {.worst = 2e-5f, .mean = 1e-5f, .floor = 0.01f};
    expectTexels("constant_map", *output, limits, expected);
    const auto fromCube = makeEnvironment(makeCube(2, constant));
    expectTexels("constant_cube", *filtered(*fromCube, 16), limits, expected);
}

TEST_P(PbsEnvironmentMapFilterTest, reproducesTheInputAtMipZero) {
    const Environment cube = makeCube(16, noise);
    const auto input = makeEnvironment(cube);
    const auto output = filtered(*input, 16);
    for (unsigned int face = 0; face < 6; ++face) {
        const FloatPicture expected = cube.mips[0][face].map([](const FloatPixel& p) {
            return FloatPixel{p[0], p[1], p[2], 1.0f};
        });
        // The places of texels are met but for a rounding, which reads that share of a neighbour that differs
        // by 100.
        EXPECT_TRUE(picturesMatch("filter_mip_zero", readSlice(*output, face, 0), expected,
                                  {.worst = 1e-4f, .mean = 1e-6f}));
    }
}

TEST_P(PbsEnvironmentMapFilterTest, comesOutInTheCubesFaceConvention) {
    // A cube whose colour is its direction; a mirror shows each direction itself.
    const auto direction = [](const Direction& d) {
        return FloatPixel{float(d[0]), float(d[1]), float(d[2]), 1.0f};
    };
    const auto input = makeEnvironment(makeMap(256, 128, direction));
    const auto output = filtered(*input, 32);
    for (unsigned int face = 0; face < 6; ++face) {
        const FloatPicture expected = drawFace(face, 32, [](const Direction& d) {
            return Color{d[0], d[1], d[2], 1.0};
        });
        // Chords of texels of 0.025 rad miss the sphere by an eighth of their square.
        EXPECT_TRUE(picturesMatch("filter_faces", readSlice(*output, face, 0), expected,
                                  {.worst = 2e-3f, .mean = 2e-4f}));
    }
}

TEST_P(PbsEnvironmentMapFilterTest, spreadsALightAsTheLobeDoes) {
    // A disc of light 0.25 rad wide; the mips hold its means over their texels.
    const Direction middle = normalized({0.7, 0.3, 0.4});
    const auto disc = [&](const Direction& d) { return dot(d, middle) > std::cos(0.25) ? 1.0 : 0.0; };
    auto input = ovGraphics::Texture::create(&getGraphics());
    const Environment sharp = makeCube(64, [&](const Direction& d) {
        const float light = float(disc(d));
        return FloatPixel{light, light, light, 1.0f};
    });
    input->setFormat(FORMAT::R32G32B32A32_FLOAT);
    input->setTexType(TEXTURE_TYPE::CUBE);
    input->setWidth(64);
    input->setHeight(64);
    input->setMipCount(0);
    for (unsigned int face = 0; face < 6; ++face)
        input->setCpuData(face, 0, bytesOf(sharp.mips[0][face]));
    ASSERT_TRUE(input->load());
    const auto output = filtered(*input, 32);
    ASSERT_EQ(output->getMipCount(), 4u);
    for (unsigned int mip = 1; mip < 4; ++mip)
        for (unsigned int face = 0; face < 6; ++face) {
            const FloatPicture actual = readSlice(*output, face, mip);
            const ovMemory::String name = "disc_" + std::to_string(mip) + "_" + std::to_string(face);
            const FloatPicture& expected = drawOnce(name, face, actual.width, [&](const Direction& n) {
                const double value = integrateLobe(disc, n, double(roughnessOf(mip, 4)), 128);
                return Color{value, value, value, 1.0};
            });
            // An estimate with 1024 samples and texels of 0.025 rad and more; the disc's edge is what they
            // miss.
            EXPECT_TRUE(picturesMatch("filter_disc", actual, expected, {.worst = 0.02f, .mean = 0.002f}))
                << "mip " << mip << ", face " << face;
        }
}

TEST_P(PbsEnvironmentMapFilterTest, agreesForAMapAndACube) {
    const auto map = makeEnvironment(makeMap(256, 128, smoothLight));
    const auto cube = makeEnvironment(makeCube(64, smoothLight));
    const auto fromMap = filtered(*map, 32);
    const auto fromCube = filtered(*cube, 32);
    for (unsigned int mip = 0; mip < fromMap->getMipCount(); ++mip)
        for (unsigned int face = 0; face < 6; ++face)
            // Different texels of the same smooth light, curved between them.
            EXPECT_TRUE(picturesMatch("filter_map_and_cube", readSlice(*fromMap, face, mip),
                                      readSlice(*fromCube, face, mip), {.worst = 0.01f, .mean = 0.002f}))
                << "mip " << mip << ", face " << face;
}

namespace {

/// A disc of light beside the middle of each of the twelve edges of a cube, another in each channel.
FloatPixel lightAtEdges(const Direction& d) {
    FloatPixel light = {0.1f, 0.1f, 0.1f, 1.0f};
    for (int axis = 0; axis < 3; ++axis)
        for (const double first : {-1.0, 1.0})
            for (const double second : {-1.0, 1.0}) {
                Direction middle = {0.1, -0.15, 0.2};
                middle[(axis + 1) % 3] += first;
                middle[(axis + 2) % 3] += second;
                if (dot(d, normalized(middle)) > std::cos(0.2))
                    light[std::size_t(axis)] += 3.0f;
            }
    return light;
}

struct Place {
    unsigned int face;
    unsigned int x;
    unsigned int y;
};

/// The texel of a cube that is nearest to a direction, of all there are.
Place nearestTexel(const Direction& direction, unsigned int size) {
    Place nearest = {};
    double closest = -2.0;
    for (unsigned int face = 0; face < 6; ++face)
        for (unsigned int y = 0; y < size; ++y)
            for (unsigned int x = 0; x < size; ++x)
                if (const double cosine = dot(direction, texelDirection(face, x, y, size));
                    cosine > closest) {
                    closest = cosine;
                    nearest = {face, x, y};
                }
    return nearest;
}

/// The texel beyond the edge of a face, left (0), right (1), above (2) or below (3) it, at place i of the
/// edge, and the two texels on this side, the nearer first.
struct Crossing {
    Place beyond, near, inside;
};

Crossing crossingOf(unsigned int face, unsigned int side, unsigned int i, unsigned int size) {
    const unsigned int last = side % 2 == 0 ? 0 : size - 1;
    const unsigned int before = side % 2 == 0 ? 1 : size - 2;
    const double outside = side % 2 == 0 ? -0.5 / size : 1.0 + 0.5 / size;
    const double along = (i + 0.5) / size;
    if (side < 2)
        return {nearestTexel(faceDirection(face, outside, along), size), {face, last, i}, {face, before, i}};
    return {nearestTexel(faceDirection(face, along, outside), size), {face, i, last}, {face, i, before}};
}

/// The largest change of the step from texel to texel within a face.
float sharpestBend(const ovMemory::Buffer<FloatPicture>& faces, std::size_t channel) {
    float bend = 0.0f;
    for (const FloatPicture& face : faces)
        for (unsigned int i = 0; i < face.width; ++i)
            for (unsigned int j = 1; j + 1 < face.width; ++j) {
                const auto across = [&](unsigned int k) { return face.at(k, i)[channel]; };
                const auto down = [&](unsigned int k) { return face.at(i, k)[channel]; };
                bend = std::max({bend, std::abs(across(j - 1) - 2.0f * across(j) + across(j + 1)),
                                 std::abs(down(j - 1) - 2.0f * down(j) + down(j + 1))});
            }
    return bend;
}

} // namespace

TEST_P(PbsEnvironmentMapFilterTest, showsNoSeamBetweenFaces) {
    for (const auto light : {smoothLight, lightAtEdges}) {
        const auto input = makeEnvironment(makeMap(128, 64, light));
        const auto output = filtered(*input, 32);
        // The first mip shows the edges of the discs themselves; the last has four texels a side.
        for (unsigned int mip = 1; mip < output->getMipCount(); ++mip) {
            ovMemory::Buffer<FloatPicture> faces;
            for (unsigned int face = 0; face < 6; ++face)
                faces.push_back(readSlice(*output, face, mip));
            const unsigned int size = faces[0].width;
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const auto at = [&](const Place& place) {
                    return faces[place.face].at(place.x, place.y)[channel];
                };
                const float bend = sharpestBend(faces, channel);
                for (unsigned int i = 0; i < 6 * 4 * size; ++i) {
                    const Crossing crossing = crossingOf(i / (4 * size), i / size % 4, i % size, size);
                    ASSERT_NE(crossing.beyond.face, crossing.near.face);
                    const float step = at(crossing.near) - at(crossing.inside);
                    const float seam = at(crossing.beyond) - at(crossing.near);
                    // Texels come closer together towards an edge and part again beyond it, which bends
                    // a slope where the light itself is straight.
                    EXPECT_LE(std::abs(seam - step), 2.5f * bend)
                        << "mip " << mip << ", channel " << channel << ", face " << crossing.near.face;
                }
            }
        }
    }
}

TEST_P(PbsEnvironmentMapFilterTest, setsTheOutputUp) {
    struct Case {
        FORMAT format;
        bool gammaCorrected;
        FORMAT outputFormat;
        bool outputGammaCorrected;
    };
    const Case cases[] = {
        {FORMAT::R8G8B8A8_UNORM, false, FORMAT::R8G8B8A8_UNORM, false},
        {FORMAT::R8G8B8A8_UNORM, true, FORMAT::R8G8B8A8_UNORM, true},
        {FORMAT::R8G8B8A8_UNORM_SRGB, true, FORMAT::R8G8B8A8_UNORM_SRGB, false},
        {FORMAT::B8G8R8X8_UNORM, true, FORMAT::B8G8R8A8_UNORM, true},
        {FORMAT::R8_UNORM, false, FORMAT::R8G8B8A8_UNORM, false},
        {FORMAT::R16G16_FLOAT, false, FORMAT::R16G16B16A16_FLOAT, false},
        {FORMAT::R32G32B32_FLOAT, false, FORMAT::R32G32B32A32_FLOAT, false},
        {FORMAT::BC1_UNORM, false, FORMAT::R8G8B8A8_UNORM, false},
        {FORMAT::BC3_UNORM, true, FORMAT::R8G8B8A8_UNORM, true},
        {FORMAT::BC1_UNORM_SRGB, false, FORMAT::R8G8B8A8_UNORM_SRGB, false},
        {FORMAT::BC5_UNORM, false, FORMAT::R8G8B8A8_UNORM, false},
        {FORMAT::BC6H_UF16, false, FORMAT::R16G16B16A16_FLOAT, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(ovGraphics::TextureUtils::getFormatName(row.format));
        const auto input = ovGraphics::Texture::create(&getGraphics());
        input->setWidth(8);
        input->setHeight(4);
        input->setFormat(row.format);
        input->setGammaCorrected(row.gammaCorrected);
        const ovMemory::Buffer<unsigned char> zeros(ovGraphics::TextureUtils::getSliceSize(row.format, 8, 4));
        input->setCpuData(0, 0, zeros);
        ASSERT_TRUE(input->load()) << getGraphicsLogger().getText();
        const auto output = filtered(*input, 4);
        EXPECT_EQ(output->getFormat(), row.outputFormat);
        EXPECT_EQ(output->getGammaCorrected(), row.outputGammaCorrected);
        EXPECT_EQ(output->getTexType(), TEXTURE_TYPE::CUBE);
        EXPECT_TRUE(output->getUsableAsRenderTarget());
        EXPECT_EQ(output->getWidth(), 4u);
        EXPECT_EQ(output->getHeight(), 4u);
        EXPECT_EQ(output->getSliceCount(), 6u);
    }
}

TEST_P(PbsEnvironmentMapFilterTest, endsItsMipsAtFourTexels) {
    struct Case {
        unsigned int resolution;
        unsigned int mips;
    };
    const auto input = makeEnvironment(makeMap(1, 1, smoothLight));
    for (const Case& row :
         {Case{4, 1}, Case{5, 1}, Case{7, 1}, Case{8, 2}, Case{15, 2}, Case{16, 3}, Case{33, 4}})
        EXPECT_EQ(filtered(*input, row.resolution)->getMipCount(), row.mips) << row.resolution;
}

TEST_P(PbsEnvironmentMapFilterTest, keepsColorsOfCompressedAndGammaCorrectedInput) {
    // One block of one colour: both ends are 565 red 31, green 0, blue 15, all indices 0.
    const unsigned char block[] = {0x0f, 0xf8, 0x0f, 0xf8, 0, 0, 0, 0};
    for (const bool gammaCorrected : {false, true}) {
        const auto input = ovGraphics::Texture::create(&getGraphics());
        input->setFormat(FORMAT::BC1_UNORM);
        input->setGammaCorrected(gammaCorrected);
        input->setWidth(4);
        input->setHeight(4);
        input->setCpuData(0, 0, block);
        ASSERT_TRUE(input->load()) << getGraphicsLogger().getText();
        const auto output = filtered(*input, 8);
        for (unsigned int mip = 0; mip < 2; ++mip) {
            const auto bytes = output->readBack(3, mip);
            ASSERT_TRUE(bytes);
            // Decoded, summed and encoded again, the stored bytes are the same but for a rounding. 15 of 31
            // is 123 of 255.
            EXPECT_EQ(int((*bytes)[0]), 255);
            EXPECT_EQ(int((*bytes)[1]), 0);
            EXPECT_NEAR(int((*bytes)[2]), 123, 1);
            EXPECT_EQ(int((*bytes)[3]), 255);
        }
    }
}

TEST_P(PbsEnvironmentMapFilterTest, refusesWhatCannotBeFiltered) {
    const auto input = makeEnvironment(makeMap(4, 2, smoothLight));
    const auto unloaded = ovGraphics::Texture::create(&getGraphics());
    unloaded->setName("sky");
    const auto integers = ovGraphics::Texture::create(&getGraphics());
    integers->setName("ids");
    integers->setFormat(FORMAT::R8G8B8A8_UINT);
    ASSERT_TRUE(integers->load()) << getGraphicsLogger().getText();
    const auto depth = ovGraphics::Texture::create(&getGraphics());
    depth->setName("environment");
    depth->setFormat(FORMAT::D24_UNORM_S8_UINT);
    ASSERT_TRUE(depth->load()) << getGraphicsLogger().getText();
    useLanguage(getOtherLanguage());
    const auto foreign = makeEnvironment(makeMap(4, 2, smoothLight));
    const auto foreignOutput = makeOutput();
    useLanguage(getOtherLanguage());
    const FloatPicture before(2, 2, {1.0f, 2.0f, 3.0f, 4.0f});
    const auto output = makeTexture(before);

    constexpr ovMemory::StringView MISSING =
        "Missing input or output texture to filter an environment map. Aborting.";
    constexpr ovMemory::StringView DIFFERENT =
        "Requested environment map filtering with input and output textures "
        "coming from different systems, which is not supported. Aborting.";
    struct Case {
        ovGraphics::Texture* input;
        ovGraphics::Texture* output;
        unsigned int resolution;
        ovMemory::StringView message;
    };
    const Case cases[] = {
        {nullptr, output.get(), 16, MISSING},
        {input.get(), nullptr, 16, MISSING},
        {unloaded.get(), output.get(), 16,
         "Environment map provided is unloaded, cannot proceed with the filtering. [sky]"},
        {foreign.get(), output.get(), 16, DIFFERENT},
        {input.get(), foreignOutput.get(), 16, DIFFERENT},
        {foreign.get(), foreignOutput.get(), 16,
         "Environment map provided comes from a different graphics system than the filter's one. Aborting. "
         "[environment]"},
        {input.get(), input.get(), 16,
         "Environment map provided is the output texture too, filter into another one. Aborting. "
         "[environment]"},
        {integers.get(), output.get(), 16,
         "Environment map provided holds whole numbers in the format R8G8B8A8_UINT, give a UNORM, SNORM or "
         "FLOAT one. "
         "Aborting. [ids]"},
        {depth.get(), output.get(), 16, REFUSED},
        {input.get(), output.get(), 0, REFUSED},
        {input.get(), output.get(), 1, REFUSED},
        {input.get(), output.get(), 2, REFUSED},
        {input.get(), output.get(), 3, REFUSED},
    };
    for (const Case& row : cases) {
        filterInto(row.input, row.output, row.resolution);
        ASSERT_EQ(getLog().messages.size(), 1u) << row.message;
        EXPECT_EQ(getLog().messages[0].message, row.message);
        EXPECT_EQ(getLog().messages[0].sender, SENDER);
        EXPECT_TRUE(picturesAreIdentical("filter_untouched", readFloats(*output), before));
        EXPECT_FALSE(input->isUnloaded());
    }
    EXPECT_TRUE(foreignOutput->isUnloaded());
}

TEST_P(PbsEnvironmentMapFilterTest, logsAnOutputThatTheDeviceRefuses) {
    const auto input = makeEnvironment(makeMap(4, 2, smoothLight));
    const auto output = makeTexture(FloatPicture(2, 2));
    filterInto(input.get(), output.get(), getGraphics().getDeviceInfo()->maxCubeSize + 1);
    ASSERT_EQ(getLog().messages.size(), 1u);
    EXPECT_EQ(getLog().messages[0].message, REFUSED);
    EXPECT_TRUE(output->isUnloaded());
    // It can be filtered into again.
    filterInto(input.get(), output.get(), 4);
    EXPECT_TRUE(getLog().messages.empty());
    EXPECT_FALSE(output->isUnloaded());
}

TEST_P(PbsEnvironmentMapFilterTest, keepsWhatIsNotFiniteWhereTheLobesReachIt) {
    for (const float bad : {INFINITE, -INFINITE, NOT_A_NUMBER}) {
        Environment cube = makeCube(16, smoothLight);
        cube.mips[0][4].at(3, 7) = {bad, 1.0f, 1.0f, 1.0f}; // on +Z; coarser mips are finite
        const auto input = makeEnvironment(cube);
        const auto output = filtered(*input, 16);
        const float there = readSlice(*output, 4, 0).at(3, 7)[0];
        EXPECT_FALSE(std::isfinite(there));
        for (unsigned int mip = 0; mip < 2; ++mip) // lobes of up to a quarter of the sphere
            for (const FloatPixel& pixel : readSlice(*output, 5, mip).pixels)
                EXPECT_TRUE(std::isfinite(pixel[0]));
        for (unsigned int mip = 0; mip < 3; ++mip)
            for (const FloatPixel& pixel : readSlice(*output, 4, mip).pixels) {
                EXPECT_TRUE(std::isfinite(pixel[1]));
                EXPECT_EQ(pixel[3], 1.0f);
            }
    }
}

TEST_P(PbsEnvironmentMapFilterTest, leavesTheGraphicsSystemAsItWas) {
    const auto input = makeEnvironment(makeMap(4, 2, smoothLight));
    const auto camera = ovGraphics::Camera::create(&getGraphics());
    const auto context = ovGraphics::RenderContext::create(&getGraphics());
    const auto viewport = ovGraphics::Viewport::create(&getGraphics());
    getGraphics().getCameraManager()->setActiveRenderCamera(camera.get());
    getGraphics().getRenderContextManager()->setActiveRenderContext(context.get());
    getGraphics().getViewportManager()->setActiveViewport(viewport.get());
    const unsigned int contexts = getGraphics().getRenderContextManager()->getCount();
    for (const bool deferred : {false, true}) {
        input->setGpuUploadCanBeDeferred(deferred);
        filtered(*input, 4);
        EXPECT_EQ(input->getGpuUploadCanBeDeferred(), deferred);
        EXPECT_EQ(getGraphics().getCameraManager()->getActiveRenderCamera(), camera.get());
        EXPECT_EQ(getGraphics().getRenderContextManager()->getActiveRenderContext(), context.get());
        EXPECT_EQ(getGraphics().getViewportManager()->getActiveViewport(), viewport.get());
        EXPECT_EQ(getGraphics().getRenderContextManager()->getCount(), contexts);
    }
}

TEST_P(PbsEnvironmentMapFilterTest, uploadsADeferredInput) {
    const Environment map = makeMap(8, 4, smoothLight);
    const auto input = makeEnvironment(map);
    input->unload();
    input->setGpuUploadCanBeDeferred(true);
    ASSERT_TRUE(input->load());
    ASSERT_EQ(input->getLoadState(), ovGraphics::RESOURCE_LOAD_STATE::READY_FOR_RENDERING);
    const auto output = filtered(*input, 4);
    expectTexels("deferred", *output, {.worst = 1e-4f, .mean = 1e-5f},
                 [&](const Direction& n, double roughness) { return filter(map, n, roughness); });
}

TEST_P(PbsEnvironmentMapFilterTest, filtersAgainIntoTheSameTexture) {
    const Environment map = makeMap(8, 4, smoothLight);
    const Environment cube = makeCube(4, noise);
    const auto fromMap = makeEnvironment(map);
    const auto fromCube = makeEnvironment(cube);
    const auto output = makeTexture(FloatPicture(3, 3)); // with texels of its own, which must not come back
    filterInto(fromMap.get(), output.get(), 8);
    const auto compiled = getGraphics().getProgramLibrary().getStatistics().compiled;
    filterInto(fromCube.get(), output.get(), 4);
    EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
    EXPECT_EQ(getGraphics().getProgramLibrary().getStatistics().compiled, compiled);
    EXPECT_EQ(output->getMipCount(), 1u);
    expectTexels("again", *output, {.worst = 2e-5f, .mean = 2e-6f},
                 [&](const Direction& n, double roughness) { return filter(cube, n, roughness); });
}

TEST_P(PbsEnvironmentMapFilterTest, worksAfterTheGraphicsSystemStartedAnew) {
    System system;
    ASSERT_TRUE(initializeOwn(system));
    ovGraphics::System& graphics = *system.getGraphicsEngine()->getGraphicsSystem();
    const auto input = ovGraphics::Texture::create(&graphics);
    const auto output = ovGraphics::Texture::create(&graphics);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(input->load());
        system.getPbsEnvironmentMapFilter()->requestEnvironmentMapFiltering(input.get(), output.get(), 4);
        EXPECT_FALSE(output->isUnloaded()) << getLog().getText();
        graphics.shutdown();
        EXPECT_TRUE(output->isUnloaded());
        ASSERT_TRUE(graphics.initialize(HeadlessSystem::makeConfiguration(getLanguage(), &getLog())));
    }
    EXPECT_TRUE(getLog().messages.empty()) << getLog().getText();
}

TEST_P(PbsEnvironmentMapFilterTest, drawsTheSameBitsInBothLanguages) {
    const auto filterBoth = [&] {
        ovMemory::Buffer<FloatPicture> pictures;
        for (const Environment& environment : {makeMap(32, 16, noise), makeCube(8, noise)}) {
            const auto input = makeEnvironment(environment);
            const auto output = filtered(*input, 16);
            for (unsigned int mip = 0; mip < output->getMipCount(); ++mip)
                for (unsigned int face = 0; face < 6; ++face)
                    pictures.push_back(readSlice(*output, face, mip));
        }
        return pictures;
    };
    const ovMemory::Buffer<FloatPicture> pictures = filterBoth();
    useLanguage(getOtherLanguage());
    const ovMemory::Buffer<FloatPicture> others = filterBoth();
    for (std::size_t i = 0; i < pictures.size(); ++i)
        EXPECT_TRUE(picturesAreIdentical("filter_languages", others[i], pictures[i])) << i;
}

} // namespace pbsEnvironmentMapFilterTest
