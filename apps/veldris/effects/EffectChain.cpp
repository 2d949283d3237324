#include <veldris/effects/EffectChain.h>

#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/System.h>
#include <veldris/Session.h>

namespace veldris {

namespace {

using ovImages::COLOUR_ENCODING;
using ovImages::COMPONENT_TYPE;
using ovImages::Image;
using ovImages::ImageView;
using ovMemory::Buffer;
using ovMemory::String;
using ovMemory::UniquePtr;

constexpr auto PICTURE_FORMAT = ovGraphics::FORMAT::R32G32B32A32_FLOAT;

COLOUR_ENCODING encodingOf(PICTURE_CONTENT content) {
    return content == PICTURE_CONTENT::SRGB_ENCODED ? COLOUR_ENCODING::SRGB : COLOUR_ENCODING::LINEAR;
}

/// The picture as four floats; encodings are converted where content says so.
Image toFloats(const ImageView& picture, COLOUR_ENCODING from, COLOUR_ENCODING to) {
    ImageView source = picture;
    source.encoding = from;
    return ovImages::convertImage(source, COMPONENT_TYPE::FLOAT, 4, to);
}

/// Draws single effects from texture to texture.
class EffectRunner {
public:
    explicit EffectRunner(Session& session)
        : _session(session)
        , _camera(ovGraphics::Camera::create(&session.getGraphics())) {}

    bool upload(const ImageView& picture) {
        _picture = _makeTexture(picture.width, picture.height);
        _picture->setCpuData(0, 0, picture.bytes);
        return _picture->load();
    }

    bool draw(const PlannedEffect& planned, ovVeldris::Effect& effect, ChainResult& result) {
        UniquePtr<ovGraphics::Texture> target = _makeTexture(_picture->getWidth(), _picture->getHeight());
        target->setUsableAsRenderTarget(true);
        _setSource(planned, effect);
        if (!target->load() || !effect.load())
            return false;

        ovGraphics::System& graphics = _session.getGraphics();
        const auto compositor = ovGraphics::Compositor::create(&graphics);
        ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
        block->setTarget(0, target.get());
        ovGraphics::PostProcessPass* pass = block->appendPostProcessPass();
        pass->setShader(effect.getShader());
        pass->setName(planned.text);

        const auto context = ovGraphics::RenderContext::create(&graphics);
        context->setDescriptor({target.get(), false});
        context->setCompositor(compositor.get());
        if (graphics.getPassTimingEnabled())
            graphics.frame(context.get()); // the first draw compiles: not what a user wants measured
        if (!graphics.frame(context.get()))
            return false;
        for (const ovGraphics::PassTiming& timing : graphics.getPassTimings())
            result.timings.push_back({timing.name, timing.milliseconds});
        _picture = std::move(target);
        return true;
    }

    UniquePtr<Image> download() { return _picture->convertToImage(); }

private:
    /// Gives the effect the picture, and a camera wherever it asks for one.
    void _setSource(const PlannedEffect& planned, ovVeldris::Effect& effect) {
        String neverWrong;
        effect.setSetting(ovVeldris::EffectKind::PICTURE_SETTING, _picture.get(), neverWrong);
        planned.view.apply(*_camera, static_cast<float>(_picture->getWidth()) /
                                         static_cast<float>(_picture->getHeight()));
        for (const ovVeldris::Setting& setting : effect.getSettings())
            if (setting.kind == ovVeldris::SETTING_KIND::CAMERA)
                setting.set(effect, _camera.get());
    }

    UniquePtr<ovGraphics::Texture> _makeTexture(unsigned int width, unsigned int height) {
        auto texture = ovGraphics::Texture::create(&_session.getGraphics());
        texture->setName("picture");
        texture->setWidth(width);
        texture->setHeight(height);
        texture->setFormat(PICTURE_FORMAT);
        return texture;
    }

    Session& _session;
    UniquePtr<ovGraphics::Camera> _camera;
    UniquePtr<ovGraphics::Texture> _picture;
};

bool convert(EffectRunner& runner, const ContentConversion& conversion) {
    const UniquePtr<Image> picture = runner.download();
    return picture &&
           runner.upload(
               toFloats(picture->view(), encodingOf(conversion.from), encodingOf(conversion.to)).view());
}

/// All effects, made before anything is drawn.
Buffer<UniquePtr<ovVeldris::Effect>> makeEffects(Session& session, const ChainPlan& plan) {
    Buffer<UniquePtr<ovVeldris::Effect>> effects;
    for (const PlannedEffect& planned : plan.effects)
        effects.push_back(makeEffect(session, planned));
    return effects;
}

bool drawAll(EffectRunner& runner, const ChainPlan& plan, const Buffer<UniquePtr<ovVeldris::Effect>>& effects,
             ChainResult& result) {
    auto next = plan.conversions.begin();
    for (std::size_t i = 0; i <= effects.size(); ++i) {
        for (; next != plan.conversions.end() && next->beforeEffect == i; ++next) {
            if (!convert(runner, *next))
                return false;
        }
        if (i < effects.size() && !runner.draw(plan.effects[i], *effects[i], result))
            return false;
    }
    return true;
}

} // namespace

UniquePtr<ovVeldris::Effect> makeEffect(Session& session, const PlannedEffect& planned) {
    UniquePtr<ovVeldris::Effect> effect = planned.kind->create(&session.getSystem());
    effect->setName(planned.kind->getName());
    for (const ovVeldris::SettingAssignment& assignment : planned.settings)
        effect->getSettings().find(assignment.name)->set(*effect, assignment.value);
    return effect;
}

ChainResult runChain(Session& session, const ImageView& picture, const ChainPlan& plan) {
    ChainResult result;
    result.content = plan.content;
    const COLOUR_ENCODING encoding = encodingOf(plan.input);
    EffectRunner runner(session);
    if (!runner.upload(toFloats(picture, encoding, encoding).view()) ||
        !drawAll(runner, plan, makeEffects(session, plan), result)) {
        result.error = session.getLogger().take();
        return result;
    }
    result.image = runner.download();
    if (result.image)
        result.image->setEncoding(encodingOf(result.content));
    else
        result.error = session.getLogger().take();
    return result;
}

} // namespace veldris
