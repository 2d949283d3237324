#include <veldris/effects/EffectChain.h>

#include <algorithm>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/System.h>
#include <ovVeldris/effects/SrgbConversion.h>
#include <ovVeldris/effects/TextureCopyEffect.h>
#include <veldris/Session.h>
#include <veldris/effects/LoadedComplexEffect.h>
#include <veldris/pictures/PictureTextures.h>

namespace veldris {

namespace {

using ovGraphics::Texture;
using ovMemory::String;
using ovMemory::UniquePtr;

constexpr auto PICTURE_FORMAT = ovGraphics::FORMAT::R32G32B32A32_FLOAT;
constexpr unsigned int STRIP_PIXELS = 1u << 19; // 8 MB of floats

ovImages::COLOR_ENCODING encodingOf(PICTURE_CONTENT content) {
    return content == PICTURE_CONTENT::SRGB_ENCODED ? ovImages::COLOR_ENCODING::SRGB
                                                    : ovImages::COLOR_ENCODING::LINEAR;
}

/// An effect over a picture, ready to be drawn.
class LoadedEffect {
public:
    /// Null when something cannot be loaded. @param picture outlives the effect
    static UniquePtr<LoadedEffect> load(Session& session, const PlannedEffect& planned, Texture& picture,
                                        ovGraphics::Camera& camera) {
        const TimedPart part(session.getProgress(), "programs");
        auto loaded = std::make_unique<LoadedEffect>();
        loaded->_effect = makeEffect(session, planned);
        ovVeldris::Effect& effect = *loaded->_effect;
        effect.setSetting(planned.kind->pictureSetting, &picture);
        planned.view.apply(camera,
                           static_cast<float>(picture.getWidth()) / static_cast<float>(picture.getHeight()));
        for (const ovVeldris::Setting& setting : effect.getSettings())
            if (setting.kind == ovVeldris::SETTING_KIND::CAMERA)
                setting.set(effect, &camera);
        return effect.load() && loaded->_makePasses(session, planned, picture) ? std::move(loaded) : nullptr;
    }

    /// What is drawn, in this order: an effect that blends stands behind a copy of its picture.
    ovMemory::BufferView<const PicturePass> getPasses() const { return _passes; }

private:
    bool _makePasses(Session& session, const PlannedEffect& planned, Texture& picture) {
        PicturePass pass = {*_effect->getShader(), planned.text};
        if (planned.kind->prepareBlending && planned.kind->prepareBlending(*_effect, pass.blending)) {
            _below = ovVeldris::TextureCopyEffect::create(&session.getSystem());
            _below->setSourceTexture(&picture);
            if (!_below->load())
                return false;
            _passes.push_back({*_below->getShader(), "picture to blend with"});
            // A picture keeps its alpha, as where the effect reads it.
            pass.blending.setWriteMask(ovGraphics::COLOR_WRITE_ALL & ~ovGraphics::COLOR_WRITE_ALPHA, 0);
        }
        _passes.push_back(pass);
        return true;
    }

    UniquePtr<ovVeldris::Effect> _effect;
    UniquePtr<ovVeldris::TextureCopyEffect> _below;
    ovMemory::Buffer<PicturePass> _passes;
};

/// A step that changes nothing.
PlannedEffect copyOfPicture() {
    PlannedEffect copy;
    copy.kind = ovVeldris::findEffectKind(ovVeldris::EFFECT_TYPE::TEXTURE_COPY);
    copy.text = copy.getName();
    return copy;
}

/// Draws single steps of a chain from texture to texture. A step's source goes when the step is done.
class ChainRunner {
public:
    ChainRunner(Session& session, UniquePtr<Texture> picture, const PictureScene& scene)
        : _session(session)
        , _graphics(session.getGraphics())
        , _scene(scene)
        , _camera(ovGraphics::Camera::create(&_graphics))
        , _picture(std::move(picture)) {}

    bool drawEffect(const PlannedEffect& planned) {
        if (planned.complexKind)
            return _drawComplexEffect(planned);
        const auto effect = LoadedEffect::load(_session, planned, *_picture, *_camera);
        return effect && _draw(effect->getPasses());
    }

    /// Draws an effect strip by strip into a picture of the source's size. @param encoding of what it draws
    bool drawEffectInStrips(const PlannedEffect& planned, ovImages::COLOR_ENCODING encoding,
                            ovImages::Image& result, ovImages::ConversionLosses& losses) {
        const auto effect = LoadedEffect::load(_session, planned, *_picture, *_camera);
        const unsigned int width = _picture->getWidth();
        const unsigned int height = _picture->getHeight();
        const unsigned int rows = std::clamp(STRIP_PIXELS / width, 1u, height);
        const UniquePtr<Texture> target = makeTarget(_graphics, "strip", PICTURE_FORMAT, width, rows);
        const auto viewport = ovGraphics::Viewport::create(&_graphics);
        viewport->setSize(width, height);
        if (!target || !effect)
            return false;
        _timings.push_back({planned.text, 0.0});
        for (unsigned int top = 0; top < height; top += rows) {
            viewport->setOrigin(0, -static_cast<int>(top));
            if (!drawPasses(_graphics, effect->getPasses(), *target, viewport.get()))
                return false;
            for (const ovGraphics::PassTiming& timing : _graphics.getPassTimings())
                _timings.back().milliseconds += timing.milliseconds;
            const auto drawn = target->readBack();
            const unsigned int count = std::min(rows, height - top);
            const TimedPart part(_session.getProgress(), "conversion");
            if (!drawn || !ovImages::convertRows({width, count, 4, ovImages::COMPONENT_TYPE::FLOAT, encoding,
                                                  ovMemory::BufferView<const unsigned char>(*drawn).first(
                                                      drawn->size() / rows * count)},
                                                 result, top, losses))
                return false;
            if (_session.getProgress())
                _session.getProgress()->share(static_cast<double>(top + count) / height);
        }
        if (!_graphics.getPassTimingEnabled())
            _timings.pop_back();
        return true;
    }

    const Texture& getPicture() const { return *_picture; }

    bool convert(const ContentConversion& conversion) {
        const String name = toText(conversion.from) + " to " + toText(conversion.to);
        const auto shader = _makeConversion(conversion);
        if (!shader)
            return false;
        shader->setSource(*_picture);
        const PicturePass pass = {*shader->getShader(), name};
        return _draw({&pass, 1});
    }

    UniquePtr<Texture> takePicture() { return std::move(_picture); }
    const ovMemory::Buffer<EffectTiming>& getTimings() const { return _timings; }

private:
    UniquePtr<ovVeldris::SrgbConversion> _makeConversion(const ContentConversion& conversion) {
        const TimedPart part(_session.getProgress(), "programs");
        return conversion.to == PICTURE_CONTENT::SRGB_ENCODED ? ovVeldris::SrgbConversion::encode(_graphics)
                                                              : ovVeldris::SrgbConversion::decode(_graphics);
    }

    /// The effect's result goes with it, so that it is copied behind its passes.
    bool _drawComplexEffect(const PlannedEffect& planned) {
        // Its textures have the format of its source: bytes would be rounded after each pass.
        if (_picture->getFormat() != PICTURE_FORMAT && !drawEffect(copyOfPicture()))
            return false;
        const auto effect = LoadedComplexEffect::load(_session, planned, *_picture, _scene);
        UniquePtr<Texture> target = _makeTarget();
        const auto copy = ovVeldris::TextureCopyEffect::create(&_session.getSystem());
        if (!effect || !target)
            return false;
        copy->setSourceTexture(&effect->getOutput());
        if (!copy->load())
            return false;
        auto* block = effect->getCompositor().appendNode()->appendOperationsBlock();
        block->setTarget(0, target.get());
        block->appendPostProcessPass()->setShader(copy->getShader());
        if (!drawCompositor(_graphics, effect->getCompositor(), *target))
            return false;
        if (_graphics.getPassTimingEnabled())
            _timings.push_back({planned.text, 0.0});
        for (const ovGraphics::PassTiming& timing : _graphics.getPassTimings())
            _timings.back().milliseconds += timing.milliseconds;
        _picture = std::move(target);
        return true;
    }

    UniquePtr<Texture> _makeTarget() {
        return makeTarget(_graphics, "picture", PICTURE_FORMAT, _picture->getWidth(), _picture->getHeight());
    }

    bool _draw(ovMemory::BufferView<const PicturePass> passes) {
        UniquePtr<Texture> target = _makeTarget();
        if (!target || !drawPasses(_graphics, passes, *target))
            return false;
        for (const ovGraphics::PassTiming& timing : _graphics.getPassTimings())
            _timings.push_back({timing.name, timing.milliseconds});
        _picture = std::move(target);
        return true;
    }

    Session& _session;
    ovGraphics::System& _graphics;
    PictureScene _scene;
    UniquePtr<ovGraphics::Camera> _camera;
    UniquePtr<Texture> _picture;
    ovMemory::Buffer<EffectTiming> _timings;
};

/// Draws the first effects of a plan, with the conversions before them and before the next one.
bool drawFirst(ChainRunner& runner, const ChainPlan& plan, std::size_t count) {
    auto next = plan.conversions.begin();
    for (std::size_t i = 0; i <= count; ++i) {
        for (; next != plan.conversions.end() && next->beforeEffect == i; ++next) {
            if (!runner.convert(*next))
                return false;
        }
        if (i < count && !runner.drawEffect(plan.effects[i]))
            return false;
    }
    return true;
}

UniquePtr<Texture> uploadTimed(Session& session, ovImages::Image picture) {
    const TimedPart part(session.getProgress(), "uploading");
    return uploadPicture(session.getGraphics(), std::move(picture));
}

ChainResult failure(Session& session) {
    ChainResult result;
    result.error = session.getLogger().take();
    return result;
}

} // namespace

UniquePtr<ovVeldris::Effect> makeEffect(Session& session, const PlannedEffect& planned) {
    UniquePtr<ovVeldris::Effect> effect = planned.kind->create(&session.getSystem());
    effect->setName(planned.kind->getName());
    for (const ovVeldris::SettingAssignment& assignment : planned.settings)
        effect->getSettings().find(assignment.name)->set(*effect, assignment.value);
    return effect;
}

ChainResult runChain(Session& session, UniquePtr<Texture> picture, const ChainPlan& plan,
                     const PictureScene& scene) {
    ChainResult result;
    result.content = plan.content;
    ChainRunner runner(session, std::move(picture), scene);
    if (drawFirst(runner, plan, plan.effects.size()))
        result.image = downloadPicture(runner.takePicture());
    if (!result.image) {
        result.error = session.getLogger().take();
        return result;
    }
    result.image->setEncoding(encodingOf(result.content));
    result.timings = runner.getTimings();
    return result;
}

ChainResult runChain(Session& session, const ovImages::ImageView& picture, const ChainPlan& plan) {
    if (UniquePtr<Texture> uploaded = uploadPicture(session.getGraphics(), picture))
        return runChain(session, std::move(uploaded), plan);
    return failure(session);
}

ChainResult runChainForFile(Session& session, ovImages::Image picture, const ChainPlan& plan,
                            const ovImages::FileForm& form, bool raw) {
    UniquePtr<Texture> uploaded = uploadTimed(session, std::move(picture));
    // Without effects there is nothing to draw in strips.
    if (!uploaded || plan.effects.empty())
        return uploaded ? runChain(session, std::move(uploaded), plan) : failure(session);
    ChainResult result;
    result.content = plan.content;
    ChainRunner runner(session, std::move(uploaded), {});
    // An effect of several passes looks beyond the rows of a strip: what it drew is copied in strips.
    const bool copies = plan.effects.back().complexKind != nullptr;
    const PlannedEffect last = copies ? copyOfPicture() : plan.effects.back();
    if (!drawFirst(runner, plan, plan.effects.size() - (copies ? 0 : 1)))
        return failure(session);
    result.image = std::make_unique<ovImages::Image>(
        runner.getPicture().getWidth(), runner.getPicture().getHeight(), 4, form.components, form.encoding);
    ovImages::ConversionLosses losses;
    if (!runner.drawEffectInStrips(last, raw ? form.encoding : encodingOf(plan.content), *result.image,
                                   losses)) {
        result = failure(session);
        if (result.error.empty())
            result.error = "the picture at the end of the effects needs more memory than there is.";
        return result;
    }
    const TimedPart part(session.getProgress(), "conversion");
    ovImages::dropOpaqueAlpha(*result.image);
    result.warning = ovImages::describeLosses(losses);
    result.timings = runner.getTimings();
    return result;
}

} // namespace veldris
