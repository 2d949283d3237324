#include <ovGraphics/shading/detail/FrontEnd.h>

#include <gtest/gtest.h>

namespace ovGraphics::shading::detail {

using ovMemory::String;

namespace {

constexpr std::uint32_t SPIRV_MAGIC = 0x07230203;

TEST(FrontEnd, GivesSpirvOrTheFirstMessage) {
    const struct {
        SHADER_LANGUAGE language;
        STAGE stage;
        String text;
        String error;
    } rows[] = {
        {SHADER_LANGUAGE::GLSL, STAGE::VERTEX, "#version 450\nvoid main() { gl_Position = vec4(1.0); }", ""},
        {SHADER_LANGUAGE::GLSL, STAGE::PIXEL, "#version 450\nvoid main() {}", ""},
        {SHADER_LANGUAGE::HLSL, STAGE::VERTEX, "float4 main() : SV_POSITION { return 1.0; }", ""},
        {SHADER_LANGUAGE::HLSL, STAGE::PIXEL, "float4 main() : SV_TARGET { return 1.0; }", ""},
        {SHADER_LANGUAGE::GLSL, STAGE::PIXEL, "#version 450\nvoid main() { a; b; }",
         "0:2: 'a' : undeclared identifier"},
        {SHADER_LANGUAGE::HLSL, STAGE::PIXEL, "float4 main() : SV_TARGET { return a; }",
         "0:1: 'a' : unknown variable"},
        {SHADER_LANGUAGE::HLSL, STAGE::PIXEL, "", "the text has no function 'main'"},
    };
    for (const auto& row : rows) {
        const FrontEndResult result = compileToSpirv(row.language, row.stage, row.text);
        EXPECT_EQ(result.error, row.error);
        EXPECT_TRUE(!result.error.empty() || result.warning.empty()) << result.warning;
        EXPECT_EQ(!result.spirv.empty() && result.spirv[0] == SPIRV_MAGIC, row.error.empty());
    }
}

TEST(FrontEnd, VersionHasThreeNumbers) {
    EXPECT_EQ(getFrontEndVersion().rfind("glslang ", 0), 0u);
}

} // namespace

} // namespace ovGraphics::shading::detail
