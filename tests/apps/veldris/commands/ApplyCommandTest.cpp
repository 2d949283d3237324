#include "support/TemporaryFolder.h"
#include "veldris/commands/CommandTesting.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <ovImages/CompositeEncoder.h>

namespace {

using ovImages::COLOR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;

class ApplyCommandTest : public testing::Test {
protected:
    /// Writes a 2 x 1 image of one value and gives its path.
    ovMemory::String write(const char* name, float value) {
        const bool floats =
            ovMemory::StringView(name).ends_with("exr") || ovMemory::StringView(name).ends_with("hdr");
        Image image(2, 1, 3, floats ? COMPONENT_TYPE::FLOAT : COMPONENT_TYPE::UINT8,
                    floats ? COLOR_ENCODING::LINEAR : COLOR_ENCODING::SRGB);
        for (unsigned int x = 0; x < 2; ++x) {
            for (unsigned int channel = 0; channel < 3; ++channel)
                image.setComponent(x, 0, channel, value);
        }
        const ovMemory::String path = _folder.getPath(name);
        const ovMemory::Result written = ovImages::CompositeEncoder().encodeFile(path, image.view());
        EXPECT_TRUE(written) << written.error;
        return path;
    }

    Outcome apply(const ovMemory::String& input, const char* effects, const ovMemory::String& output,
                  const ovMemory::Buffer<ovMemory::String>& more = {}) {
        ovMemory::Buffer<ovMemory::String> arguments = {
            "apply", input,      "--effects", effects,   "-o",
            output,  "--device", "software",  "--cache", _folder.getPath("cache")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runVeldris(arguments);
    }

    float firstPixel(const ovMemory::String& path) {
        const ovImages::DecodeResult read = ovImages::CompositeEncoder().decodeFile(path);
        EXPECT_TRUE(read) << read.error;
        return read ? read.image->getComponent(0, 0, 0) : -1.0f;
    }

    TemporaryFolder _folder;
};

TEST_F(ApplyCommandTest, mapsSceneLightToADisplayPictureInBothLanguages) {
    const ovMemory::String input = write("light.exr", 1.0f);
    for (const char* language : {"glsl", "hlsl"}) {
        const ovMemory::String output = _folder.getPath(ovMemory::String(language) + ".png");
        const Outcome outcome = apply(input, "tone-mapping", output, {"--language", language});
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_EQ(outcome.output, output + "\n");
        // Reinhard of 1 with white 2: (1 + 1 / 4) / 2 = 0.625, sRGB-encoded 0.8126, in 8 bits 207.
        EXPECT_FLOAT_EQ(firstPixel(output), 207.0f / 255.0f);
    }
}

TEST_F(ApplyCommandTest, doubtfulPicturesAreReadUnlessItIsStrict) {
    const ovMemory::String input = write("photo.jpg", 0.5f);
    std::string bytes;
    {
        std::ifstream file(input, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
    }
    bytes.insert(2, "stray");
    std::ofstream(input, std::ios::binary) << bytes;
    const ovMemory::String output = _folder.getPath("o.png");
    const Outcome read = apply(input, "texture-copy", output);
    EXPECT_EQ(read.status, 0) << read.error;
    EXPECT_NE(read.error.find("5 extraneous bytes"), ovMemory::String::npos) << read.error;
    const Outcome strict = apply(input, "texture-copy", output, {"--strict"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_NE(strict.error.find("doubtful data"), ovMemory::String::npos) << strict.error;
}

TEST_F(ApplyCommandTest, readsTheLayerThatIsNamed) {
    const Outcome outcome =
        apply(write("light.exr", 1.0f), "texture-copy", _folder.getPath("o.exr"), {"--layer", "diffuse"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.error.find("no colours or single channel in the layer \"diffuse\""),
              ovMemory::String::npos)
        << outcome.error;
}

TEST_F(ApplyCommandTest, rawKeepsNumbers) {
    const ovMemory::String input = write("light.exr", 123.25f);
    const ovMemory::String output = _folder.getPath("copy.exr");
    ASSERT_EQ(apply(input, "texture-copy", output, {"--raw"}).status, 0);
    EXPECT_EQ(firstPixel(output), 123.25f);
}

TEST_F(ApplyCommandTest, grainRepeatsAtATimeAndChangesWithIt) {
    const ovMemory::String input = write("light.exr", 1.0f);
    const auto pixelAt = [&](const ovMemory::Buffer<ovMemory::String>& time) {
        const ovMemory::String output = _folder.getPath("grain.exr");
        const Outcome outcome = apply(input, "film-grain:strength=0.5", output, time);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        return firstPixel(output);
    };
    const float atStart = pixelAt({});
    EXPECT_GE(atStart, 1.0f);
    EXPECT_LT(atStart, 1.5f);
    EXPECT_EQ(pixelAt({"--time", "0"}), atStart);
    const float later = pixelAt({"--time", "2.25"});
    EXPECT_NE(later, atStart);
    EXPECT_EQ(pixelAt({"--time", "2.25", "--timings"}), later) << "measuring draws a second time";
    for (const char* time : {"-1", "inf", "nan", "soon"})
        EXPECT_EQ(apply(input, "film-grain", _folder.getPath("grain.exr"), {"--time", time}).status, 2)
            << time;
}

TEST_F(ApplyCommandTest, reportsForMachines) {
    const Outcome outcome = apply(write("light.hdr", 1.0f), "texture-copy;tone-mapping:operator=aces",
                                  _folder.getPath("o.png"), {"--json", "--timings"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const auto report = parseJson(outcome);
    EXPECT_EQ(report["width"].GetInt(), 2);
    EXPECT_STREQ(report["content"].GetString(), "srgb-encoded");
    EXPECT_STREQ(report["timingMethod"].GetString(), "wall clock");
    ASSERT_EQ(report["passes"].Size(), 2u);
    EXPECT_STREQ(report["passes"][1]["effect"].GetString(), "tone-mapping:operator=aces");
    EXPECT_GT(report["passes"][1]["milliseconds"].GetDouble(), 0.0);
}

TEST_F(ApplyCommandTest, itsStepsAreAllThatItDoes) {
    Image photograph(3000, 2000, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::SRGB);
    for (std::size_t i = 0; i < photograph.getBytes().size(); ++i)
        photograph.getBytes()[i] = static_cast<unsigned char>(i * i % 251);
    const ovMemory::String input = _folder.getPath("photograph.jpg");
    ASSERT_TRUE(ovImages::CompositeEncoder().encodeFile(input, photograph.view()));
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome =
        apply(input, "texture-copy;texture-copy", _folder.getPath("o.png"), {"--json", "--timings"});
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const auto report = parseJson(outcome);
    ovMemory::String names;
    double sum = 0.0;
    for (const auto& step : report["steps"].GetArray()) {
        names += ovMemory::String(step["step"].GetString()) + ";";
        sum += step["milliseconds"].GetDouble();
    }
    EXPECT_EQ(names, "starting;decoding;device;drawing;uploading;programs;conversion;writing;closing;");
    EXPECT_GE(sum, 0.95 * wall.count());
    EXPECT_LE(sum, wall.count());
}

TEST_F(ApplyCommandTest, everyFailureIsOneLineAndLeavesTheOutputAlone) {
    const ovMemory::String light = write("light.exr", 1.0f);
    const ovMemory::String photo = write("photo.png", 0.5f);
    const ovMemory::String broken = _folder.getPath("broken.exr");
    std::ofstream(broken) << "\x76\x2f\x31\x01 but nothing that follows is right";
    const ovMemory::String output = write("output.png", 1.0f);
    const struct {
        ovMemory::String input;
        const char* effects;
        ovMemory::String output;
        ovMemory::String part;
    } cases[] = {
        {_folder.getPath("missing.exr"), "tone-mapping", output, "missing.exr"},
        {_folder.getPath(), "tone-mapping", output, _folder.getPath()},
        {broken, "tone-mapping", output, "broken.exr"},
        {light, "sharpen", output,
         "the effects are atmosphere, blur, dof, film-grain, fxaa, image-environment, ssao, texture-copy, "
         "tone-mapping"},
        {light, "dof:focus=2", output, "'dof' reads a scene (depth) and there is a picture alone"},
        {light, "ssao", output, "'ssao' reads a scene (depth) and there is a picture alone"},
        {light, "tone-mapping:operator=filmic", output, "it takes one of reinhard, hables, aces"},
        {light, "tone-mapping:white=2", output, "there is no setting 'white'; it has operator"},
        {light, "", output, "the list of effects is empty"},
        {light, "texture-copy", output, "put a tone-mapping between them"},
        {photo, "tone-mapping", output, "'tone-mapping' takes scene-linear colours"},
        {light, "tone-mapping", _folder.getPath("o.gif"), "names no image format"},
        {light, "tone-mapping", _folder.getPath("no/such/o.png"), "no/such/o.png"},
    };
    for (const auto& test : cases) {
        const Outcome outcome = apply(test.input, test.effects, test.output);
        EXPECT_NE(outcome.status, 0) << test.part;
        EXPECT_NE(outcome.error.find(test.part), ovMemory::String::npos) << outcome.error;
        EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1) << outcome.error;
        EXPECT_TRUE(outcome.output.empty()) << outcome.output;
        EXPECT_EQ(firstPixel(output), 1.0f);
    }
}

// What the help promises of files, and what the program does with them.
TEST_F(ApplyCommandTest, filesHoldWhatTheHelpSays) {
    setenv("COLUMNS", "1000", 1);
    const ovMemory::String help = runVeldris({"apply", "--help"}).output;
    unsetenv("COLUMNS");
    for (const char* promise :
         {"PNG and JPEG get srgb-encoded colours of 8 bits, EXR and HDR linear ones as floats",
          "(default: srgb-encoded of JPEG and PNG, scene-linear of EXR, HDR and PNG that tells a gamma of 1)",
          "of PNG and JPEG 0 to 255 are 0 to 1"})
        EXPECT_NE(help.find(promise), ovMemory::String::npos) << promise;

    const ovMemory::String half = write("half.exr", 0.5f);
    const struct {
        const char* output;
        float encoded; ///< of display light of 0.5: IEC 61966-2-1, to 8 bits
        float raw;
    } outputs[] = {{"o.png", 188.0f / 255.0f, 128.0f / 255.0f},
                   {"o.jpg", 188.0f / 255.0f, 128.0f / 255.0f},
                   {"o.exr", 0.5f, 0.5f},
                   {"o.hdr", 0.5f, 0.5f}};
    for (const auto& row : outputs) {
        const ovMemory::String output = _folder.getPath(row.output);
        ASSERT_EQ(apply(half, "texture-copy", output, {"--input-content", "display-linear"}).status, 0);
        EXPECT_FLOAT_EQ(firstPixel(output), row.encoded) << row.output;
        ASSERT_EQ(apply(half, "texture-copy", output, {"--raw"}).status, 0);
        EXPECT_FLOAT_EQ(firstPixel(output), row.raw) << row.output << " raw";
    }

    const ovMemory::String linearPng = _folder.getPath("linear.png");
    Image gammaOne(1, 1, 3, COMPONENT_TYPE::UINT8, COLOR_ENCODING::LINEAR);
    ASSERT_TRUE(ovImages::CompositeEncoder().encodeFile(linearPng, gammaOne.view()));
    const struct {
        ovMemory::String input;
        bool isSceneLinear;
    } inputs[] = {{write("i.jpg", 0.5f), false},
                  {write("i.png", 0.5f), false},
                  {half, true},
                  {write("i.hdr", 0.5f), true},
                  {linearPng, true}};
    // Tone mapping takes scene light only, and refuses what is none.
    for (const auto& row : inputs)
        EXPECT_EQ(apply(row.input, "tone-mapping", _folder.getPath("o.png")).status == 0, row.isSceneLinear)
            << row.input;
}

TEST_F(ApplyCommandTest, theUserMaySayWhatAPictureHolds) {
    const ovMemory::String output = _folder.getPath("o.exr");
    const Outcome outcome =
        apply(write("data.png", 1.0f), "tone-mapping", output, {"--input-content", "scene-linear"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_NEAR(firstPixel(output), 0.625f, 1e-6f);
}

} // namespace
