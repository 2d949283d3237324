#include <veldris/effects/LoadedComplexEffect.h>

#include <ovVeldris/System.h>
#include <veldris/Session.h>

namespace veldris {

namespace {

using ovVeldris::ComplexEffectKind;

/// Distances of effects are near + (far - near) times the linear depth: view z over far of a perspective.
/// What an orthographic camera writes is linear, and these distances are view z then.
float effectDistanceOf(const ovGraphics::Camera& camera, float z) {
    if (camera.isOrthographic())
        return z;
    return camera.getNear() + (camera.getFar() - camera.getNear()) * z / camera.getFar();
}

void bindScene(const PlannedEffect& planned, const PictureScene& scene, ovVeldris::ComplexEffect& effect) {
    effect.setSetting(ComplexEffectKind::DEPTH_SETTING, scene.depth);
    effect.setSetting("camera", scene.camera);
    effect.setSetting("linear-depth", scene.camera->isOrthographic());
    if (planned.focusesOnScene)
        effect.setSetting("focus", effectDistanceOf(*scene.camera, scene.middle));
}

} // namespace

ovMemory::UniquePtr<LoadedComplexEffect> LoadedComplexEffect::load(Session& session,
                                                                   const PlannedEffect& planned,
                                                                   ovGraphics::Texture& picture,
                                                                   const PictureScene& scene) {
    const TimedPart part(session.getProgress(), "programs");
    auto loaded = std::make_unique<LoadedComplexEffect>();
    loaded->_kind = planned.complexKind;
    loaded->_compositor = ovGraphics::Compositor::create(&session.getGraphics());
    loaded->_effect = planned.complexKind->create(&session.getSystem());
    ovVeldris::ComplexEffect& effect = *loaded->_effect;
    effect.setName(planned.getName());
    effect.setCompositorNode(loaded->_compositor->appendNode());
    for (const ovVeldris::SettingAssignment& assignment : planned.settings)
        effect.setSetting(assignment.name, assignment.value);
    effect.setSetting(ComplexEffectKind::PICTURE_SETTING, &picture);
    if (planned.complexKind->readsDepth() && scene.camera)
        bindScene(planned, scene, effect);
    return effect.load() ? std::move(loaded) : nullptr;
}

ovGraphics::Texture& LoadedComplexEffect::getOutput() const {
    return *_kind->getOutput(*_effect);
}

} // namespace veldris
