#include <veldris/effects/EffectChain.h>

#include <fmt/format.h>
#include <ovGraphics/Managers.h>
#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Conversion.h>
#include <ovVeldris/System.h>
#include <ovVeldris/effects/EffectManager.h>
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
        : _session(session) {}

    bool upload(const ImageView& picture) {
        _picture = _makeTexture(picture.width, picture.height);
        _picture->setCpuData(0, 0, picture.bytes);
        return _picture->load();
    }

    bool draw(const EffectSpec& spec, ovVeldris::Effect& effect, ChainResult& result) {
        UniquePtr<ovGraphics::Texture> target = _makeTexture(_picture->getWidth(), _picture->getHeight());
        target->setUsableAsRenderTarget(true);
        _setSource(spec, effect);
        if (!target->load() || !effect.load())
            return false;

        ovGraphics::System& graphics = _session.getGraphics();
        const auto compositor = ovGraphics::Compositor::create(&graphics);
        ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
        block->setTarget(0, target.get());
        ovGraphics::PostProcessPass* pass = block->appendPostProcessPass();
        pass->setShader(effect.getShader());
        pass->setName(toText(spec));

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
    /// The settings were checked when the effect was made.
    void _setSource(const EffectSpec& spec, ovVeldris::Effect& effect) {
        String ignored;
        const EffectDescription* description = findEffect(spec.name, ignored);
        SettingValues values;
        SettingValues::parse(spec, description->settings, values, ignored);
        description->setSource(effect, _picture.get(), values);
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
    UniquePtr<ovGraphics::Texture> _picture;
};

bool convert(EffectRunner& runner, const ContentConversion& conversion) {
    const UniquePtr<Image> picture = runner.download();
    return picture &&
           runner.upload(
               toFloats(picture->view(), encodingOf(conversion.from), encodingOf(conversion.to)).view());
}

/// Checks names and values of the effects and finds the conversions between them.
bool plan(const Buffer<EffectSpec>& effects, const ChainOptions& options,
          Buffer<ContentConversion>& conversions, PICTURE_CONTENT& content, String& error) {
    Buffer<EffectContent> contents;
    for (const EffectSpec& spec : effects) {
        const EffectDescription* description = findEffect(spec.name, error);
        SettingValues values;
        if (!description || !SettingValues::parse(spec, description->settings, values, error))
            return false;
        contents.push_back({spec.name, description->takes, description->gives});
    }
    content = options.input;
    return options.raw || planConversions(options.input, contents, options.output, options.outputName,
                                          conversions, content, error);
}

/// All effects, made before anything is drawn, so that a wrong value costs no time.
Buffer<UniquePtr<ovVeldris::Effect>> makeEffects(Session& session, const Buffer<EffectSpec>& specs,
                                                 String& error) {
    Buffer<UniquePtr<ovVeldris::Effect>> effects;
    for (const EffectSpec& spec : specs) {
        effects.push_back(makeEffect(session, spec, error));
        if (!effects.back())
            return {};
    }
    return effects;
}

bool drawAll(EffectRunner& runner, const Buffer<EffectSpec>& specs,
             const Buffer<UniquePtr<ovVeldris::Effect>>& effects,
             const Buffer<ContentConversion>& conversions, ChainResult& result) {
    auto next = conversions.begin();
    for (std::size_t i = 0; i <= specs.size(); ++i) {
        for (; next != conversions.end() && next->beforeEffect == i; ++next) {
            if (!convert(runner, *next))
                return false;
        }
        if (i < specs.size() && !runner.draw(specs[i], *effects[i], result))
            return false;
    }
    return true;
}

} // namespace

UniquePtr<ovVeldris::Effect> makeEffect(Session& session, const EffectSpec& spec, String& error) {
    const EffectDescription* description = findEffect(spec.name, error);
    SettingValues values;
    if (!description || !SettingValues::parse(spec, description->settings, values, error))
        return nullptr;
    ovVeldris::EffectManager& manager = *session.getSystem().getEffectManager();
    constexpr ovMemory::StringView TEMPORARY_NAME = "veldris command line";
    manager.createOrRetrieve(TEMPORARY_NAME, description->type);
    UniquePtr<ovVeldris::Effect> effect = manager.relinquish(TEMPORARY_NAME);
    effect->setName(spec.name);
    const String complaint = description->apply(*effect, values);
    if (complaint.empty())
        return effect;
    error = fmt::format("effect '{}': {}", spec.name, complaint);
    return nullptr;
}

bool checkChain(const Buffer<EffectSpec>& effects, const ChainOptions& options, String& error) {
    Buffer<ContentConversion> conversions;
    PICTURE_CONTENT content;
    return plan(effects, options, conversions, content, error);
}

ChainResult runChain(Session& session, const ImageView& picture, const Buffer<EffectSpec>& effects,
                     const ChainOptions& options) {
    ChainResult result;
    Buffer<ContentConversion> conversions;
    if (!plan(effects, options, conversions, result.content, result.error))
        return result;
    const auto made = makeEffects(session, effects, result.error);
    if (!result.error.empty())
        return result;

    const COLOUR_ENCODING encoding = encodingOf(options.input);
    EffectRunner runner(session);
    if (!runner.upload(toFloats(picture, encoding, encoding).view()) ||
        !drawAll(runner, effects, made, conversions, result)) {
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
