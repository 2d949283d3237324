#include <ovGraphics/shading/detail/StageTranslator.h>

#include <gtest/gtest.h>
#include <ovGraphics/shading/detail/FrontEnd.h>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::String;

namespace {

constexpr const char* GLSL_START = "#version 450\n";

TEST(StageTranslator, WritesTheChosenPlacesIntoTheText) {
    const FrontEndResult compiled = compileToSpirv(
        SHADER_LANGUAGE::GLSL, STAGE::PIXEL,
        String(GLSL_START) +
            "layout(set = 0, binding = 3) uniform B { vec4 value; };\n"
            "layout(set = 1, binding = 2) uniform texture2D t;\nlayout(set = 2, binding = 1) uniform sampler "
            "s;\n"
            "in vec2 uv; out vec4 colour; void main() { colour = value * texture(sampler2D(t, s), uv); }");
    ASSERT_EQ(compiled.error, "");
    StageTranslator translator;
    StageInterface interface;
    ASSERT_TRUE(translator.reflect(STAGE::PIXEL, compiled.spirv, interface));
    ASSERT_EQ(interface.inputs.size(), 1u);
    ASSERT_EQ(interface.blocks.size(), 1u);
    ASSERT_EQ(interface.pairs.size(), 1u);
    EXPECT_EQ(interface.inputs[0].name, "uv");
    EXPECT_EQ(interface.blocks[0].info.slot, 3u);
    EXPECT_EQ(interface.blocks[0].signature, "float 1x4 value at 0");
    EXPECT_EQ(interface.pairs[0].info.textureSlot, 2u);
    EXPECT_EQ(interface.pairs[0].info.samplerSlot, 1u);
    interface.inputs[0].location = 9;
    interface.pairs[0].unit = 5;
    String text;
    ASSERT_TRUE(translator.translate(interface, text));
    for (const char* expected :
         {"layout(location = 9) in vec2 ovVarying_uv;", "layout(binding = 3, std140) uniform ovConstants3",
          "layout(binding = 5) uniform sampler2D ovUnit5;"}) {
        EXPECT_NE(text.find(expected), String::npos) << text;
    }
}

TEST(StageTranslator, RefusesWhatProgramsDoNotOffer) {
    const struct {
        const char* declarations;
        const char* use;
        const char* expected;
    } rows[] = {
        {"layout(binding = 0, rgba8) uniform image2D i;", "imageLoad(i, ivec2(0))", "the storage image 'i'"},
        {"layout(push_constant) uniform P { vec4 a; } p;", "p.a", "the push constant 'p'"},
        {"layout(binding = 0) uniform B { vec4 a; } b[2];", "b[1].a", "is an array; give each its own slot"},
        {"layout(binding = 0) uniform texture3D t; layout(binding = 1) uniform sampler s;",
         "texture(sampler3D(t, s), vec3(0.0))", "the texture 't' is of a type that is not offered"},
        {"layout(binding = 0) uniform texture2DMS t;", "texelFetch(sampler2DMS(t, s), ivec2(0), 0)", ""},
        {"in double d;", "vec4(float(d))", ""},
    };
    for (const auto& row : rows) {
        const FrontEndResult compiled =
            compileToSpirv(SHADER_LANGUAGE::GLSL, STAGE::PIXEL,
                           String(GLSL_START) + row.declarations +
                               "\nout vec4 colour; void main() { colour = " + row.use + "; }");
        if (row.expected[0] == '\0') {
            EXPECT_NE(compiled.error, "") << "the front end refuses it already: " << row.declarations;
            continue;
        }
        ASSERT_EQ(compiled.error, "") << row.declarations;
        StageTranslator translator;
        StageInterface interface;
        EXPECT_FALSE(translator.reflect(STAGE::PIXEL, compiled.spirv, interface));
        EXPECT_NE(translator.getError().find(row.expected), String::npos) << translator.getError();
    }
}

TEST(StageTranslator, WordsThatAreNoSpirvAreAnError) {
    for (const Buffer<std::uint32_t>& words :
         {Buffer<std::uint32_t>{}, Buffer<std::uint32_t>{1, 2, 3}, Buffer<std::uint32_t>(100, 0xffffffffu)}) {
        StageTranslator translator;
        StageInterface interface;
        EXPECT_FALSE(translator.reflect(STAGE::PIXEL, words, interface));
        EXPECT_NE(translator.getError().find("the translator to the device's language failed: "),
                  String::npos);
    }
}

TEST(StageTranslator, VersionIsNamed) {
    EXPECT_EQ(getTranslatorVersion().rfind("SPIRV-Cross ", 0), 0u);
}

} // namespace

} // namespace ovGraphics::shading::detail
