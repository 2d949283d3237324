#include <ovGraphics/shading/CrossCompiler.h>

#include <atomic>
#include <fstream>
#include <iterator>
#include <ovGraphics/shading/ShadingPrograms.h>
#include <thread>

namespace ovGraphics::shading {

using ovMemory::Buffer;
using ovMemory::String;

namespace {

constexpr SHADER_LANGUAGE GLSL = SHADER_LANGUAGE::GLSL;
constexpr SHADER_LANGUAGE HLSL = SHADER_LANGUAGE::HLSL;
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
            EXPECT_EQ(program.colorOutputs, 1u);
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
        String color;
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
            compileBoth(QUAD_VERTEX, makePixelText(row.declarations, "ovReturn(" + row.color + ");"));
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
    EXPECT_EQ(program.colorOutputs, 2u);
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

TEST(CrossCompiler, HlslNamesAreMatchedAsHlslDoes) {
    const char* vertex = "struct V { float4 a : SV_Position; float2 b : TexCoord0; float3 c : Texcoord1; };\n"
                         "V main(float4 p : Position0, float4 q : TEXCOORD1) {\n"
                         "    V v; v.a = p; v.b = p.xy; v.c = q.xyz; return v;\n}\n";
    const char* pixel =
        "float4 main(float3 c : TEXCOORD1, float2 b : TEXCOORD) : SV_Target { return c.xyzz + b.xyxy; }";
    const CompiledProgram program = compileOrFail(makeProgram(HLSL, vertex, pixel));
    const Buffer<AttributeInfo> attributes = {{"POSITION", 0, 4}, {"TEXCOORD1", 5, 4}};
    EXPECT_TRUE(program.attributes == attributes);
    EXPECT_EQ(program.colorOutputs, 1u);
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

TEST(CrossCompiler, DepthOnlyProgramsWriteNoColor) {
    EXPECT_EQ(compileOrFail(makeProgram(GLSL, QUAD_VERTEX, "void main () {}")).colorOutputs, 0u);
    EXPECT_EQ(compileOrFail(makeProgram(HLSL, QUAD_VERTEX, "void main() {}")).colorOutputs, 0u);
}

TEST(CrossCompiler, WarningsAreCollected) {
    const CompileResult result =
        compile(makeProgram(GLSL, QUAD_VERTEX, "\n#extension GL_OV_unheard_of : enable\nvoid main () {}\n"));
    EXPECT_TRUE(result) << result.error;
    EXPECT_EQ(result.warning, "source:2: '#extension' : extension not supported: GL_OV_unheard_of\n");
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

/// The blocks of a Markdown file that are marked with a language, in order.
Buffer<String> readBlocks(const char* path, const String& language) {
    std::ifstream file(path);
    const String document((std::istreambuf_iterator<char>(file)), {});
    const String start = "```" + language + "\n";
    Buffer<String> blocks;
    for (std::size_t at = document.find(start); at != String::npos; at = document.find(start, at)) {
        at += start.size();
        blocks.push_back(document.substr(at, document.find("```", at) - at));
    }
    return blocks;
}

TEST(CrossCompiler, DocumentedExampleCompilesInBothLanguages) {
    const Buffer<String> blocks = readBlocks(OV_SHADER_LANGUAGE_DOCUMENT, "glsl");
    ASSERT_EQ(blocks.size(), 2u);
    const CompiledProgram program = compileBoth(blocks[0], blocks[1]);
    EXPECT_EQ(program.textureUnits.size(), 2u);
    EXPECT_EQ(program.constantBuffers.size(), 2u);
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
