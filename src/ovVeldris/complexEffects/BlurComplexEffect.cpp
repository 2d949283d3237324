#include <ovVeldris/complexEffects/BlurComplexEffect.h>

#include <algorithm>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/resources/Viewport.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/complexEffects/BlurKernel.h>
#include <ovVeldris/complexEffects/detail/EffectTargets.h>
#include <ovVeldris/core/ConstantSlot.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/core/settings/SettingRows.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

constexpr ovMemory::StringView BLUR_CLASS_NAME = "BlurComplexEffect";

ovMemory::Buffer<ovGraphics::shading::Define> definesOf(const BlurComplexEffectInfo& info,
                                                        const BlurTaps& taps, const char* direction) {
    ovMemory::Buffer<ovGraphics::shading::Define> defines = {
        {direction, ""},
        {"SAMPLE_COUNT", std::to_string(taps.offsets.size())},
    };
    if (info.kernelRadius % 2 == 0)
        defines.push_back({"EVEN_RADIUS", ""});
    if (info.alphaEncodesBlurPlanes)
        defines.push_back({"ALPHA_PLANES", ""});
    if (info.preserveAlpha)
        defines.push_back({"PRESERVE_ALPHA", ""});
    return defines;
}

} // namespace

const SettingTable& BlurComplexEffect::settings() {
    using Class = BlurComplexEffect;
    using Rows = SettingRows<BlurComplexEffect>;
    constexpr SettingRange RADIUS = {.minimum = 0.0f, .maximum = float(MAX_BLUR_RADIUS)};
    const auto getRadius = [](const BlurComplexEffect& effect) {
        return static_cast<int>(effect.getKernelRadius());
    };
    const auto setRadius = [](BlurComplexEffect& effect, int radius) {
        effect.setKernelRadius(static_cast<unsigned int>(std::max(radius, 0)));
    };
    static const SettingTable TABLE = {
        Rows::texture("source-texture", &Class::getSourceTexture, &Class::setSourceTexture,
                      "the picture to blur"),
        Rows::integer("radius", getRadius, setRadius, 5, "how far colours spread to each side")
            .in(RADIUS, "pixels")
            .atLoad(),
        Rows::flag("alpha-planes", &Class::getAlphaEncodesBlurPlanes, &Class::setAlphaEncodesBlurPlanes,
                   false, "blur only among pixels of equal alpha")
            .atLoad(),
        Rows::flag("preserve-alpha", &Class::getPreserveAlpha, &Class::setPreserveAlpha, false,
                   "blur alpha too; otherwise it becomes 1")
            .atLoad(),
    };
    return TABLE;
}

uint64_t BlurIdGenerator::operator()(const BlurComplexEffectInfo& info) const {
    return uint64_t{info.kernelRadius} << 32 | uint64_t{info.preserveAlpha} << 1 |
           uint64_t{info.alphaEncodesBlurPlanes};
}

ovMemory::UniquePtr<BlurComplexEffect> BlurComplexEffect::create(System* system) {
    return std::make_unique<BlurComplexEffect>(system);
}

BlurComplexEffect::BlurComplexEffect(System* system)
    : MultiPassEffect(COMPLEX_EFFECT_TYPE::BLUR, system, BLUR_CLASS_NAME, settings()) {
    if (ovGraphics::System* graphics = _getGraphicsSystem())
        _createTargets(*graphics);
}

BlurComplexEffect::~BlurComplexEffect() {
    unload();
}

void BlurComplexEffect::setSourceTexture(ovGraphics::Texture* texture) {
    _currentInfo.sourceTexture = texture;
    if (!_horizontal.shader || _horizontal.shader->isUnloaded())
        return;
    _horizontal.shader->setTexture(texture, 0, 0);
    _writeTexelSize();
    _prepareTextures();
    _prepareViewport();
}

void BlurComplexEffect::setKernelRadius(unsigned int texels) {
    _currentInfo.kernelRadius = texels;
}

void BlurComplexEffect::setAlphaEncodesBlurPlanes(bool encodes) {
    _currentInfo.alphaEncodesBlurPlanes = encodes;
}

void BlurComplexEffect::setPreserveAlpha(bool preserve) {
    _currentInfo.preserveAlpha = preserve;
}

ovGraphics::Texture* BlurComplexEffect::getSourceTexture() const {
    return _currentInfo.sourceTexture.get();
}

bool BlurComplexEffect::_loadParts(ovGraphics::CompositorNode& node) {
    ovGraphics::System* graphics = _getGraphicsSystem();
    if (graphics)
        _createTargets(*graphics);
    if (!graphics || !_prepareTextures())
        return _fail("Could not load the blurring complex effect textures for '", UNUSABLE_ADVICE);
    _sampler = makeClampingSampler(*graphics, _nameWith("_SAMPLER"), ovGraphics::FILTER::MIN_MAG_MIP_LINEAR);
    if (!_sampler)
        return _fail("Could not load the blurring complex effect sampler for '", UNUSABLE_ADVICE);
    if (!_preparePrograms() || !_prepareShaders())
        return _fail("Could not load the blurring complex effect shaders for '", UNUSABLE_ADVICE);
    _viewport = makeViewport(*graphics, _nameWith("_VIEWPORT"));
    if (!_viewport)
        return _fail("Could not load the blurring complex effect viewport for '", UNUSABLE_ADVICE);
    _prepareViewport();
    for (const Pass* pass : {&_horizontal, &_vertical})
        _blocks.append(node, *pass->shader, *_viewport, {pass->target.get()});
    return true;
}

void BlurComplexEffect::_unloadParts() {
    for (Pass* pass : {&_horizontal, &_vertical}) {
        pass->shader.reset();
        if (pass->target)
            pass->target->unload();
    }
}

void BlurComplexEffect::_createTargets(ovGraphics::System& graphics) {
    createTarget(_horizontal.target, graphics, _nameWith("_TEX_1"));
    createTarget(_vertical.target, graphics, _nameWith("_TEX_2"));
}

bool BlurComplexEffect::_prepareTextures() {
    const TargetShape shape = shapeOf(getSourceTexture());
    return prepareTarget(*_horizontal.target, shape) && prepareTarget(*_vertical.target, shape);
}

bool BlurComplexEffect::_preparePrograms() {
    if (_loadedInfo.kernelRadius > MAX_BLUR_RADIUS) {
        logMessage(_getSystem(),
                   "The blurring complex effect '" + _nameWith("' has a radius of ") +
                       std::to_string(_loadedInfo.kernelRadius) + ", and kernels have numbers up to " +
                       std::to_string(MAX_BLUR_RADIUS) + "; set a smaller one.",
                   BLUR_CLASS_NAME);
        return false;
    }
    const ProgramPair& programs = _acquirePrograms();
    if (!programs.first)
        return false;
    const BlurTaps taps = mergeBlurTaps(computeBlurWeights(_loadedInfo.kernelRadius));
    const ovMemory::String text = assembleShaderText({
        {"blur kernel", describeBlurTaps(taps)},
        {"BlurComplexEffect.pixel.ovsl", embedded::BlurComplexEffect_pixel},
    });
    return _prepareProgram(*programs.first, text, definesOf(_loadedInfo, taps, "HORIZONTAL")) &&
           _prepareProgram(*programs.second, text, definesOf(_loadedInfo, taps, "VERTICAL"));
}

bool BlurComplexEffect::_prepareShaders() {
    const ProgramPair& programs = _getPrograms();
    _horizontal.shader = _makeShader("_H", *programs.first);
    _horizontal.shader->setTexture(getSourceTexture(), 0, 0);
    _vertical.shader = _makeShader("_V", *programs.second);
    _vertical.shader->setTexture(_horizontal.target.get(), 0, 0);
    _writeTexelSize();
    for (const Pass* pass : {&_horizontal, &_vertical}) {
        pass->shader->setSampler(_sampler.get(), 0, 0);
        if (!pass->shader->load())
            return false;
    }
    return true;
}

void BlurComplexEffect::_prepareViewport() {
    const TargetShape shape = shapeOf(getSourceTexture());
    _viewport->setOrigin(0, 0);
    _viewport->setSize(shape.width, shape.height);
}

void BlurComplexEffect::_writeTexelSize() {
    for (const Pass* pass : {&_horizontal, &_vertical}) {
        ovGraphics::ShaderPassMemorySlot& slot = constantSlot(*pass->shader, 0);
        if (const ovGraphics::Texture* source = getSourceTexture())
            slot.setFromVector({1.0f / static_cast<float>(source->getWidth()),
                                1.0f / static_cast<float>(source->getHeight())});
    }
}

} // namespace ovVeldris
