#include <veldris/scene/SceneEffects.h>

#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/System.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <veldris/Session.h>
#include <veldris/effects/EffectChain.h>
#include <veldris/pictures/PictureTextures.h>

namespace veldris {

using ovGraphics::BLEND;
using ovGraphics::BlendState;
using ovGraphics::CompositorNode;
using ovGraphics::Texture;
using ovMemory::UniquePtr;

namespace {

/// Colours times what the drawn alpha leaves of the background, and that alpha.
void prepareCoverageBlending(BlendState& state) {
    state.setBlendEnabled(true, 0);
    state.setSourceFactor(BLEND::ZERO, 0);
    state.setDestinationFactor(BLEND::INV_SRC_ALPHA, 0);
    state.setAlphaSourceFactor(BLEND::ONE, 0);
    state.setAlphaDestinationFactor(BLEND::ZERO, 0);
}

} // namespace

UniquePtr<SceneEffects> SceneEffects::create(Session& session, const ovMemory::Buffer<PlannedEffect>& effects,
                                             const SceneSamples& samples) {
    UniquePtr<SceneEffects> made(new SceneEffects(session, samples));
    for (const PlannedEffect& planned : effects)
        if (!made->_add(planned))
            return nullptr;
    return made;
}

SceneEffects::SceneEffects(Session& session, const SceneSamples& samples)
    : _session(session)
    , _samples(samples)
    , _picture(&samples.color) {}

SceneEffects::~SceneEffects() = default;

bool SceneEffects::_add(const PlannedEffect& planned) {
    Step& step = _steps.emplace_back();
    step.planned = planned;
    step.effect = makeEffect(_session, planned);
    step.blends = planned.kind->prepareBlending && planned.kind->prepareBlending(*step.effect, step.blending);
    step.target = _picture;
    if (step.blends) {
        // A picture keeps its alpha, as where an effect reads it.
        step.blending.setWriteMask(ovGraphics::COLOR_WRITE_ALL & ~ovGraphics::COLOR_WRITE_ALPHA, 0);
    } else {
        Texture* other = _getOther();
        if (!other || (_samples.transparent && !_loadCoverage()))
            return false;
        if (!planned.kind->pictureSetting.empty())
            step.effect->setSetting(planned.kind->pictureSetting, _samples.transparent ? other : _picture);
        if (!_samples.transparent)
            step.target = _picture = other;
    }
    bindScene(planned, _samples.resources, *step.effect);
    return step.effect->load();
}

/// The one of the two textures that does not hold the picture.
Texture* SceneEffects::_getOther() {
    if (_picture != &_samples.color)
        return &_samples.color;
    if (!_other)
        _other = makeTarget(_session.getGraphics(), "scene with effects", _samples.color.getFormat(),
                            _samples.color.getWidth(), _samples.color.getHeight());
    return _other.get();
}

bool SceneEffects::_loadCoverage() {
    if (_divide)
        return true;
    _divide = PictureShader::divideByCoverage(_session.getGraphics());
    _multiply = ovVeldris::TextureCopyEffect::create(&_session.getSystem());
    _multiply->setName("coverage");
    _multiply->setSourceTexture(_other.get());
    if (!_divide || !_multiply->load())
        return false;
    _divide->setSource(_samples.color);
    return true;
}

ovGraphics::PostProcessPass& SceneEffects::_appendPass(CompositorNode& node, Texture& target,
                                                       ovGraphics::Shader& shader, ovMemory::StringView name,
                                                       bool fills) {
    ovGraphics::CompositorOperationsBlock* block = node.appendOperationsBlock();
    block->setTarget(0, &target);
    if (fills)
        block->appendClearPass()->setColor(0, 1.0f, 1.0f, 1.0f, 1.0f);
    ovGraphics::PostProcessPass* pass = block->appendPostProcessPass();
    pass->setName(name);
    pass->setShader(&shader);
    pass->setCamera(_samples.resources.camera);
    return *pass;
}

void SceneEffects::appendPasses(CompositorNode& node) {
    for (const Step& step : _steps) {
        const bool divides = _samples.transparent && !step.blends;
        if (divides)
            _appendPass(node, *_other, *_divide->getShader(), "colours beside coverage");
        const bool readsPicture = !step.planned.kind->pictureSetting.empty();
        _appendPass(node, *step.target, *step.effect->getShader(), step.planned.text,
                    !step.blends && !readsPicture)
            .getBlendState() = step.blending;
        if (divides)
            prepareCoverageBlending(
                _appendPass(node, *step.target, *_multiply->getShader(), "colours times coverage")
                    .getBlendState());
    }
}

void SceneEffects::light(const ovMaths::Vector& toLight) {
    // Without a light they keep the direction that they have.
    if (toLight.getNormalizedVec3() == ovMaths::Vector())
        return;
    _samples.resources.toLight = toLight;
    for (const Step& step : _steps)
        bindScene(step.planned, _samples.resources, *step.effect);
}

} // namespace veldris
