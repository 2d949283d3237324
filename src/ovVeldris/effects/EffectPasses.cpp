#include <ovVeldris/effects/EffectPasses.h>

#include <algorithm>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/resources/RenderTarget.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/effects/ContentConversions.h>
#include <ovVeldris/effects/EffectKind.h>
#include <ovVeldris/effects/SrgbConversion.h>

namespace ovVeldris {

using ovGraphics::Texture;
using ovMemory::String;

namespace {

constexpr auto BETWEEN_FORMAT = ovGraphics::FORMAT::R32G32B32A32_FLOAT;

String nameOf(const Texture& texture) {
    return "the texture '" + String(texture.getName()) + "'";
}

String nameOf(const Effect& effect) {
    return "the effect '" + String(effect.getName()) + "'";
}

/// Why an effect cannot stand in a list; empty when it can.
String findProblem(const Effect& effect) {
    const EffectKind* kind = findEffectKind(effect.getType());
    if (!kind)
        return nameOf(effect) + " is of no kind that reads pictures.";
    ovGraphics::BlendState ignored;
    if (kind->pictureSetting.empty() && !(kind->prepareBlending && kind->prepareBlending(effect, ignored)))
        return nameOf(effect) + " reads no picture; draw its shader in a pass of its own.";
    return {};
}

String findProblem(const Texture& source, ovMemory::BufferView<Effect* const> effects,
                   const Texture& target) {
    if (effects.empty())
        return "the list of effects is empty.";
    if (&source == &target)
        return nameOf(source) + " is picture and target at once; draw into another one.";
    for (const Texture* texture : {&source, &target})
        if (texture->isUnloaded())
            return nameOf(*texture) + " is not loaded; load it before.";
    for (std::size_t i = 0; i < effects.size(); ++i) {
        if (String problem = findProblem(*effects[i]); !problem.empty())
            return problem;
        // It has one picture to read.
        if (std::find(effects.begin(), effects.begin() + i, effects[i]) != effects.begin() + i)
            return nameOf(*effects[i]) + " stands twice in the list; make a second one.";
    }
    return {};
}

/// What the picture is, which nobody says: scene light where an effect asks for that before another kind of
/// colours was asked for.
PICTURE_CONTENT contentOfSource(const ovMemory::Buffer<EffectContent>& effects) {
    const auto first = std::find_if(effects.begin(), effects.end(),
                                    [](const EffectContent& effect) { return effect.takes.has_value(); });
    const bool isScene = first != effects.end() && *first->takes == PICTURE_CONTENT::SCENE_LINEAR;
    return isScene ? PICTURE_CONTENT::SCENE_LINEAR : PICTURE_CONTENT::DISPLAY_LINEAR;
}

} // namespace

/// What is drawn into one texture: a conversion, or an effect and what lies below it.
struct EffectPasses::Step {
    Effect* effect = nullptr; ///< null: a conversion
    bool encodes = false;     ///< of a conversion
    ovMemory::UniquePtr<SrgbConversion> conversion;
    ovMemory::UniquePtr<Effect> below; ///< copies the picture that the effect is drawn over
    ovGraphics::BlendState blending;
};

EffectPasses::EffectPasses(System* system)
    : _system(system) {}

EffectPasses::~EffectPasses() = default;

ovMemory::Result EffectPasses::append(ovGraphics::CompositorNode& node, Texture& source,
                                      ovMemory::BufferView<Effect* const> effects, Texture& target,
                                      ovGraphics::Camera* camera) {
    if (String problem = findProblem(source, effects, target); !problem.empty())
        return ovMemory::failed(problem);
    if (ovMemory::Result planned = _plan(effects); !planned)
        return planned;
    if (!_steps.front()->effect &&
        (source.getWidth() != target.getWidth() || source.getHeight() != target.getHeight()))
        return ovMemory::failed(nameOf(*effects.front()) +
                                " needs picture and target of one size; make them so.");
    if (ovMemory::Result made = _makeTextures(target); !made)
        return made;
    const auto pictureOf = [&](std::size_t step) -> Texture& {
        return step == 0 ? source : *_between[(step - 1) % 2];
    };
    for (std::size_t i = 0; i < _steps.size(); ++i)
        if (!_load(*_steps[i], pictureOf(i)))
            return ovMemory::failed(
                (_steps[i]->effect ? nameOf(*_steps[i]->effect) : "a conversion of colours") +
                " cannot be loaded; the log says why.");
    for (std::size_t i = 0; i < _steps.size(); ++i) {
        ovGraphics::CompositorOperationsBlock* block = node.appendOperationsBlock();
        block->setTarget(0, i + 1 == _steps.size() ? &target : _between[i % 2].get());
        _appendPasses(*block, *_steps[i], camera);
    }
    return {};
}

ovMemory::Result EffectPasses::_plan(ovMemory::BufferView<Effect* const> effects) {
    ovMemory::Buffer<EffectContent> contents;
    for (const Effect* effect : effects) {
        const EffectKind* kind = findEffectKind(effect->getType());
        contents.push_back({String(effect->getName()), kind->takes, kind->gives});
    }
    ovMemory::Buffer<ContentConversion> conversions;
    PICTURE_CONTENT content{};
    if (const auto mismatch = planConversions(contentOfSource(contents), contents, std::nullopt, "the target",
                                              conversions, content))
        return ovMemory::failed(mismatch->text + "; change their order.");
    if (content == PICTURE_CONTENT::SRGB_ENCODED) // the target holds light
        conversions.push_back({effects.size(), content, PICTURE_CONTENT::DISPLAY_LINEAR});
    auto next = conversions.begin();
    for (std::size_t i = 0; i <= effects.size(); ++i) {
        for (; next != conversions.end() && next->beforeEffect == i; ++next) {
            _steps.push_back(std::make_unique<Step>());
            _steps.back()->encodes = next->to == PICTURE_CONTENT::SRGB_ENCODED;
        }
        if (i == effects.size())
            break;
        _steps.push_back(std::make_unique<Step>());
        _steps.back()->effect = effects[i];
    }
    return {};
}

ovMemory::Result EffectPasses::_makeTextures(const Texture& target) {
    ovGraphics::System* graphics = graphicsSystemOf(_system.get());
    if (!graphics)
        return ovMemory::failed("the system is gone or was shut down; initialise one before.");
    for (std::size_t i = 0; i < std::min<std::size_t>(_steps.size() - 1, 2); ++i) {
        _between[i] = Texture::create(graphics);
        _between[i]->setName("between effects");
        _between[i]->setHidden(true);
        if (!ovGraphics::loadAsRenderTarget(*_between[i], target.getWidth(), target.getHeight(),
                                            BETWEEN_FORMAT))
            return ovMemory::failed(
                "there is no texture for what lies between the effects; the log says why.");
    }
    return {};
}

bool EffectPasses::_load(Step& step, Texture& picture) const {
    return step.effect ? _loadEffect(step, picture) : _loadConversion(step, picture);
}

bool EffectPasses::_loadConversion(Step& step, Texture& picture) const {
    ovGraphics::System& graphics = *graphicsSystemOf(_system.get());
    step.conversion = step.encodes ? SrgbConversion::encode(graphics) : SrgbConversion::decode(graphics);
    if (step.conversion)
        step.conversion->setSource(picture);
    return step.conversion != nullptr;
}

bool EffectPasses::_loadEffect(Step& step, Texture& picture) const {
    const EffectKind& kind = *findEffectKind(step.effect->getType());
    if (!kind.pictureSetting.empty())
        step.effect->setSetting(kind.pictureSetting, &picture);
    if (!step.effect->load())
        return false;
    if (!kind.prepareBlending || !kind.prepareBlending(*step.effect, step.blending))
        return true;
    // A picture keeps its alpha, as where the effect reads the picture.
    step.blending.setWriteMask(ovGraphics::COLOR_WRITE_ALL & ~ovGraphics::COLOR_WRITE_ALPHA, 0);
    const EffectKind& copy = *findEffectKind(EFFECT_TYPE::TEXTURE_COPY);
    step.below = copy.create(_system.get());
    step.below->setName("below " + String(step.effect->getName()));
    step.below->setSetting(copy.pictureSetting, &picture);
    return step.below->load();
}

void EffectPasses::_appendPasses(ovGraphics::CompositorOperationsBlock& block, const Step& step,
                                 ovGraphics::Camera* camera) {
    if (step.below)
        block.appendPostProcessPass()->setShader(step.below->getShader());
    ovGraphics::PostProcessPass* pass = block.appendPostProcessPass();
    pass->setShader(step.effect ? step.effect->getShader() : step.conversion->getShader());
    pass->setCamera(camera);
    pass->getBlendState() = step.blending;
}

} // namespace ovVeldris
