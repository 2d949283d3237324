#include <ovVeldris/scripts/veldrisWrap/ContentWrappers.h>
#include <ovVeldris/scripts/veldrisWrap/EffectWrappers.h>
#include <ovVeldris/scripts/veldrisWrap/EnvironmentWrappers.h>
#include <ovVeldris/scripts/veldrisWrap/FrameWrapper.h>
#include <ovVeldris/scripts/veldrisWrap/SkyLightWrapper.h>
#include <ovVeldris/scripts/veldrisWrap/VeldrisWrappers.h>

namespace ovVeldrisWrap {

void updateVeldris(ovScripts::Environment* environment) {
    EffectWrapper::updateEnvironment(environment);
    EffectManagerWrapper::updateEnvironment(environment);
    ComplexEffectWrapper::updateEnvironment(environment);
    ComplexEffectManagerWrapper::updateEnvironment(environment);
    MaterialWrapper::updateEnvironment(environment);
    MaterialManagerWrapper::updateEnvironment(environment);
    ModelWrapper::updateEnvironment(environment);
    ModelLoaderWrapper::updateEnvironment(environment);
    LoadedMaterialsWrapper::updateEnvironment(environment);
    ContentLoaderWrapper::updateEnvironment(environment);
    ProjectLoaderWrapper::updateEnvironment(environment);
    PbsEnvironmentMapFilterWrapper::updateEnvironment(environment);
    EnvironmentRendererWrapper::updateEnvironment(environment);
    FrameWrapper::updateEnvironment(environment);
    SkyLightWrapper::updateEnvironment(environment);
}

} // namespace ovVeldrisWrap
