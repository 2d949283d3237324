#include <veldris/commands/PictureOutput.h>

#include <gtest/gtest.h>
#include <veldris/console/Console.h>

namespace {

using namespace veldris;
using ovMemory::String;

TEST(PictureOutputTest, sizesAreTwoWholeNumbersFromOne) {
    unsigned int width = 7;
    unsigned int height = 9;
    String error;
    ASSERT_TRUE(readPictureSize("1280x721", width, height, error)) << error;
    EXPECT_EQ(width, 1280u);
    EXPECT_EQ(height, 721u);
    for (const char* text : {"", "x", "12", "12x", "x12", "0x12", "12x0", "-1x12", "12x-1", "12x12x12",
                             "12X12", " 12x12", "12x12 ", "1.5x2", "99999999999x1", "1x99999999999"}) {
        EXPECT_FALSE(readPictureSize(text, width, height, error)) << text;
        EXPECT_EQ(error, "the size '" + String(text) + "' is not WIDTHxHEIGHT in pixels, such as 1280x720.");
        EXPECT_EQ(width, 1280u);
        EXPECT_EQ(height, 721u);
    }
}

TEST(PictureOutputTest, samplesAreSquares) {
    String error;
    for (unsigned int samples : {1u, 4u, 9u, 1024u})
        EXPECT_TRUE(checkSamples(samples, error)) << error;
    for (unsigned int samples : {2u, 3u, 8u, 1023u}) {
        EXPECT_FALSE(checkSamples(samples, error));
        EXPECT_EQ(error, "--samples " + std::to_string(samples) +
                             " is no square of a whole number; 1, 4, 9 and 16 are.");
    }
}

/// The chain from scene light to a file.
bool planOutput(const char* effects, const char* file, ChainPlan& plan, String& error) {
    ovMemory::Buffer<PlannedEffect> planned;
    ChainOptions chain;
    return planPictureEffects(effects, file, planned, chain, error) &&
           planChain(std::move(planned), chain, plan, error);
}

TEST(PictureOutputTest, onlyWhatHoldsSceneLightGetsItAsItIs) {
    String error;
    for (const char* file : {"a.exr", "a.hdr"}) {
        ChainPlan plan;
        ASSERT_TRUE(planOutput("", file, plan, error)) << error;
        EXPECT_TRUE(plan.effects.empty());
        EXPECT_EQ(plan.output, PICTURE_CONTENT::SCENE_LINEAR);
    }
    for (const char* file : {"a.png", "a.jpg", "png:-"}) {
        ChainPlan plan;
        ASSERT_TRUE(planOutput("", file, plan, error)) << error;
        ASSERT_EQ(plan.effects.size(), 1u);
        EXPECT_EQ(plan.effects[0].text, DEFAULT_TONE_MAPPING);
        EXPECT_EQ(plan.output, PICTURE_CONTENT::SRGB_ENCODED);
    }
    ChainPlan plan;
    EXPECT_TRUE(planOutput("tone-mapping:operator=aces", "a.exr", plan, error)) << error;
    EXPECT_EQ(plan.effects.size(), 1u);
    EXPECT_FALSE(planOutput("texture-copy", "a.png", plan, error));
    EXPECT_EQ(error,
              "the file 'a.png' takes srgb-encoded colours and the input gives scene-linear ones: put a "
              "tone-mapping between them, write an EXR or HDR file, or use --raw.");
    EXPECT_FALSE(planOutput("", "a.txt", plan, error));
}

/// What a report prints.
String printed(bool isJson, bool timings, const ovMemory::Buffer<String>& outputs) {
    Console console(isJson);
    DrawingOptions options;
    options.json = isJson;
    options.timings = timings;
    PictureReport report;
    report.timingMethod = "wall clock";
    report.passes = {{"sky", 1.5}, {"tone-mapping", 0.25}};
    if (!timings)
        report.passes.clear();
    testing::internal::CaptureStdout();
    printPictureReport(console, options, report, outputs, JsonObject().number("width", 3));
    return testing::internal::GetCapturedStdout();
}

TEST(PictureOutputTest, reportsArePathsOrOneObject) {
    EXPECT_EQ(printed(false, false, {"a.png", "b.png"}), "a.png\nb.png\n");
    EXPECT_EQ(printed(false, false, {"png:-"}), "");
    EXPECT_EQ(printed(true, false, {"a.png"}), "{\"width\":3}\n");
    const String text = printed(false, true, {"a.png"});
    EXPECT_TRUE(
        text.ends_with("     1.500 ms  sky (wall clock)\n     0.250 ms  tone-mapping (wall clock)\na.png\n"))
        << text;
    const String json = printed(true, true, {"a.png"});
    EXPECT_TRUE(json.starts_with("{\"width\":3,\"steps\":[{\"step\":\"starting\"")) << json;
    EXPECT_TRUE(
        json.ends_with("\"timingMethod\":\"wall clock\",\"passes\":[{\"pass\":\"sky\",\"milliseconds\":1.5},"
                       "{\"pass\":\"tone-mapping\",\"milliseconds\":0.25}]}\n"))
        << json;
}

} // namespace
