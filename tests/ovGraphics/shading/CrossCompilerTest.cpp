#include <ovGraphics/shading/CrossCompiler.h>

#include <atomic>
#include <ovGraphics/shading/ShadingPrograms.h>
#include <thread>

namespace ovGraphics::shading {

using ovMemory::Buffer;
using ovMemory::String;

namespace {

constexpr unsigned int VERTEX_MASK = 1u << static_cast<unsigned int>(STAGE::VERTEX);
constexpr unsigned int PIXEL_MASK = 1u << static_cast<unsigned int>(STAGE::PIXEL);

const String TEXTURE = "ovTexture2dDecl(image, 0);\n";
const String SAMPLER = "ovSamplerDecl(state, 0);\n";
const String BUFFER =
    "ovConstantBufferDecl(constants, 0) { ovFloat4 value; ovFloat4x4 matrix4; ovFloat3x3 matrix3; "
    "ovFloat2x4 matrix2; ovInt4 whole; };\n";

/// One macro in a small program, and what it becomes in the device's text of both languages.
struct MacroCase {
    const char* name;
    String declarations;
    String statements;
    const char* expected;
};

const MacroCase MACRO_CASES[] = {
    {"types", "",
     "ovFloat2 a = ovFloat2(1.0, 2.0); ovFloat3 b = ovFloat3(a, 3.0); ovReturn(ovFloat4(b, PIX_TEXCOORD.x));",
     "vec4("},
    {"integers", BUFFER,
     "ovInt2 a = whole.xy; ovInt3 b = ovInt3(a, 1); ovInt4 c = ovInt4(b, whole.w); ovReturn(value * "
     "float(c.x + c.z));",
     "ivec"},
    {"unsigned", BUFFER, "ovUint4 a = ovUint4(1u, 2u, 3u, 4u); ovReturn(value * float(a.x + uint(whole.x)));",
     "uint"},
    {"lessThan", BUFFER,
     "ovBool4 b = ovLessThan(value, ovFloat4(1.0, 2.0, 3.0, 4.0)); if (b.x) ovReturn(value); "
     "ovReturn(ovFloat4(0.0, 0.0, 0.0, 0.0));",
     "lessThan("},
    {"bufferRows", BUFFER, "ovReturn(matrix4[1] + matrix2[whole.x] + ovFloat4(matrix3[2], 0.0));",
     "matrix4[1]"},
    {"mul44", BUFFER, "ovReturn(ovMul(matrix4, value));", "m[3].w * v.w"},
    {"mul33", BUFFER, "ovReturn(ovFloat4(ovMul(matrix3, value.xyz), 1.0));", "m[2].z * v.z"},
    {"mul24", BUFFER, "ovReturn(ovFloat4(ovMul(matrix2, value), 0.0, 1.0));", "m[1].w * v.w"},
    {"mul4444", BUFFER, "ovReturn(ovMul(ovMul(matrix4, matrix4), value));", "a[3].w"},
    {"mul3333", BUFFER, "ovReturn(ovFloat4(ovMul(ovMul(matrix3, matrix3), value.xyz), 1.0));", "a[2].z"},
    {"constructors", BUFFER,
     "ovFloat3x3 a = ovFloat3x3(value.xyz, value.yzw, value.xyz); ovFloat3x3 b = ovFloat3x3(value.x, 2.0, "
     "3.0, 4.0, "
     "5.0, 6.0, 7.0, 8.0, 9.0); ovFloat2x4 c = ovFloat2x4(value, value); ovFloat4x4 d = ovFloat4x4(value, "
     "value, "
     "value, c[1]); ovReturn(ovFloat4(ovMul(a, b[1]), 1.0) + d[3]);",
     "mat3("},
    {"sample", TEXTURE + SAMPLER, "ovReturn(ovSample(image, state, PIX_TEXCOORD));", "texture("},
    {"sampleCube", "ovTextureCubeDecl(image, 0);\n" + SAMPLER,
     "ovReturn(ovSample(image, state, ovFloat3(PIX_TEXCOORD, 1.0)));", "samplerCube"},
    {"sampleLevel", TEXTURE + SAMPLER, "ovReturn(ovSampleLevel(image, state, PIX_TEXCOORD, 2.0));",
     "textureLod("},
    {"sampleLevelCube", "ovTextureCubeDecl(image, 0);\n" + SAMPLER,
     "ovReturn(ovSampleLevel(image, state, ovFloat3(PIX_TEXCOORD, 1.0), 2.0));", "textureLod("},
    {"sampleBias", TEXTURE + SAMPLER, "ovReturn(ovSampleBias(image, state, PIX_TEXCOORD, 1.5));", "texture("},
    {"sampleBiasCube", "ovTextureCubeDecl(image, 0);\n" + SAMPLER,
     "ovReturn(ovSampleBias(image, state, ovFloat3(PIX_TEXCOORD, 1.0), 1.5));", "texture("},
    {"compare", "ovTexture2dShadowDecl(image, 0);\novSamplerComparisonDecl(state, 0);\n",
     "float lit = ovSampleCompareLevelZero(image, state, PIX_TEXCOORD, 0.5); ovReturn(ovFloat4(lit, lit, "
     "lit, 1.0));",
     "sampler2DShadow"},
    {"load", TEXTURE, "ovReturn(ovLoad(image, ovInt2(1, 2), 0));", "texelFetch("},
    {"loadOffset", TEXTURE, "ovReturn(ovLoadOffset(image, ovInt2(1, 2), 0, ovInt2(0, -1)));",
     "texelFetchOffset("},
    {"parameters",
     TEXTURE + SAMPLER +
         "ovFloat4 inner(ovTexture2d t, ovSampler s, ovFloat2 uv) { return ovSample(t, s, uv) + ovLoad(t, "
         "ovInt2(0, "
         "0), 0); }\novFloat4 outer(ovTexture2d t, ovSampler s, ovFloat2 uv) { return inner(t, s, uv) + "
         "inner(t, s, "
         "uv.yx); }\n",
     "ovReturn(outer(image, state, PIX_TEXCOORD));", "texture("},
    {"cubeParameter",
     "ovTextureCubeDecl(image, 3);\n" + SAMPLER +
         "ovFloat4 get(ovTextureCube t, ovSampler s, ovFloat3 d) { return ovSampleLevel(t, s, d, 0.0); }\n",
     "ovReturn(get(image, state, ovFloat3(PIX_TEXCOORD, 1.0)));", "samplerCube"},
    {"shadowParameter",
     "ovTexture2dShadowDecl(image, 2);\novSamplerComparisonDecl(state, 1);\nfloat get(ovTexture2dShadow t, "
     "ovSamplerComparison s, ovFloat2 uv) { return ovSampleCompareLevelZero(t, s, uv, 0.25); }\n",
     "float lit = get(image, state, PIX_TEXCOORD); ovReturn(ovFloat4(lit, lit, lit, 1.0));",
     "sampler2DShadow"},
    {"saturate", BUFFER, "ovReturn(ovSaturate(value));", "clamp("},
    {"lerp", BUFFER, "ovReturn(ovLerp(value, value.yzwx, 0.5));", "mix("},
    {"frac", BUFFER, "ovReturn(ovFrac(value));", "fract("},
    {"atan2", BUFFER, "float angle = ovAtan2(value.y, value.x); ovReturn(ovFloat4(angle, 0.0, 0.0, 1.0));",
     "atan("},
    {"ddx", BUFFER, "ovReturn(ovDdx(value * PIX_TEXCOORD.x));", "dFdx("},
    {"ddy", BUFFER, "ovReturn(ovDdy(value * PIX_TEXCOORD.y));", "dFdy("},
    {"static",
     "ovStatic const ovFloat3x3 ROWS = ovFloat3x3(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0);\novStatic "
     "const "
     "ovFloat3 KERNEL[2] = { ovFloat3(0.5, 0.25, 0.125), ovFloat3(1.0, 2.0, 4.0) };\n",
     "ovReturn(ovFloat4(ovMul(ROWS, KERNEL[1]), PIX_TEXCOORD.x));", "vec3(4.0, 5.0, 6.0)"},
    {"slotByDefine",
     "#define SLOT 4\novTexture2dDecl(image, SLOT);\novSamplerDecl(state, SLOT);\novConstantBufferDecl("
     "constants, SLOT) { ovFloat4 value; };\n",
     "ovReturn(ovSample(image, state, PIX_TEXCOORD) * value);", "binding = 4"},
    {"languageSwitch", "#if defined(OV_HLSL) == defined(OV_GLSL)\n#error exactly one language\n#endif\n",
     "ovReturn(ovFloat4(1.0, 0.0, 0.0, PIX_TEXCOORD.x));", "vec4("},
};

TEST(CrossCompiler, EachMacroCompilesInBothLanguagesToOneInterface) {
    for (const MacroCase& row : MACRO_CASES) {
        SCOPED_TRACE(row.name);
        const String pixel = makePixelText(row.declarations, row.statements);
        compileBoth(QUAD_VERTEX, pixel);
        for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
            const CompiledProgram program = compileOrFail(makeProgram(language, QUAD_VERTEX, pixel));
            EXPECT_NE(program.pixelText.find(row.expected), String::npos) << program.pixelText;
            EXPECT_EQ(program.pixelText.find("row_major"), String::npos) << program.pixelText;
            EXPECT_EQ(program.pixelText.rfind("#version 450", 0), 0u);
            EXPECT_EQ(program.colourOutputs, 1u);
        }
    }
}

struct LayoutCase {
    const char* name;
    const char* members;
    const char* use;
    unsigned int size;
    Buffer<ConstantBufferMember> expected;
};

/// Offsets by hand: a vector or a row takes 16 bytes, a matrix of two rows 32, of three 48, of four 64.
const LayoutCase LAYOUT_CASES[] = {
    {"reinhard", "ovFloat4 samplingVars;", "samplingVars", 16, {{"samplingVars", 0, 16}}},
    {"hables",
     "ovFloat4 fullCurveParams; ovFloat2x4 segmentParams [3];",
     "fullCurveParams + segmentParams[2][1]",
     112,
     {{"fullCurveParams", 0, 16}, {"segmentParams", 16, 96}}},
    {"aces", "ovFloat4x4 lookTransform;", "lookTransform[3]", 64, {{"lookTransform", 0, 64}}},
    {"mixed",
     "ovFloat4x4 a[2]; ovFloat3x3 b; ovInt4 c; ovFloat4 d[4]; ovFloat2x4 e; ovFloat4 f;",
     "a[1][0] + ovFloat4(b[0], 1.0) * float(c.x) + d[3] + e[1] + f",
     304,
     {{"a", 0, 128}, {"b", 128, 48}, {"c", 176, 16}, {"d", 192, 64}, {"e", 256, 32}, {"f", 288, 16}}},
    {"wholeBufferIsReported",
     "ovFloat4 unused; ovFloat4 used; ovFloat4x4 alsoUnused;",
     "used",
     96,
     {{"unused", 0, 16}, {"used", 16, 16}, {"alsoUnused", 32, 64}}},
};

TEST(CrossCompiler, ConstantBuffersAreWholeRegistersByRows) {
    for (const LayoutCase& row : LAYOUT_CASES) {
        SCOPED_TRACE(row.name);
        const String pixel =
            makePixelText(String("ovConstantBufferDecl(constants, 0) { ") + row.members + " };\n",
                          String("ovReturn(") + row.use + ");");
        const CompiledProgram program = compileBoth(QUAD_VERTEX, pixel);
        ASSERT_EQ(program.constantBuffers.size(), 1u);
        const ConstantBufferInfo& buffer = program.constantBuffers[0];
        EXPECT_EQ(buffer.name, "constants");
        EXPECT_EQ(buffer.slot, 0u);
        EXPECT_EQ(buffer.stages, PIXEL_MASK);
        EXPECT_EQ(buffer.size, row.size);
        ASSERT_EQ(buffer.members.size(), row.expected.size());
        for (std::size_t i = 0; i < row.expected.size(); ++i) {
            EXPECT_EQ(buffer.members[i].name, row.expected[i].name);
            EXPECT_EQ(buffer.members[i].offset, row.expected[i].offset) << row.expected[i].name;
            EXPECT_EQ(buffer.members[i].size, row.expected[i].size) << row.expected[i].name;
        }
    }
}

TEST(CrossCompiler, TextureUnitsAreThePairsThatAreUsed) {
    struct Row {
        const char* name;
        String declarations;
        String colour;
        Buffer<TextureUnitInfo> expected;
    };
    constexpr unsigned int NONE = TextureUnitInfo::NO_SAMPLER;
    constexpr TEXTURE_TYPE FLAT = TEXTURE_TYPE::TEXTURE_2D;
    const String all =
        "ovTexture2dDecl(a, 0);\novTexture2dDecl(b, 3);\novTextureCubeDecl(c, 2);\novSamplerDecl(s, "
        "0);\novSamplerDecl(t, 1);\novTexture2dShadowDecl(d, 4);\novSamplerComparisonDecl(u, 2);\n";
    const Row rows[] = {
        {"nothing", all, "ovFloat4(1.0, 1.0, 1.0, PIX_TEXCOORD.x)", {}},
        {"unusedAreDropped",
         all,
         "ovSample(b, t, PIX_TEXCOORD)",
         {{"b", 3, "t", 1, FLAT, false, false, PIXEL_MASK}}},
        {"oneTextureTwoSamplers",
         all,
         "ovSample(a, t, PIX_TEXCOORD) + ovSample(a, s, PIX_TEXCOORD)",
         {{"a", 0, "s", 0, FLAT, false, false, PIXEL_MASK},
          {"a", 0, "t", 1, FLAT, false, false, PIXEL_MASK}}},
        {"twoTexturesOneSampler",
         all,
         "ovSample(b, s, PIX_TEXCOORD) + ovSample(a, s, PIX_TEXCOORD)",
         {{"a", 0, "s", 0, FLAT, false, false, PIXEL_MASK},
          {"b", 3, "s", 0, FLAT, false, false, PIXEL_MASK}}},
        {"fetchNeedsNoSampler",
         all,
         "ovLoad(b, ovInt2(0, 0), 0)",
         {{"b", 3, "", NONE, FLAT, false, false, PIXEL_MASK}}},
        {"fetchSharesTheUnitOfSampling",
         all,
         "ovLoad(a, ovInt2(0, 0), 0) + ovSample(a, s, PIX_TEXCOORD)",
         {{"a", 0, "s", 0, FLAT, false, false, PIXEL_MASK}}},
        {"fetchDoesNotShareAComparison",
         all,
         "ovLoad(d, ovInt2(0, 0), 0) * ovSampleCompareLevelZero(d, u, PIX_TEXCOORD, 0.5)",
         {{"d", 4, "u", 2, FLAT, false, true, PIXEL_MASK},
          {"d", 4, "", NONE, FLAT, false, false, PIXEL_MASK}}},
        {"cube",
         all,
         "ovSample(c, s, ovFloat3(PIX_TEXCOORD, 0.5))",
         {{"c", 2, "s", 0, TEXTURE_TYPE::CUBE, false, false, PIXEL_MASK}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const CompiledProgram program =
            compileBoth(QUAD_VERTEX, makePixelText(row.declarations, "ovReturn(" + row.colour + ");"));
        ASSERT_EQ(program.textureUnits.size(), row.expected.size());
        for (std::size_t i = 0; i < row.expected.size(); ++i) {
            EXPECT_TRUE(program.textureUnits[i] == row.expected[i])
                << i << program.textureUnits[i].textureName;
            const String binding = "layout(binding = " + std::to_string(i) + ") uniform sampler";
            EXPECT_NE(program.pixelText.find(binding), String::npos) << program.pixelText;
        }
    }
}

constexpr const char* DIRECTION_VERTEX = R"(
ovConstantBufferDecl(ConstantsVertex, 1) { ovFloat4 camViewCorners [4]; };
#ifdef OV_HLSL
struct VertexInput { float4 position : POSITION; float2 uvs : TEXCOORD; float3 zeta : ZETA; float4 alpha : ALPHA;
                     float4 binormal : BINORMAL; uint id : SV_VertexID; uint instance : SV_InstanceID; };
struct PixelInput { float4 position : SV_POSITION; float4 dir : CAM_DIR; float2 uvs : PIX_TEXCOORD; float3 more : MORE; };
PixelInput main(VertexInput input) {
    PixelInput result;
    result.position = input.position + input.alpha + input.binormal;
    result.uvs = input.uvs * float(input.instance);
    result.dir = camViewCorners[input.id];
    result.more = input.zeta;
    return result;
}
#else
in vec3 ZETA;
in vec4 BINORMAL;
in vec4 POSITION;
in vec2 TEXCOORD;
in vec4 ALPHA;
out vec3 MORE;
out vec2 PIX_TEXCOORD;
out vec4 CAM_DIR;
void main () {
    gl_Position = POSITION + ALPHA + BINORMAL;
    PIX_TEXCOORD = TEXCOORD * float(gl_InstanceID);
    CAM_DIR = camViewCorners[gl_VertexID];
    MORE = ZETA;
}
#endif
)";

constexpr const char* DIRECTION_PIXEL = R"(
ovConstantBufferDecl(Constants, 0) { ovFloat4 tint; };
#ifdef OV_HLSL
struct PixelInput { float4 position : SV_POSITION; float2 uvs : PIX_TEXCOORD; float4 dir : CAM_DIR; };
struct PixelOutput { float4 first : SV_TARGET0; float4 second : SV_TARGET1; };
PixelOutput main(PixelInput input) {
    PixelOutput result;
    result.first = input.dir * tint;
    result.second = float4(input.uvs, input.position.xy);
    return result;
}
#else
in vec2 PIX_TEXCOORD;
in vec4 CAM_DIR;
layout(location = 0) out vec4 OUT_COLOR;
layout(location = 1) out vec4 OUT_COLOR_1;
void main () {
    OUT_COLOR = CAM_DIR * tint;
    OUT_COLOR_1 = vec4(PIX_TEXCOORD, gl_FragCoord.xy);
}
#endif
)";

/// The number in "layout(location = N) <direction> <type> <name>".
int findLocation(const String& text, const String& declaration) {
    const std::size_t at = text.find(declaration);
    const std::size_t start = at == String::npos ? at : text.rfind("location = ", at);
    return start == String::npos ? -1 : std::stoi(text.substr(start + 11));
}

TEST(CrossCompiler, StagesAreJoinedByName) {
    const CompiledProgram program = compileBoth(DIRECTION_VERTEX, DIRECTION_PIXEL);
    const Buffer<AttributeInfo> attributes = {
        {"POSITION", 0, 4}, {"TEXCOORD", 2, 2}, {"BINORMAL", 4, 4}, {"ALPHA", 5, 4}, {"ZETA", 6, 3}};
    EXPECT_TRUE(program.attributes == attributes);
    ASSERT_EQ(program.constantBuffers.size(), 2u);
    EXPECT_EQ(program.constantBuffers[0].stages, PIXEL_MASK);
    EXPECT_EQ(program.constantBuffers[1].stages, VERTEX_MASK);
    EXPECT_EQ(program.constantBuffers[1].name, "ConstantsVertex");
    EXPECT_EQ(program.constantBuffers[1].size, 64u);
    EXPECT_EQ(program.colourOutputs, 2u);
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        SCOPED_TRACE(getLanguageName(language));
        const CompiledProgram compiled =
            compileOrFail(makeProgram(language, DIRECTION_VERTEX, DIRECTION_PIXEL));
        for (const String varying : {"vec4 ovVarying_CAM_DIR;", "vec2 ovVarying_PIX_TEXCOORD;"}) {
            const int written = findLocation(compiled.vertexText, "out " + varying);
            EXPECT_GE(written, 0) << compiled.vertexText;
            EXPECT_EQ(findLocation(compiled.pixelText, "in " + varying), written);
        }
        EXPECT_EQ(findLocation(compiled.vertexText, "in vec4 ovAttribute_POSITION"), 0);
        EXPECT_EQ(findLocation(compiled.vertexText, "in vec3 ovAttribute_ZETA"), 6);
        EXPECT_NE(compiled.vertexText.find("gl_VertexID"), String::npos);
        EXPECT_NE(compiled.vertexText.find("gl_InstanceID"), String::npos);
        EXPECT_EQ(compiled.vertexText.find("BaseInstance"), String::npos);
        EXPECT_EQ(compiled.vertexText.find("gl_Position.z"), String::npos) << "clip space is not touched";
        EXPECT_EQ(compiled.vertexText.find("gl_Position.y"), String::npos) << "clip space is not touched";
    }
}

TEST(CrossCompiler, VariablesOfLoopsAreDeclaredOnce) {
    const String pixel =
        makePixelText(TEXTURE + SAMPLER, "ovFloat4 sum = ovFloat4(0.0, 0.0, 0.0, 0.0);\n"
                                         "for (float turn = -1.5; turn <= 1.5; turn += 1.0)\n"
                                         "    sum += ovSampleLevel(image, state, PIX_TEXCOORD * turn, 0.0);\n"
                                         "ovReturn(sum);");
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        const String text = compileOrFail(makeProgram(language, QUAD_VERTEX, pixel)).pixelText;
        const std::size_t first = text.find("float turn");
        EXPECT_NE(first, String::npos) << text;
        EXPECT_EQ(text.find("float turn", first + 1), String::npos) << text;
    }
}

TEST(CrossCompiler, SlotsAreSharedByBothStages) {
    const String buffer = "ovConstantBufferDecl(Shared, 2) { ovFloat4 offset; ovFloat4x4 matrix4; };\n";
    const String use = "ovTexture2dDecl(image, 1);\novSamplerDecl(state, 1);\n";
    const String vertex = buffer + use + R"(
#ifdef OV_HLSL
struct PixelInput { float4 position : SV_POSITION; float2 uvs : PIX_TEXCOORD; };
PixelInput main(float4 position : POSITION) {
    PixelInput result;
    result.uvs = position.xy;
    result.position = ovMul(matrix4, position) + ovSampleLevel(image, state, result.uvs, 0.0);
    return result;
}
#else
in vec4 POSITION;
out vec2 PIX_TEXCOORD;
void main () {
    PIX_TEXCOORD = POSITION.xy;
    gl_Position = ovMul(matrix4, POSITION) + ovSampleLevel(image, state, PIX_TEXCOORD, 0.0);
}
#endif
)";
    const CompiledProgram program = compileBoth(
        vertex, makePixelText(buffer + use, "ovReturn(offset + ovSample(image, state, PIX_TEXCOORD));"));
    ASSERT_EQ(program.constantBuffers.size(), 1u);
    EXPECT_EQ(program.constantBuffers[0].stages, VERTEX_MASK | PIXEL_MASK);
    ASSERT_EQ(program.textureUnits.size(), 1u);
    EXPECT_EQ(program.textureUnits[0].stages, VERTEX_MASK | PIXEL_MASK);
}

struct ErrorCase {
    const char* name;
    SHADER_LANGUAGE language;
    const char* vertex; ///< null for the quad's
    const char* pixel;
    const char* expected;
};

constexpr SHADER_LANGUAGE GLSL = SHADER_LANGUAGE::GLSL;
constexpr SHADER_LANGUAGE HLSL = SHADER_LANGUAGE::HLSL;

const ErrorCase ERROR_CASES[] = {
    {"glslLine", GLSL, nullptr, "out vec4 OUT_COLOR;\nvoid main () {\n    OUT_COLOR = foo;\n}\n",
     "pixel stage of program 'program': source:3: 'foo' : undeclared identifier"},
    {"glslLineDirective", GLSL, nullptr,
     "out vec4 OUT_COLOR;\n#line 50 \"my/file.ovsl\"\nvoid main () {\n    OUT_COLOR = foo;\n}\n",
     "pixel stage of program 'program': my/file.ovsl:51: 'foo' : undeclared identifier"},
    {"glslFirstLine", GLSL, nullptr, "foo bar;", "pixel stage of program 'program': source:1: "},
    {"glslVertex", GLSL, "\n\nvoid main () { gl_Position = foo; }",
     "out vec4 OUT_COLOR; void main () { OUT_COLOR = vec4(1.0); }",
     "vertex stage of program 'program': source:3: 'foo' : undeclared identifier"},
    {"glslSyntax", GLSL, nullptr, "\n\nvoid main () {\n    int a = 1\n}\n",
     "source:5: '' :  syntax error, unexpected RIGHT_BRACE"},
    {"hlslLine", HLSL, nullptr, "float4 main() : SV_TARGET {\n\n    return foo;\n}\n",
     "pixel stage of program 'program': source:3: 'foo' : unknown variable"},
    {"hlslLineDirective", HLSL, nullptr,
     "#line 50 \"my/file.ovsl\"\nfloat4 main() : SV_TARGET {\n    return foo;\n}\n",
     "pixel stage of program 'program': my/file.ovsl:51: 'foo' : unknown variable"},
    {"hlslSyntax", HLSL, nullptr, "float4 main() : SV_TARGET {\n    float a = 1.0\n    return a;\n}\n",
     "source:3: ';' : Expected"},
    {"hlslVertex", HLSL, "\n\nfloat4 main() : SV_POSITION { return foo; }",
     "float4 main() : SV_TARGET { return 1.0; }",
     "vertex stage of program 'program': source:3: 'foo' : unknown variable"},
    {"glslEmpty", GLSL, nullptr, "", "pixel stage of program 'program': the text has no function 'main'"},
    {"hlslEmpty", HLSL, nullptr, "", "pixel stage of program 'program': the text has no function 'main'"},
    {"glslNoMain", GLSL, nullptr, "void mane () {}", "the text has no function 'main'"},
    {"hlslNoMain", HLSL, nullptr, "float4 mane() : SV_TARGET { return 1.0; }",
     "the text has no function 'main'"},
    {"glslUnterminatedComment", GLSL, nullptr, "void main () { /* never ends",
     "source:1: 'comment' : End of input in comment"},
    {"hlslUnterminatedComment", HLSL, nullptr, "float4 main() : SV_TARGET { /* never ends",
     "source:1: 'comment' : End of input in comment"},
    {"glslUnterminatedIf", GLSL, nullptr, "#if 1\nvoid main () {}\n", "missing #endif"},
    {"hlslUnterminatedIf", HLSL, nullptr, "#if 1\nfloat4 main() : SV_TARGET { return 1.0; }\n",
     "missing #endif"},
    {"glslUnterminatedBlock", GLSL, nullptr, "void main () {", "source:1: "},
    {"hlslUnterminatedBlock", HLSL, nullptr, "float4 main() : SV_TARGET {", "source:1: "},
    {"glslInclude", GLSL, nullptr, "\n#include \"x.h\"\nvoid main () {}\n", "source:2: '#include'"},
    {"hlslInclude", HLSL, nullptr, "\n#include \"x.h\"\nfloat4 main() : SV_TARGET { return 1.0; }\n",
     "source:2: '#include'"},
    {"glslRecursion", GLSL, nullptr,
     "float f(float x);\nfloat g(float x) { return f(x); }\nfloat f(float x) { return g(x); }\nout vec4 "
     "OUT_COLOR;\nvoid "
     "main () { OUT_COLOR = vec4(f(1.0)); }\n",
     "Recursion detected"},
    {"hlslRecursion", HLSL, nullptr,
     "float f(float x);\nfloat g(float x) { return f(x); }\nfloat f(float x) { return g(x); }\nfloat4 main() "
     ": "
     "SV_TARGET { return f(1.0); }\n",
     "Recursion detected"},
    {"glslVersion", GLSL, nullptr, "#version 450\nvoid main () {}\n", "source:1: '#version'"},
    {"glslErrorDirective", GLSL, nullptr, "\n#error choose an operator\n",
     "source:2: '#error' : choose an operator"},
    {"hlslErrorDirective", HLSL, nullptr, "\n#error choose an operator\n",
     "source:2: '#error' : choose an operator"},
    {"glslMissingInput", GLSL, nullptr,
     "in vec3 PIX_NORMAL;\nout vec4 OUT_COLOR;\nvoid main () { OUT_COLOR = PIX_NORMAL.xyzz; }\n",
     "pixel stage of program 'program': the input 'PIX_NORMAL' is not written by the vertex stage"},
    {"hlslMissingInput", HLSL, nullptr, "float4 main(float3 n : PIX_NORMAL) : SV_TARGET { return n.xyzz; }\n",
     "pixel stage of program 'program': the input 'PIX_NORMAL' is not written by the vertex stage"},
    {"glslOtherInputType", GLSL, nullptr,
     "in vec3 PIX_TEXCOORD;\nout vec4 OUT_COLOR;\nvoid main () { OUT_COLOR = PIX_TEXCOORD.xyzz; }\n",
     "the input 'PIX_TEXCOORD' is float x 3 x 1 (scalar x components x locations); the vertex stage writes "
     "float x 2 x 1"},
    {"glslLooseUniform", GLSL, nullptr,
     "uniform float x;\nout vec4 OUT_COLOR;\nvoid main () { OUT_COLOR = vec4(x); }\n",
     "source:1: 'non-opaque uniforms outside a block'"},
    {"hlslLooseUniform", HLSL, nullptr, "float x;\nfloat4 main() : SV_TARGET { return x; }\n",
     "'x' is declared outside a constant buffer; make it static or put it into one"},
    {"hlslPackedBuffer", HLSL, nullptr,
     "cbuffer C : register(b0) { float a; float2 b; };\nfloat4 main() : SV_TARGET { return a + b.x; }\n",
     "the member 'b' of the constant buffer 'C' starts at byte 4, in GLSL it would at 8; use members of "
     "whole registers"},
    {"glslSlotTooHigh", GLSL, nullptr,
     "ovConstantBufferDecl(C, 14) { ovFloat4 a; };\nout vec4 OUT_COLOR;\nvoid main () { OUT_COLOR = a; }\n",
     "the constant buffer 'C' has slot 14; slots 0 to 13 are offered"},
    {"glslStorage", GLSL, nullptr,
     "layout(binding = 0, std430) buffer B { float a; } b;\nout vec4 OUT_COLOR;\nvoid main () { OUT_COLOR = "
     "vec4(b.a); }\n",
     "the storage buffer 'B' is not offered to programs"},
    {"glslNestedTooDeep", GLSL, nullptr, "NESTED_GLSL",
     "source:1: brackets are nested deeper than 128 levels"},
    {"hlslNestedTooDeep", HLSL, nullptr, "NESTED_HLSL",
     "source:1: brackets are nested deeper than 128 levels"},
    {"glslMegabytes", GLSL, nullptr, "MEGABYTES", "bytes long with its defines; 262144 are allowed"},
    {"hlslMegabytes", HLSL, nullptr, "MEGABYTES", "bytes long with its defines; 262144 are allowed"},
    {"glslBinary", GLSL, nullptr, "BINARY", "source:1: "},
    {"hlslBinary", HLSL, nullptr, "BINARY", "source:1: "},
};

String makeHostileText(const String& kind) {
    if (kind.rfind("NESTED", 0) == 0) {
        const String nested = String(5000, '(') + "1.0" + String(5000, ')');
        return kind == "NESTED_HLSL" ? "float4 main() : SV_TARGET { return " + nested + "; }"
                                     : "void main () { float x = " + nested + "; }";
    }
    if (kind == "MEGABYTES") {
        return String(4u << 20, 'a');
    }
    String binary;
    for (unsigned int i = 0, random = 1; kind == "BINARY" && i < 4096;
         ++i, random = random * 1664525u + 1013904223u) {
        const char byte = static_cast<char>(random >> 24);
        binary += byte == '\n' ? ' ' : byte;
    }
    return kind == "BINARY" ? binary : kind;
}

TEST(CrossCompiler, ErrorsNameProgramStageAndTheAuthorsLine) {
    for (const ErrorCase& row : ERROR_CASES) {
        SCOPED_TRACE(row.name);
        const CompileResult result = compile(
            makeProgram(row.language, row.vertex ? row.vertex : QUAD_VERTEX, makeHostileText(row.pixel)));
        EXPECT_FALSE(result);
        EXPECT_EQ(result.error.rfind("Could not compile the ", 0), 0u) << result.error;
        EXPECT_NE(result.error.find(row.expected), String::npos) << result.error;
        EXPECT_EQ(result.error.find('\n'), String::npos) << result.error;
    }
}

TEST(CrossCompiler, DefinesDoNotMoveLines) {
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        for (const bool macros : {true, false}) {
            ProgramText text = makeProgram(language, QUAD_VERTEX, "\n\nfoo bar;\n");
            text.crossCompilerDefines = macros;
            text.vertex.text = language == HLSL
                                   ? "float4 main(float4 p : POSITION) : SV_POSITION { return p; }"
                                   : "in vec4 POSITION; void main () { gl_Position = POSITION; }";
            for (int i = 0; i < 200; ++i) {
                text.pixel.defines.push_back({"OPTION_" + std::to_string(i), i % 2 ? "" : std::to_string(i)});
            }
            EXPECT_NE(compile(text).error.find("source:3: "), String::npos) << compile(text).error;
        }
    }
}

TEST(CrossCompiler, DefinesSelectOptionsOfTheirStage) {
    const String pixel =
        makePixelText("", "#if defined(BRIGHT) && LEVEL == 3\novReturn(ovFloat4(8.0, 8.0, 8.0, "
                          "PIX_TEXCOORD.x));\n#else\novReturn(ovFloat4(4.0, 4.0, 4.0, "
                          "PIX_TEXCOORD.x));\n#endif");
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        ProgramText text = makeProgram(language, QUAD_VERTEX, pixel);
        EXPECT_NE(compileOrFail(text).pixelText.find("4.0"), String::npos);
        text.vertex.defines = {{"BRIGHT", ""}, {"LEVEL", "3"}};
        EXPECT_NE(compileOrFail(text).pixelText.find("4.0"), String::npos)
            << "the vertex stage's are its own";
        text.pixel.defines = {{"BRIGHT", ""}, {"LEVEL", "3"}};
        EXPECT_NE(compileOrFail(text).pixelText.find("8.0"), String::npos);
    }
}

TEST(CrossCompiler, DefinesMustBeOneLine) {
    const struct {
        Define define;
        const char* expected;
    } rows[] = {{{"", "1"}, "the define '' is no identifier"},
                {{"A B", "1"}, "the define 'A B' is no identifier"},
                {{"1A", "1"}, "the define '1A' is no identifier"},
                {{"A", "1\nfoo"}, "the value of the define 'A' holds a line end"},
                {{"A", "1\\"}, "the value of the define 'A' holds a line end, a backslash"},
                {{"A", "1 /*"}, "the value of the define 'A' holds a line end, a backslash or a comment"}};
    for (const auto& row : rows) {
        ProgramText text = makeProgram(GLSL, QUAD_VERTEX, makePixelText("", "ovReturn(PIX_TEXCOORD.xyxy);"));
        text.pixel.defines = {row.define};
        EXPECT_NE(compile(text).error.find(row.expected), String::npos) << compile(text).error;
    }
}

TEST(CrossCompiler, SlotsOfOtherContentsAreErrors) {
    const String vertex = String("ovConstantBufferDecl(V, 0) { ovFloat4 value; };\n") + R"(
#ifdef OV_HLSL
float4 main(float4 position : POSITION, out float2 uvs : PIX_TEXCOORD) : SV_POSITION { uvs = value.xy; return position; }
#else
in vec4 POSITION;
out vec2 PIX_TEXCOORD;
void main () { gl_Position = POSITION; PIX_TEXCOORD = value.xy; }
#endif
)";
    const struct {
        const char* declarations;
        const char* colour;
        const char* expected;
    } rows[] = {
        {"ovConstantBufferDecl(P, 0) { ovFloat4 other; };\n", "other",
         "the constant buffer 'P' of slot 0 holds (float 1x4 other at 0), but the vertex stage's 'V'"},
        {"ovConstantBufferDecl(P, 0) { ovFloat4x4 value; };\n", "value[0]",
         "the constant buffer 'P' of slot 0 holds"},
        {"ovConstantBufferDecl(P, 0) { ovInt4 value; };\n", "ovFloat4(1.0, 1.0, 1.0, 1.0) * float(value.x)",
         "the constant buffer 'P' of slot 0 holds"},
        {"ovConstantBufferDecl(P, 1) { ovFloat4 a; };\novConstantBufferDecl(Q, 1) { ovFloat4 b; };\n",
         "a + b", "have the same slot 1"},
        {"ovTexture2dDecl(a, 1);\novTexture2dDecl(b, 1);\novSamplerDecl(s, 0);\n",
         "ovSample(a, s, PIX_TEXCOORD) + ovSample(b, s, PIX_TEXCOORD)", "have the same slot 1"},
        {"ovTexture2dDecl(a, 1);\novSamplerDecl(s, 2);\novSamplerDecl(t, 2);\n",
         "ovSample(a, s, PIX_TEXCOORD) + ovSample(a, t, PIX_TEXCOORD)", "have the same slot 2"},
    };
    for (const auto& row : rows) {
        for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
            const CompileResult result = compile(makeProgram(
                language, vertex, makePixelText(row.declarations, String("ovReturn(") + row.colour + ");")));
            EXPECT_NE(result.error.find(row.expected), String::npos) << result.error;
        }
    }
}

TEST(CrossCompiler, HlslNamesAreMatchedAsHlslDoes) {
    const char* vertex = "struct V { float4 a : SV_Position; float2 b : TexCoord0; float3 c : Texcoord1; };\n"
                         "V main(float4 p : Position0, float4 q : TEXCOORD1) {\n"
                         "    V v; v.a = p; v.b = p.xy; v.c = q.xyz; return v;\n}\n";
    const char* pixel =
        "float4 main(float3 c : TEXCOORD1, float2 b : TEXCOORD) : SV_Target { return c.xyzz + b.xyxy; }";
    const CompiledProgram program = compileOrFail(makeProgram(HLSL, vertex, pixel));
    const Buffer<AttributeInfo> attributes = {{"POSITION", 0, 4}, {"TEXCOORD1", 5, 4}};
    EXPECT_TRUE(program.attributes == attributes);
    EXPECT_EQ(program.colourOutputs, 1u);
}

TEST(CrossCompiler, MatrixAttributesTakeALocationARow) {
    const char* glsl =
        "in mat4 WORLD; in vec4 POSITION; void main () { gl_Position = ovMul(WORLD, POSITION); }";
    const char* hlsl =
        "float4 main(float4x4 world : WORLD, float4 p : POSITION) : SV_POSITION { return ovMul(world, p); }";
    const Buffer<AttributeInfo> attributes = {
        {"POSITION", 0, 4}, {"WORLD0", 5, 4}, {"WORLD1", 6, 4}, {"WORLD2", 7, 4}, {"WORLD3", 8, 4}};
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        const CompiledProgram program = compileOrFail(
            makeProgram(language, language == HLSL ? hlsl : glsl,
                        language == HLSL ? "float4 main() : SV_TARGET { return 1.0; }"
                                         : "out vec4 OUT_COLOR; void main () { OUT_COLOR = vec4(1.0); }"));
        EXPECT_TRUE(program.attributes == attributes) << program.vertexText;
    }
}

TEST(CrossCompiler, DepthOnlyProgramsWriteNoColour) {
    EXPECT_EQ(compileOrFail(makeProgram(GLSL, QUAD_VERTEX, "void main () {}")).colourOutputs, 0u);
    EXPECT_EQ(compileOrFail(makeProgram(HLSL, QUAD_VERTEX, "void main() {}")).colourOutputs, 0u);
}

TEST(CrossCompiler, WarningsAreCollected) {
    const CompileResult result =
        compile(makeProgram(GLSL, QUAD_VERTEX, "\n#extension GL_OV_unheard_of : enable\nvoid main () {}\n"));
    EXPECT_TRUE(result) << result.error;
    EXPECT_EQ(result.warnings, "source:2: '#extension' : extension not supported: GL_OV_unheard_of\n");
}

TEST(CrossCompiler, OutcomeIsTheSameEachTime) {
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        const ProgramText text = makeProgram(language, DIRECTION_VERTEX, DIRECTION_PIXEL);
        const CompiledProgram first = compileOrFail(text);
        for (int i = 0; i < 3; ++i) {
            EXPECT_TRUE(compileOrFail(text) == first);
        }
    }
}

TEST(CrossCompiler, FullTextIsHeaderMacrosDefinesText) {
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        ProgramText text = makeProgram(language, "vertex words", "pixel words");
        text.pixel.defines = {{"FIRST", ""}, {"SECOND", "2"}};
        const String full = getFullText(text, STAGE::PIXEL);
        const String tail = "#define FIRST \n#define SECOND 2\n#line 1 \"source\"\npixel words";
        ASSERT_GT(full.size(), tail.size());
        EXPECT_EQ(full.substr(full.size() - tail.size()), tail);
        EXPECT_NE(full.find(language == HLSL ? "#define OV_HLSL" : "#define OV_GLSL"), String::npos);
        EXPECT_EQ(full.find("#version 450") == 0, language == GLSL);
        EXPECT_EQ(getFullText(text, STAGE::VERTEX).find("pixel words"), String::npos);
        text.crossCompilerDefines = false;
        EXPECT_EQ(getFullText(text, STAGE::PIXEL).find("ovFloat4"), String::npos);
    }
}

TEST(CrossCompiler, VersionsNameBothCompilers) {
    EXPECT_NE(getCompilerVersions().find("glslang "), String::npos);
    EXPECT_NE(getCompilerVersions().find("SPIRV-Cross "), String::npos);
}

TEST(CrossCompilerThreads, ProgramsCompileSideBySide) {
    constexpr int THREADS = 4;
    constexpr int ROUNDS = 6;
    CompiledProgram expected[2];
    for (const SHADER_LANGUAGE language : BOTH_LANGUAGES) {
        expected[language == HLSL] = compileOrFail(makeProgram(language, DIRECTION_VERTEX, DIRECTION_PIXEL));
    }
    std::atomic<int> wrong = 0;
    Buffer<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&expected, &wrong, i] {
            for (int round = 0; round < ROUNDS; ++round) {
                const SHADER_LANGUAGE language = (i + round) % 2 ? HLSL : GLSL;
                const CompileResult good = compile(makeProgram(language, DIRECTION_VERTEX, DIRECTION_PIXEL));
                const CompileResult bad = compile(makeProgram(language, DIRECTION_VERTEX, "foo bar;"));
                wrong += !good || !(*good.program == expected[language == HLSL]);
                wrong += bad || bad.error.find("source:1: ") == String::npos;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

} // namespace

} // namespace ovGraphics::shading
