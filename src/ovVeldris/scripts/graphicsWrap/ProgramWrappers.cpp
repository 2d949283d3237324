#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsTypes.h>
#include <ovVeldris/scripts/graphicsWrap/ProgramWrappers.h>

namespace ovGraphicsWrap {

using ovGraphics::Program;
using ovGraphics::Shader;
using ovMemory::StringView;

void ProgramWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<Program>(environment);
    addLoadState<Program>(type);
    addName<Program>(type);
    addLoading<Program>(type);
    method(
        type, "setSources",
        [](Program& self, StringView vertex, StringView pixel) {
            ovGraphics::ProgramSourcesHolder sources;
            sources.setVertexMemory(vertex);
            sources.setPixelMemory(pixel);
            self.setSources(sources);
        },
        {"vertex", "pixel"}, "The texts of both stages.");
    method(type, "setActivateCrossCompilerDefines", &Program::setActivateCrossCompilerDefines, {"activate"},
           "Whether the macros that both shader languages share are put before the texts.");
}

void ShaderWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<Shader>(environment);
    addLoadState<Shader>(type);
    addName<Shader>(type);
    addLoading<Shader>(type);
    method(type, "getProgram", &Shader::getProgram, {}, "The program, or nil.");
    method(type, "setProgram", &Shader::setProgram, {"program"}, "Takes effect at the next load().");
    method(type, "getTexture", &Shader::getTexture, {"unit", "stage"}, "The texture of a unit, or nil.");
    method(type, "setTexture", &Shader::setTexture, {"texture", "unit", "stage"},
           "Binds a texture to a unit; nil reads as black. The stage is 0.");
}

} // namespace ovGraphicsWrap
