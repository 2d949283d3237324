#include <ovGraphics/shading/CrossCompiler.h>

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <ovGraphics/EmbeddedShaders.h>
#include <ovGraphics/shading/detail/FrontEnd.h>
#include <ovGraphics/shading/detail/OpaqueParameters.h>
#include <ovGraphics/shading/detail/StageJoin.h>
#include <ovGraphics/shading/detail/StageTranslator.h>
#include <ovGraphics/shading/detail/TextLimits.h>

namespace ovGraphics::shading {

using ovMemory::String;
using ovMemory::StringView;

namespace {

// Vulkan's rules, under which textures and samplers are kept apart, have another name for the vertex and
// instance numbers; the device counts both from zero, as the names of OpenGL do.
constexpr StringView GLSL_HEADER = "#version 450 core\n"
                                   "#extension GL_EXT_samplerless_texture_functions : require\n"
                                   "#extension GL_GOOGLE_cpp_style_line_directive : require\n"
                                   "#define gl_VertexID gl_VertexIndex\n"
                                   "#define gl_InstanceID gl_InstanceIndex\n";

// Constant memory holds matrices row by row.
constexpr StringView HLSL_HEADER = "#pragma pack_matrix(row_major)\n";

// Shown where the author names no file by a #line of his own.
constexpr StringView AUTHOR_TEXT_NAME = "source";

const StageText& getStageText(const ProgramText& text, STAGE stage) {
    return stage == STAGE::VERTEX ? text.vertex : text.pixel;
}

const char* getStageName(STAGE stage) {
    return stage == STAGE::VERTEX ? "vertex" : "pixel";
}

/// "<file>:<line>" of a message "<file>:<line>: <words>"; empty when it names no place.
StringView placeOf(StringView message) {
    const std::size_t lineEnd = message.find(": ");
    const StringView place = message.substr(0, lineEnd);
    const std::size_t colon = place.rfind(':');
    const bool hasLine = lineEnd != StringView::npos && colon != StringView::npos &&
                         colon + 1 < place.size() &&
                         place.find_first_not_of("0123456789", colon + 1) == StringView::npos;
    return hasLine ? place : StringView();
}

CompileResult makeFailure(const ProgramText& text, STAGE stage, StringView words) {
    return ovMemory::failed<CompileResult>(fmt::format("Could not compile the {} stage of program '{}': {}",
                                                       getStageName(stage), text.name, words),
                                           String(placeOf(words)));
}

// Checked by hand and not by the front end: a define stands before the author's text, so that the message
// about a bad one would name a line that nobody wrote.
bool isIdentifier(StringView name) {
    const auto isWord = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    };
    return !name.empty() && !(name[0] >= '0' && name[0] <= '9') &&
           std::all_of(name.begin(), name.end(), isWord);
}

/// A define that would end its line early, or go on in the author's text, would move the lines of every
/// message.
String findBadDefine(const StageText& text) {
    for (const Define& define : text.defines) {
        if (!isIdentifier(define.name)) {
            return fmt::format("the define '{}' is no identifier", define.name);
        }
        if (define.value.find_first_of("\n\r\\") != String::npos || define.value.find("/*") != String::npos) {
            return fmt::format(
                "the value of the define '{}' holds a line end, a backslash or a comment; give one "
                "line of plain text",
                define.name);
        }
    }
    return {};
}

} // namespace

String getFullText(const ProgramText& text, STAGE stage) {
    const StageText& stageText = getStageText(text, stage);
    const bool hlsl = text.language == SHADER_LANGUAGE::HLSL;
    // The order is fixed. The version line must come first, the macros may not use the defines, and the
    // author's text comes last so that its own defines cannot change the macros.
    String full(hlsl ? HLSL_HEADER : GLSL_HEADER);
    if (text.crossCompilerDefines) {
        full += stage == STAGE::PIXEL ? "#define OV_PIXEL_STAGE 1\n" : "#define OV_VERTEX_STAGE 1\n";
        full += hlsl ? embedded::Dialect_hlsl : embedded::Dialect_glsl;
    }
    for (const Define& define : stageText.defines) {
        full += fmt::format("#define {} {}\n", define.name, define.value);
    }
    // All that stands before is hidden from the count, so that line 1 in a message is line 1 of the author.
    full += fmt::format("#line 1 \"{}\"\n", AUTHOR_TEXT_NAME);
    full += stageText.text;
    return full;
}

CompileResult compile(const ProgramText& text) {
    constexpr std::array<STAGE, 2> STAGES = {STAGE::VERTEX, STAGE::PIXEL};
    std::array<detail::StageTranslator, 2> translators;
    std::array<detail::StageInterface, 2> interfaces;
    CompileResult result;
    // Both stages are reflected before either is translated: the locations of one depend on the names in the
    // other. The translators live from one loop to the next, because they keep what reflection found.
    for (std::size_t i = 0; i < STAGES.size(); ++i) {
        if (const String words = findBadDefine(getStageText(text, STAGES[i])); !words.empty()) {
            return makeFailure(text, STAGES[i], words);
        }
        // The limits come before the front end, which recurses and expands without any.
        const String fullText = getFullText(text, STAGES[i]);
        if (const String words = detail::findExceededLimit(fullText); !words.empty()) {
            return makeFailure(text, STAGES[i], words);
        }
        detail::FrontEndResult compiled = detail::compileToSpirv(text.language, STAGES[i], fullText);
        if (!compiled.error.empty()) {
            return makeFailure(text, STAGES[i], compiled.error);
        }
        result.warning += compiled.warning;
        // Before reflection, which would otherwise meet textures that are no resources.
        if (!detail::passOpaqueParametersDirectly(compiled.spirv)) {
            return makeFailure(text, STAGES[i],
                               "a texture or sampler is assigned to a variable; pass it to functions "
                               "as an argument instead");
        }
        if (!translators[i].reflect(STAGES[i], compiled.spirv, interfaces[i])) {
            return makeFailure(text, STAGES[i], translators[i].getError());
        }
    }
    auto program = std::make_unique<CompiledProgram>();
    if (const detail::JoinError error = detail::joinStages(interfaces[0], interfaces[1], *program);
        !error.words.empty()) {
        return makeFailure(text, error.stage, error.words);
    }
    // Only now are the locations and units of both stages known.
    const std::array<String*, 2> texts = {&program->vertexText, &program->pixelText};
    for (std::size_t i = 0; i < STAGES.size(); ++i) {
        if (!translators[i].translate(interfaces[i], *texts[i])) {
            return makeFailure(text, STAGES[i], translators[i].getError());
        }
    }
    result.program = std::move(program);
    return result;
}

String getCompilerVersions() {
    return detail::getFrontEndVersion() + ", " + detail::getTranslatorVersion();
}

} // namespace ovGraphics::shading
