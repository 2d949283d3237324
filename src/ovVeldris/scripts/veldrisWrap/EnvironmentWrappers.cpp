#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/System.h>
#include <ovVeldris/environment/EnvironmentRenderer.h>
#include <ovVeldris/environment/OutputLoaded.h>
#include <ovVeldris/environment/PbsEnvironmentMapFilter.h>
#include <ovVeldris/scripts/veldrisWrap/EnvironmentWrappers.h>
#include <ovVeldris/scripts/veldrisWrap/VeldrisTypes.h>

namespace ovVeldrisWrap {

using ovGraphics::Shader;
using ovGraphics::Texture;
using ovVeldris::loadsOutput;
using ovVeldris::System;

namespace {

// Null after shutdown() of the system.
template <typename Tool>
Tool& existing(Tool* tool) {
    if (!tool)
        throw ovCommonWrap::ArgumentError("the system was shut down");
    return *tool;
}

} // namespace

void PbsEnvironmentMapFilterWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<ovVeldris::PbsEnvironmentMapFilter>(environment);
    type.setRenderThreadOnly();
    type.setHelp("Filters environments for materials. Functions give false when they cannot, and the log "
                 "says why.");
    staticFunction(
        type, "requestEnvironmentMapFiltering",
        [](Texture& input, Texture& output, unsigned int resolution) {
            auto& tool = existing(System::getInstance()->getPbsEnvironmentMapFilter());
            return loadsOutput(output,
                               [&] { tool.requestEnvironmentMapFiltering(&input, &output, resolution); });
        },
        {"input", "output", "resolution"},
        "Makes a cube whose mips hold the environment as surfaces of rising roughness mirror it.");
    staticFunction(
        type, "requestIrradianceComputing",
        [](Texture& input, Texture& output) {
            auto& tool = existing(System::getInstance()->getPbsEnvironmentMapFilter());
            return loadsOutput(output, [&] { tool.requestIrradianceComputing(&input, &output); });
        },
        {"input", "output"},
        "Makes a texture of the light that a diffuse surface facing each direction receives, over pi.");
}

void EnvironmentRendererWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<ovVeldris::EnvironmentRenderer>(environment);
    type.setRenderThreadOnly();
    type.setHelp("Draws environments. Functions give false when they cannot, and the log says why.");
    staticFunction(
        type, "renderCubemap",
        [](Texture& output, Shader& shader, unsigned int resolution, ovGraphics::FORMAT format) {
            auto& tool = existing(System::getInstance()->getEnvironmentRenderer());
            return loadsOutput(output, [&] { tool.renderCubemap(&output, &shader, resolution, format); });
        },
        {"output", "shader", "resolution", "format"},
        "Draws a shader, as of an effect, over a cube's faces.");
    staticFunction(
        type, "cubemapToSphericalMap",
        [](Texture& output, Texture& input, unsigned int width, unsigned int height) {
            auto& tool = existing(System::getInstance()->getEnvironmentRenderer());
            return loadsOutput(output, [&] { tool.cubemapToSphericalMap(&output, &input, width, height); });
        },
        {"output", "input", "width", "height"}, "Unwraps a cube into a map by longitude and latitude.");
}

} // namespace ovVeldrisWrap
