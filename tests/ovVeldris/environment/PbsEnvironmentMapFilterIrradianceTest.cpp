#include <epoxy/gl.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovVeldris/environment/EnvironmentFixture.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/environment/irradiance/IrradianceTexels.h>
#include <ovVeldris/environment/irradiance/TextureIrradiance.h>
#include <set>
#include <support/heap/Heap.h>

// Its names stay its own where the folder is compiled as one.
namespace pbsEnvironmentMapFilterIrradianceTest {

using namespace ovVeldris;
using ovGraphics::FORMAT;
using ovGraphics::TEXTURE_TYPE;
using ovGraphics::TextureUtils;

namespace {

constexpr ovMemory::StringView SENDER = "PbsEnvironmentMapFilter";

struct Input {
    bool isCube = false;
    FORMAT format = FORMAT::R32G32B32A32_FLOAT;
    unsigned int width = 8;
    unsigned int height = 8;
    bool gammaCorrected = false;
    unsigned int slices = 1; ///< of a 2D texture
};

class PbsEnvironmentMapFilterIrradianceTest : public EnvironmentFixture {
protected:
    void compute(ovGraphics::Texture* input, ovGraphics::Texture* output) {
        getLog().messages.clear();
        getSystem()->getPbsEnvironmentMapFilter()->requestIrradianceComputing(input, output);
    }

    /// A loaded texture of noise.
    ovMemory::UniquePtr<ovGraphics::Texture> makeInput(const Input& settings) {
        auto texture = ovGraphics::Texture::create(&getGraphics());
        texture->setName("sky");
        texture->setTexType(settings.isCube ? TEXTURE_TYPE::CUBE : TEXTURE_TYPE::TEXTURE_2D);
        texture->setFormat(settings.format);
        texture->setWidth(settings.width);
        texture->setHeight(settings.height);
        texture->setSliceCount(settings.slices);
        texture->setGammaCorrected(settings.gammaCorrected);
        const bool floats =
            TextureUtils::getFormatComponent(settings.format) == ovGraphics::FORMAT_COMPONENT::FLOAT;
        const std::size_t size = TextureUtils::getSliceSize(settings.format, settings.width, settings.height);
        for (unsigned int slice = 0; slice < texture->getSliceCount(); ++slice)
            texture->setCpuData(slice, 0, irradianceReference::noise(size, floats, slice + 1));
        EXPECT_TRUE(texture->load()) << getGraphicsLogger().getText();
        return texture;
    }

    /// Compares a texture with the sum over all texels of another, in double precision.
    void expectIrradiance(const IrradianceMapLayout& layout, ovGraphics::Texture& input,
                          ovGraphics::Texture& output) {
        const auto* texels =
            std::find_if(std::begin(irradianceReference::FORMATS), std::end(irradianceReference::FORMATS),
                         [&](const irradianceReference::Texels& row) { return row.format == layout.format; });
        ASSERT_NE(texels, std::end(irradianceReference::FORMATS));
        const std::size_t pitch = layout.width * texels->texelSize;
        ovMemory::Buffer<ovMemory::Buffer<unsigned char>> slices;
        for (unsigned int slice = 0; slice < layout.slices; ++slice)
            slices.push_back(*input.readBack(slice));
        const IrradianceCoefficients coefficients =
            irradianceReference::project(layout, [&](unsigned int slice, unsigned int i, unsigned int j) {
                return texels->colorAt(slices[slice], pitch, i, j);
            });
        for (unsigned int slice = 0; slice < layout.slices; ++slice) {
            const ovMemory::Buffer<unsigned char> drawn = *output.readBack(slice);
            for (unsigned int j = 0; j < layout.height; ++j)
                for (unsigned int i = 0; i < layout.width; ++i) {
                    const auto color = irradianceReference::evaluate(coefficients, layout, slice, i, j);
                    for (std::size_t channel = 0; channel < std::min(texels->channels, 3u); ++channel)
                        expectComponent(*texels, drawn,
                                        j * pitch + i * texels->texelSize + channel * texels->componentSize,
                                        color[channel] * texels->scale);
                }
        }
    }

    /// Floats are rounded. Whole numbers are cut off, and what their type cannot hold wraps round; sums that
    /// are a whole number but for their last place may be cut to either side of it.
    static void expectComponent(const irradianceReference::Texels& texels,
                                const ovMemory::Buffer<unsigned char>& bytes, std::size_t place,
                                double value) {
        const double actual = texels.read(bytes, place);
        if (texels.read == irradianceReference::readAs<float>) {
            EXPECT_NEAR(actual, value, 1.2e-7 * std::abs(value) + 1e-12);
            return;
        }
        const auto wrapped = [&](double number) {
            const auto whole = static_cast<std::int64_t>(number);
            return texels.componentSize == 1 ? whole & 0xff : whole & 0xffffffff;
        };
        const double lastPlace = 1e-12 * std::abs(value);
        EXPECT_TRUE(wrapped(actual) == wrapped(value - lastPlace) ||
                    wrapped(actual) == wrapped(value + lastPlace))
            << actual << " instead of " << value;
    }

    void expectLog(const ovMemory::Buffer<RecordingLogger::Message>& expected) {
        EXPECT_EQ(getLog().messages, expected) << getLog().getText();
    }
};

std::set<GLuint> textureNames() {
    std::set<GLuint> names;
    constexpr GLuint LARGEST = 1u << 18; // drivers count on; all tests in one process get past 4096
    for (GLuint name = 1; name < LARGEST; ++name)
        if (glIsTexture(name))
            names.insert(name);
    return names;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, PbsEnvironmentMapFilterIrradianceTest, bothLanguages(), languageName);

TEST_P(PbsEnvironmentMapFilterIrradianceTest, drawsTheIrradianceOfEveryFormatAndShape) {
    struct Case {
        Input input;
        bool outputGammaCorrected;
        bool isListed;
    };
    const Case cases[] = {
        {{false, FORMAT::R32G32B32A32_FLOAT, 16, 8}, false, true},
        {{false, FORMAT::R32G32B32A32_FLOAT, 13, 7}, false, true},
        {{false, FORMAT::R32G32B32A32_FLOAT, 1, 1}, false, true},
        {{false, FORMAT::R32G32B32A32_FLOAT, 8, 4, false, 3}, false, true},
        {{true, FORMAT::R32G32B32A32_FLOAT}, false, true},
        {{true, FORMAT::R32G32B32A32_FLOAT, 5, 5}, false, true},
        {{false, FORMAT::R32G32B32_FLOAT, 16, 8}, false, true},
        {{false, FORMAT::R32G32B32A32_UINT}, false, true},
        {{true, FORMAT::R32G32B32A32_UINT}, false, true},
        {{false, FORMAT::R32G32B32A32_SINT}, false, true},
        {{true, FORMAT::R32G32B32A32_SINT}, false, true},
        {{false, FORMAT::R8G8B8A8_UNORM}, false, true},
        {{true, FORMAT::R8G8B8A8_UNORM}, false, true},
        {{false, FORMAT::R8G8B8A8_UNORM, 8, 8, true}, true, true},
        {{true, FORMAT::R8G8B8A8_UNORM, 8, 8, true}, true, true},
        {{false, FORMAT::R8G8B8A8_UNORM_SRGB, 8, 8, true}, false, true},
        {{false, FORMAT::R8G8B8A8_UINT}, false, true},
        {{false, FORMAT::R8G8B8A8_SNORM}, false, true},
        {{true, FORMAT::R8G8B8A8_SINT}, false, true},
        {{false, FORMAT::R16G16B16A16_FLOAT}, false, false},
        {{true, FORMAT::R16G16B16A16_FLOAT}, false, false},
        {{false, FORMAT::R8_UNORM, 7, 3}, false, false},
        {{false, FORMAT::B8G8R8A8_UNORM, 8, 8, true}, true, false},
        {{false, FORMAT::B5G6R5_UNORM}, false, false},
        {{false, FORMAT::R11G11B10_FLOAT}, false, false},
    };
    for (const Case& row : cases) {
        const Input& settings = row.input;
        SCOPED_TRACE(ovMemory::String(TextureUtils::getFormatName(settings.format)) +
                     (settings.isCube ? ", cube" : ", map") + ", width " + std::to_string(settings.width));
        const auto input = makeInput(settings);
        // What was in the output must not come back.
        const auto output = makeTexture(FloatPicture(3, 3, {1.0f, 2.0f, 3.0f, 4.0f}));
        compute(input.get(), output.get());
        if (row.isListed)
            expectLog({});
        else
            expectLog(
                {{"Computing SH for irradiance for texture 'sky', but format is not fully implemented in "
                  "switch. Defaulting to uchar as CPU data, but that might be erroneous.",
                  ovMemory::String(SENDER)}});
        ASSERT_FALSE(output->isUnloaded()) << getGraphicsLogger().getText();
        EXPECT_EQ(output->getTexType(), input->getTexType());
        EXPECT_EQ(output->getFormat(), settings.format);
        EXPECT_EQ(output->getGammaCorrected(), row.outputGammaCorrected);
        EXPECT_EQ(output->getWidth(), settings.width);
        EXPECT_EQ(output->getHeight(), settings.height);
        EXPECT_EQ(output->getSliceCount(), input->getSliceCount());
        EXPECT_EQ(output->getMipCount(), output->getNeededMipsForSize());
        EXPECT_TRUE(output->getMightManuallyGenerateMip());

        const IrradianceMapLayout layout = {settings.isCube, settings.format, settings.width, settings.height,
                                            input->getSliceCount()};
        expectIrradiance(layout, *input, *output);
    }
}

TEST_P(PbsEnvironmentMapFilterIrradianceTest, followsItsFormulaPerTexel) {
    using namespace environmentReference;
    const auto light = [](const Direction& d) {
        return FloatPixel{float(1.0 + d[0] + d[1] * d[2]), float(2.0 - d[1]), float(d[2] * d[2]), 0.5f};
    };
    for (const Environment& environment : {makeMap(16, 8, light), makeCube(8, light)}) {
        const auto input = makeEnvironment(environment);
        const auto output = makeOutput();
        compute(input.get(), output.get());
        expectLog({});
        const IrradianceMapLayout layout = irradianceLayoutOf(*input);
        const IrradianceCoefficients coefficients =
            irradianceReference::project(layout, [&](unsigned int slice, unsigned int i, unsigned int j) {
                const FloatPixel& pixel = environment.mips[0][slice].at(i, j);
                return std::array<double, 3>{double(pixel[0]), double(pixel[1]), double(pixel[2])};
            });
        for (unsigned int slice = 0; slice < layout.slices; ++slice) {
            const FloatPicture picture = readSlice(*output, slice, 0);
            for (unsigned int j = 0; j < layout.height; ++j)
                for (unsigned int i = 0; i < layout.width; ++i) {
                    const auto expected = irradianceReference::evaluate(coefficients, layout, slice, i, j);
                    for (std::size_t channel = 0; channel < 3; ++channel)
                        EXPECT_NEAR(double(picture.at(i, j)[channel]), expected[channel],
                                    1.2e-7 * std::abs(expected[channel]) + 1e-12);
                    EXPECT_EQ(picture.at(i, j)[3], 1.0f);
                }
        }
    }
}

TEST_P(PbsEnvironmentMapFilterIrradianceTest, refusesWhatItCannotCompute) {
    const auto input = makeInput({});
    const auto unloaded = ovGraphics::Texture::create(&getGraphics());
    unloaded->setName("sky");
    const auto compressed = ovGraphics::Texture::create(&getGraphics());
    compressed->setName("sky");
    compressed->setFormat(FORMAT::BC3_UNORM);
    ASSERT_TRUE(compressed->load()) << getGraphicsLogger().getText();
    const FloatPicture before(2, 2, {1.0f, 2.0f, 3.0f, 4.0f});
    const auto output = makeTexture(before);
    constexpr ovMemory::StringView MISSING =
        "Requested irradiance SH computing, but one of the textures is null. Aborting.";
    struct Case {
        ovGraphics::Texture* input;
        ovGraphics::Texture* output;
        ovMemory::StringView message;
    };
    const Case cases[] = {
        {nullptr, output.get(), MISSING},
        {input.get(), nullptr, MISSING},
        {nullptr, nullptr, MISSING},
        {unloaded.get(), output.get(),
         "Requested irradiance SH computing of texture 'sky' using CPU data only, but this is not supported "
         "currently. Please load the texture. Aborting."},
        {compressed.get(), output.get(),
         "Requested irradiance SH computing of texture 'sky' but texture is from a compressed format. This "
         "is "
         "not supported, aborting."},
        {input.get(), input.get(),
         "Requested irradiance SH computing of texture 'sky' into itself, compute it into another one. "
         "Aborting."},
    };
    for (const Case& row : cases) {
        compute(row.input, row.output);
        expectLog({{ovMemory::String(row.message), ovMemory::String(SENDER)}});
        EXPECT_TRUE(picturesAreIdentical("irradiance_untouched", readFloats(*output), before));
        EXPECT_FALSE(input->isUnloaded());
    }
}

TEST_P(PbsEnvironmentMapFilterIrradianceTest, reportsSlicesThatCannotBeMapped) {
    const auto output = makeTexture(FloatPicture(2, 2));
    for (const bool isCube : {false, true}) {
        const std::set<GLuint> before = textureNames();
        const auto input = makeInput({.isCube = isCube});
        unsigned int deleted = 0;
        for (const GLuint name : textureNames())
            if (!before.contains(name)) { // behind the device's back
                glDeleteTextures(1, &name);
                ++deleted;
            }
        ASSERT_EQ(deleted, 1u);
        compute(input.get(), output.get());
        expectLog({{"Could not map texture 'sky' for SH irradiance computing. Aborting.", "TextureUtils"}});
        EXPECT_TRUE(output->isUnloaded());
        EXPECT_NE(getGraphics().getDevice()->takeDebugErrors(), ""); // the driver's own complaint
        getGraphicsLogger().messages.clear();
        // The output can be used again.
        const auto good = makeInput({});
        compute(good.get(), output.get());
        expectLog({});
        EXPECT_FALSE(output->isUnloaded());
    }
}

TEST_P(PbsEnvironmentMapFilterIrradianceTest, worksBetweenGraphicsSystems) {
    const auto input = makeInput({});
    useLanguage(getOtherLanguage());
    const auto output = makeOutput();
    compute(input.get(), output.get());
    expectLog({});
    EXPECT_EQ(output->getSystem(), &getGraphics());
    EXPECT_EQ(readSlice(*output, 0, 0).width, 8u);
}

TEST_P(PbsEnvironmentMapFilterIrradianceTest, readsInputsAsTheyWereLoaded) {
    const auto input = makeInput({});
    const auto expected = makeOutput();
    compute(input.get(), expected.get());
    // Settings that no load has used yet.
    input->setWidth(3);
    input->setFormat(FORMAT::R8G8B8A8_UNORM);
    const auto output = makeOutput();
    compute(input.get(), output.get());
    expectLog({});
    EXPECT_TRUE(
        picturesAreIdentical("irradiance_changed", readSlice(*output, 0, 0), readSlice(*expected, 0, 0)));
    // An upload that is still to be made.
    const auto deferred = makeInput({});
    deferred->unload();
    deferred->setGpuUploadCanBeDeferred(true);
    ASSERT_TRUE(deferred->load());
    ASSERT_EQ(deferred->getLoadState(), ovGraphics::RESOURCE_LOAD_STATE::READY_FOR_RENDERING);
    compute(deferred.get(), output.get());
    expectLog({});
    EXPECT_TRUE(
        picturesAreIdentical("irradiance_deferred", readSlice(*output, 0, 0), readSlice(*expected, 0, 0)));
}

TEST_P(PbsEnvironmentMapFilterIrradianceTest, takesLittleMemory) {
    for (const bool isCube : {false, true})
        for (const FORMAT format : {FORMAT::R32G32B32A32_FLOAT, FORMAT::R8G8B8A8_UNORM}) {
            const unsigned int height = 256;
            const auto input = makeInput({isCube, format, isCube ? height : 2 * height, height});
            const auto output = makeOutput();
            compute(input.get(), output.get()); // the driver and the log get what they keep
            const std::size_t image =
                TextureUtils::getSliceSize(format, input->getWidth(), height) * (isCube ? 6 : 1);
            output->reset();
            const HeapPeak count;
            compute(input.get(), output.get());
            // The output keeps its texels itself; beyond them the limit is 1.2 times input and output.
            EXPECT_GE(count.getBytes(), image);
            EXPECT_LE(count.getBytes() - image, 2 * image * 12 / 10);
            // More exactly: one slice at a time, and the tables of directions, 1/24 to 1/6 of a cube.
            const std::size_t slice = image / (isCube ? 6 : 1);
            EXPECT_LE(count.getBytes() - image, slice + image / 5 + 65536);
        }
}

} // namespace pbsEnvironmentMapFilterIrradianceTest
