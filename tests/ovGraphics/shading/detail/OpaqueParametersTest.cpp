#include <ovGraphics/shading/detail/OpaqueParameters.h>

#include <gtest/gtest.h>
#include <ovGraphics/shading/ShadingPrograms.h>
#include <ovGraphics/shading/detail/FrontEnd.h>

namespace ovGraphics::shading::detail {

using ovMemory::Buffer;
using ovMemory::String;

namespace {

constexpr const char* RESOURCES =
    "Texture2D a : register(t0); Texture2D b : register(t1); SamplerState s : register(s0);\n"
    "float4 get(Texture2D t, SamplerState p, float2 uv) { return t.Sample(p, uv); }\n";

Buffer<std::uint32_t> compileHlsl(const String& body) {
    return compileToSpirv(SHADER_LANGUAGE::HLSL, STAGE::PIXEL,
                          RESOURCES + ("float4 main(float4 p : SV_POSITION) : SV_TARGET { " + body + " }"))
        .spirv;
}

TEST(OpaqueParameters, TextWithoutCallsIsLeftAlone) {
    const Buffer<std::uint32_t> before = compileHlsl("return a.Sample(s, p.xy);");
    ASSERT_FALSE(before.empty());
    Buffer<std::uint32_t> after = before;
    EXPECT_TRUE(passOpaqueParametersDirectly(after));
    EXPECT_EQ(after, before);
}

TEST(OpaqueParameters, CopiesAreTakenOut) {
    const Buffer<std::uint32_t> before = compileHlsl("return get(a, s, p.xy) + get(b, s, p.xy);");
    Buffer<std::uint32_t> after = before;
    EXPECT_TRUE(passOpaqueParametersDirectly(after));
    EXPECT_LT(after.size(), before.size());
}

TEST(OpaqueParameters, EachCallReadsItsOwnTexture) {
    const String pixel = String(RESOURCES) +
                         "float4 outer(Texture2D first, Texture2D second, SamplerState p, float2 uv) {\n"
                         "    return get(second, p, uv) - get(first, p, uv);\n}\n"
                         "float4 main(float4 p : SV_POSITION) : SV_TARGET { return outer(b, a, s, p.xy); }";
    const CompiledProgram program = compileOrFail(makeProgram(SHADER_LANGUAGE::HLSL, QUAD_VERTEX, pixel));
    ASSERT_EQ(program.textureUnits.size(), 2u);
    EXPECT_EQ(program.textureUnits[0].textureName, "a");
    // outer's parameters first and second are b (unit 1) and a (unit 0), in whatever order the translator
    // writes them.
    const String& text = program.pixelText;
    const bool firstIsFirst = text.find("Combinedfirst") < text.find("Combinedsecond");
    const std::size_t call = text.rfind("outer(");
    EXPECT_EQ(text.find("ovUnit1", call) < text.find("ovUnit0", call), firstIsFirst) << text;
}

TEST(OpaqueParameters, ChoosingATextureAtRunTimeIsRefused) {
    const char* bodies[] = {"Texture2D t = a; if (p.x > 5.0) t = b; return t.Sample(s, p.xy);",
                            "Texture2D t; if (p.x > 5.0) t = a; else t = b; return get(t, s, p.xy);"};
    for (const char* body : bodies) {
        const CompileResult result = compile(makeProgram(
            SHADER_LANGUAGE::HLSL, QUAD_VERTEX,
            RESOURCES + (String("float4 main(float4 p : SV_POSITION) : SV_TARGET { ") + body + " }")));
        EXPECT_FALSE(result) << body;
        EXPECT_NE(result.error.find("a texture or sampler is assigned to a variable"), String::npos)
            << result.error;
    }
}

TEST(OpaqueParameters, AnyWordsAreSafe) {
    std::uint32_t random = 1;
    for (int i = 0; i < 2000; ++i) {
        Buffer<std::uint32_t> words(static_cast<std::size_t>(i % 40));
        for (std::uint32_t& word : words) {
            random = random * 1664525u + 1013904223u;
            word = random >> 8 & 0x0003003f; // short instructions of low numbers, where the known ones are
        }
        passOpaqueParametersDirectly(words);
    }
}

} // namespace

} // namespace ovGraphics::shading::detail
