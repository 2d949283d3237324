#include <ovGraphics/shading/detail/FrontEnd.h>

#include <fmt/format.h>
#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>
#include <glslang/SPIRV/GlslangToSpv.h>

namespace ovGraphics::shading::detail {

using ovMemory::String;
using ovMemory::StringView;

namespace {

// Vulkan's rules let GLSL keep textures and samplers apart; SPIR-V 1.0 is all that the translator needs.
constexpr glslang::EShTargetClientVersion CLIENT_VERSION = glslang::EShTargetVulkan_1_0;

/// The front ends keep tables for the process; one object of this class lives as long as it does.
class FrontEndProcess {
public:
    FrontEndProcess()
        : _initialised(glslang::InitializeProcess()) {}
    FrontEndProcess(const FrontEndProcess&) = delete;
    FrontEndProcess& operator=(const FrontEndProcess&) = delete;
    ~FrontEndProcess() { glslang::FinalizeProcess(); }
    bool isInitialised() const { return _initialised; }

private:
    bool _initialised;
};

// A static of a function is made once even when several threads compile first, and torn down at the process's
// end.
bool initialiseOnce() {
    static const FrontEndProcess process;
    return process.isInitialised();
}

StringView trim(StringView text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == StringView::npos ? StringView()
                                     : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// Sorts the lines of a compiler's log into the first error, with the lines that continue it, and all
/// warnings.
// One message is all that a caller can show in a line. The front ends go on after the first error, and what
// follows is mostly its consequence. A few messages go on in indented lines, which belong to them.
void readLog(StringView log, FrontEndResult& result) {
    static constexpr StringView ERROR = "ERROR: ";
    static constexpr StringView WARNING = "WARNING: ";
    bool continues = false;
    while (!log.empty()) {
        const std::size_t end = log.find('\n');
        const StringView line = log.substr(0, end);
        continues = continues && line.starts_with("    ");
        if (line.starts_with(WARNING)) {
            result.warning += String(trim(line.substr(WARNING.size()))) + '\n';
        } else if (continues) {
            result.error += ' ' + String(trim(line));
        } else if (result.error.empty() && line.starts_with(ERROR)) {
            result.error = trim(line.substr(ERROR.size()));
            continues = true;
        }
        log = end == StringView::npos ? StringView() : log.substr(end + 1);
    }
}

void setEnvironment(glslang::TShader& shader, SHADER_LANGUAGE language, EShLanguage stage) {
    const auto source = language == SHADER_LANGUAGE::HLSL ? glslang::EShSourceHlsl : glslang::EShSourceGlsl;
    shader.setEnvInput(source, stage, glslang::EShClientVulkan, 100);
    shader.setEnvClient(glslang::EShClientVulkan, CLIENT_VERSION);
    shader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_0);
    shader.setEntryPoint("main");
    shader.setAutoMapLocations(true); // the joining of the stages replaces them; outputs keep their order
    if (language == SHADER_LANGUAGE::HLSL) {
        shader.setEnvTargetHlslFunctionality1(); // carries the semantics into the SPIR-V
        shader.setSourceEntryPoint("main");
        shader.setDxPositionW(true);
    }
}

bool parseAndLink(glslang::TShader& shader, glslang::TProgram& program, EShMessages messages,
                  FrontEndResult& result) {
    const bool parsed = shader.parse(GetDefaultResources(), 450, ECoreProfile, false, false, messages);
    readLog(shader.getInfoLog(), result);
    if (!parsed) {
        return false;
    }
    program.addShader(&shader);
    // A single stage is linked. Stages of one program are joined by our own rules, because the front end
    // numbers each stage by itself.
    const bool linked = program.link(messages) && program.mapIO();
    readLog(program.getInfoLog(), result);
    return linked;
}

} // namespace

FrontEndResult compileToSpirv(SHADER_LANGUAGE language, STAGE stage, const String& fullText) {
    FrontEndResult result;
    if (!initialiseOnce()) {
        result.error = "the compiler's front ends could not be initialised";
        return result;
    }
    const EShLanguage nativeStage = stage == STAGE::VERTEX ? EShLangVertex : EShLangFragment;
    const bool hlsl = language == SHADER_LANGUAGE::HLSL;
    const auto messages = static_cast<EShMessages>(EShMsgSpvRules | EShMsgVulkanRules |
                                                   (hlsl ? EShMsgReadHlsl : EShMsgDefault));

    glslang::TShader shader(nativeStage);
    const char* text = fullText.data();
    const int length = static_cast<int>(fullText.size());
    shader.setStringsWithLengths(&text, &length, 1);
    setEnvironment(shader, language, nativeStage);
    glslang::TProgram program;
    if (!parseAndLink(shader, program, messages, result)) {
        // The HLSL front end has no words for a missing entry point, and those of GLSL do not name it.
        if (result.error.empty() || result.error.find("Missing entry point") != String::npos) {
            result.error = "the text has no function 'main'";
        }
        return result;
    }
    result.error.clear();

    spv::SpvBuildLogger logger;
    glslang::SpvOptions options;
    // The optimiser takes 10 ms a program and the driver optimises again: the pictures were no faster.
    options.disableOptimizer = true;
    glslang::GlslangToSpv(*program.getIntermediate(nativeStage), result.spirv, &logger, &options);
    if (result.spirv.empty()) {
        result.error = "the front end gave no SPIR-V: " + logger.getAllMessages();
    }
    return result;
}

String getFrontEndVersion() {
    const glslang::Version version = glslang::GetVersion();
    return fmt::format("glslang {}.{}.{}", version.major, version.minor, version.patch);
}

} // namespace ovGraphics::shading::detail
