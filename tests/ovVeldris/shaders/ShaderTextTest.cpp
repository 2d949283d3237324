#include <ovVeldris/shaders/ShaderText.h>

#include <gtest/gtest.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <ovVeldris/shaders/PostProcessingLib.h>

using ovGraphics::SHADER_LANGUAGE;
using ovVeldris::assembleShaderText;

TEST(ShaderTextTest, IntroducesEachPieceAndEndsItsLastLine) {
    EXPECT_EQ(assembleShaderText({}), "");
    EXPECT_EQ(assembleShaderText({{"a.ovsl", "one\ntwo\n"}}), "#line 1 \"a.ovsl\"\none\ntwo\n");
    EXPECT_EQ(assembleShaderText({{"a.ovsl", "one"}, {"b.ovsl", ""}, {"c.ovsl", "three\n\n"}}),
              "#line 1 \"a.ovsl\"\none\n#line 1 \"b.ovsl\"\n#line 1 \"c.ovsl\"\nthree\n\n");
}

TEST(ShaderTextTest, CompileErrorsNameThePieceAndItsLine) {
    ovGraphics::shading::ProgramText text;
    text.name = "BROKEN";
    text.crossCompilerDefines = true;
    text.vertex.text = ovVeldris::PostProcessingLib::ovPostProcessDefaultVertex();
    text.pixel.text = assembleShaderText({
        {"first.ovsl", "// nothing wrong\n// here\n"},
        {"second.ovsl", "float two() {\n    return missing;\n}"},
        {"third.ovsl", "// nor here\n"},
    });
    for (const SHADER_LANGUAGE language : {SHADER_LANGUAGE::GLSL, SHADER_LANGUAGE::HLSL}) {
        text.language = language;
        const auto result = ovGraphics::shading::compile(text);
        EXPECT_FALSE(result);
        const ovMemory::String start =
            "Could not compile the pixel stage of program 'BROKEN': second.ovsl:2:";
        EXPECT_TRUE(result.error.starts_with(start)) << result.error;
        EXPECT_NE(result.error.find("missing"), ovMemory::String::npos) << result.error;
    }
}

TEST(ShaderTextTest, NumbersHaveSixDecimals) {
    const std::pair<double, const char*> cases[] = {
        {0.0f, "0.000000"},  {0.00001f, "0.000010"}, {-1.5f, "-1.500000"}, {1e-8f, "0.000000"},
        {4e-7f, "0.000000"}, {6e-7f, "0.000001"},    {0.5f, "0.500000"},   {1e6f, "1000000.000000"},
    };
    for (const auto& [number, text] : cases)
        EXPECT_EQ(ovVeldris::toSixDecimals(number), text);
    EXPECT_EQ(ovVeldris::toSixDecimals(2.0 / 7.0 + 5e-7), "0.285715") << "by its digits as a double";
    const ovMemory::String largest = ovVeldris::toSixDecimals(-std::numeric_limits<float>::max());
    EXPECT_EQ(largest, "-340282346638528859811704183484516925440.000000");
    EXPECT_EQ(ovVeldris::toSixDecimals(-std::numeric_limits<double>::max()).size(), 317u);
}
