#include <ovGraphics/device/DeviceTesting.h>

namespace ovGraphics::device::testing {

namespace {

shading::CompiledProgram textsOf(const ovMemory::String& vertex, const ovMemory::String& pixel) {
    shading::CompiledProgram texts;
    texts.vertexText = vertex;
    texts.pixelText = pixel;
    return texts;
}

float drawnBy(Device& device, GpuProgram& program) {
    const auto texture = makeTexture(device, flat(FORMAT::R32G32B32A32_FLOAT, 1, 1));
    drawOver(device, *texture, program);
    return readFloats(device, *texture)[0];
}

} // namespace

TEST(GlProgram, failuresNameTheStageAndGiveTheDriversWords) {
    const ovMemory::String good = pixelText("colour = vec4(1.0);");
    struct Row {
        ovMemory::String vertex, pixel, start, word;
    };
    const Row rows[] = {
        {"#version 450\nvoid main() { gl_Position = nonsense; }\n", good,
         "The driver could not compile the vertex stage: ", "nonsense"},
        {QUAD_VERTEX, pixelText("colour = nonsense;"),
         "The driver could not compile the pixel stage: ", "nonsense"},
        {QUAD_VERTEX, "", "The driver could not compile the pixel stage: ", ""},
        {"#version 450\nlayout(location = 0) flat out ivec3 uv;\nvoid main() { uv = ivec3(1); gl_Position = "
         "vec4(0.0); }"
         "\n",
         good, "The driver could not link the vertex and pixel stages: ", "uv"},
    };
    const auto device = openDevice();
    ASSERT_TRUE(device);
    for (const Row& row : rows) {
        ovMemory::String error;
        const auto program = device->createProgram(textsOf(row.vertex, row.pixel), {}, 0, error);
        ASSERT_FALSE(program) << row.start;
        EXPECT_EQ(error.find(row.start), 0u) << error;
        EXPECT_NE(error.find(row.word), error.npos) << error;
    }
    EXPECT_EQ(device->getStatistics().programsCompiled, 0u);
}

TEST(GlProgram, driverBinariesGoRound) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto texts = textsOf(QUAD_VERTEX, pixelText("colour = vec4(0.625);"));
    const auto other = textsOf(QUAD_VERTEX, pixelText("colour = vec4(0.25);"));
    ovMemory::String error;
    const auto program = device->createProgram(texts, {}, 0, error);
    ASSERT_TRUE(program) << error;
    EXPECT_EQ(drawnBy(*device, *program), 0.625f);
    Bytes binary;
    unsigned int format = 0;
    ASSERT_TRUE(device->getProgramBinary(*program, binary, format));
    ASSERT_FALSE(binary.empty());
    EXPECT_EQ(device->getStatistics().programsFromBinary, 0u);
    // The texts differ from the binary, so that what is drawn tells which was taken.
    const auto loaded = device->createProgram(other, binary, format, error);
    ASSERT_TRUE(loaded) << error;
    EXPECT_EQ(drawnBy(*device, *loaded), 0.625f);
    EXPECT_EQ(device->getStatistics().programsFromBinary, 1u);
    EXPECT_EQ(device->getStatistics().programsCompiled, 1u);
    // Another device of the same driver takes it as well.
    const auto second = openDevice(SHADER_LANGUAGE::HLSL);
    const auto there = second->createProgram(other, binary, format, error);
    ASSERT_TRUE(there) << error;
    EXPECT_EQ(drawnBy(*second, *there), 0.625f);
    expectNoDriverErrors(*device);
    expectNoDriverErrors(*second);
}

TEST(GlProgram, refusedBinariesFallBackToTheTexts) {
    const auto device = openDevice();
    ASSERT_TRUE(device);
    const auto texts = textsOf(QUAD_VERTEX, pixelText("colour = vec4(0.625);"));
    const auto other = textsOf(QUAD_VERTEX, pixelText("colour = vec4(0.25);"));
    ovMemory::String error;
    const auto program = device->createProgram(texts, {}, 0, error);
    Bytes binary;
    unsigned int format = 0;
    ASSERT_TRUE(device->getProgramBinary(*program, binary, format));
    struct Row {
        const char* what;
        Bytes binary;
        unsigned int format;
    };
    Row rows[] = {{"cut short", binary, format},
                  {"a wrong byte", binary, format},
                  {"one byte", {7}, format},
                  {"noise", Bytes(4096, 0xa5), format},
                  {"a format of no driver", binary, 12345}};
    rows[0].binary.resize(binary.size() / 2);
    rows[1].binary[binary.size() / 2] ^= 0x55;
    uint64_t compiled = device->getStatistics().programsCompiled;
    for (const Row& row : rows) {
        const auto again = device->createProgram(other, row.binary, row.format, error);
        ASSERT_TRUE(again) << row.what << ": " << error;
        EXPECT_EQ(drawnBy(*device, *again), 0.25f) << row.what;
        EXPECT_EQ(device->getStatistics().programsCompiled, ++compiled) << row.what;
    }
    EXPECT_EQ(device->getStatistics().programsFromBinary, 0u);
    expectNoDriverErrors(*device);
}

} // namespace ovGraphics::device::testing
