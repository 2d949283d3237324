#include <ovVeldris/effects/atmosphere/AtmosphereLuts.h>

#include <ovGraphics/System.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Program.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovVeldris/EmbeddedShaders.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/core/OneShotFrame.h>
#include <ovVeldris/effects/atmosphere/AtmosphereConstants.h>

namespace ovVeldris {

namespace {

constexpr unsigned int LUT_CONSTANTS = 3;
constexpr unsigned int LUTS_SUN_TABLE_UNIT = 0;
constexpr ovMemory::StringView LUTS_CLASS_NAME = "AtmosphereEffect";

const ovMaths::Vector SELECT_NOTHING;
const ovMaths::Vector SELECT_SUN_TRANSMITTANCE{1.0f, 0.0f, 0.0f, 0.0f};
const ovMaths::Vector SELECT_MULTI_SCATTERING{0.0f, 1.0f, 0.0f, 0.0f};

} // namespace

AtmosphereLuts::AtmosphereLuts(System* system, ovMemory::StringView ownerName)
    : ScreenEffect(EFFECT_TYPE::ATMOSPHERE, system, "atmosphere LUT complex", LUTS_CLASS_NAME)
    , _ownerName(ownerName) {
    prepareTextures();
}

AtmosphereLuts::~AtmosphereLuts() = default;

void AtmosphereLuts::setInfo(const AtmosphereEffectInfo& info, ovGraphics::Sampler* sampler) {
    _currentInfo = info;
    _sampler = sampler;
}

bool AtmosphereLuts::prepareTextures() {
    ovGraphics::System* graphics = _getGraphicsSystem();
    if (!graphics)
        return false;
    const auto prepare = [&](ovMemory::UniquePtr<ovGraphics::Texture>& table, ovMemory::StringView suffix) {
        if (table && table->getSystem() == graphics)
            return;
        table = ovGraphics::Texture::create(graphics);
        table->setName(_ownerName + ovMemory::String(suffix));
    };
    prepare(_sunTransmittance, "_SUN_LUT");
    prepare(_multiScattering, "_MULTI_LUT");
    return true;
}

void AtmosphereLuts::refresh() {
    ovGraphics::Shader* shader = _getLoadedShader();
    if (!shader)
        return;
    writeAirConstants(*shader, _currentInfo);
    // Of the two passes the first draws what the second reads.
    shader->setTexture(nullptr, LUTS_SUN_TABLE_UNIT, 0);
    _generate(*_sunTransmittance, _currentInfo.sunTransmittanceLutWidth,
              _currentInfo.sunTransmittanceLutHeight, SELECT_SUN_TRANSMITTANCE);
    shader->setTexture(_sunTransmittance.get(), LUTS_SUN_TABLE_UNIT, 0);
    _generate(*_multiScattering, _currentInfo.multiScatteringLutWidth, _currentInfo.multiScatteringLutHeight,
              SELECT_MULTI_SCATTERING);
}

bool AtmosphereLuts::_generate(ovGraphics::Texture& table, unsigned int width, unsigned int height,
                               const ovMaths::Vector& selector) {
    if (!_shapeTable(table, width, height)) {
        logMessage(_getSystem(), "Error while creating an atmosphere LUT texture. Aborting generation.",
                   LUTS_CLASS_NAME);
        return false;
    }
    ovGraphics::Shader& shader = *_getLoadedShader();
    constantSlot(shader, 0, LUT_CONSTANTS).setFromVector(selector);
    const auto compositor = ovGraphics::Compositor::create(_getGraphicsSystem());
    compositor->setName("OV_ATMOSPHERE_LUT_GENERATOR");
    ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, &table);
    block->appendPostProcessPass()->setShader(&shader);
    const bool isDrawn = drawOneShotFrame(*compositor, table);
    constantSlot(shader, 0, LUT_CONSTANTS).setFromVector(SELECT_NOTHING);
    return isDrawn;
}

bool AtmosphereLuts::_shapeTable(ovGraphics::Texture& table, unsigned int width, unsigned int height) const {
    using ovGraphics::FORMAT;
    const FORMAT format =
        _currentInfo.useHalfFloatForLuts ? FORMAT::R16G16B16A16_FLOAT : FORMAT::R32G32B32A32_FLOAT;
    const bool fits = !table.isUnloaded() && table.getWidth() == width && table.getHeight() == height &&
                      table.getFormat() == format;
    if (fits)
        return true;
    table.unload();
    table.setWidth(width);
    table.setHeight(height);
    table.setUsableAsRenderTarget(true);
    table.setMightManuallyGenerateMip(false);
    table.setFormat(format);
    table.setGammaCorrected(false);
    table.setMipCount(1);
    return table.load();
}

void AtmosphereLuts::_fillSources(ovGraphics::ProgramSourcesHolder& sources) const {
    static const ovMemory::String pixelText =
        assembleAtmosphereText("AtmosphereLuts.pixel.ovsl", embedded::AtmosphereLuts_pixel);
    sources.setVertexMemory(atmosphereVertexText());
    sources.setPixelMemory(pixelText);
    const std::pair<ovMemory::StringView, unsigned int> counts[] = {
        {"SUN_TRANSMITTANCE_SAMPLE_COUNT", _loadedInfo.sunLutSampleCount},
        {"MULTI_SCATTERING_SPHERE_SAMPLE_COUNT", _loadedInfo.multiScatteringLutSphereSampleCount},
        {"MULTI_SCATTERING_MARCH_SAMPLE_COUNT", _loadedInfo.multiScatteringLutMarchSampleCount},
    };
    for (const auto& [define, count] : counts)
        sources.addDefineMacroPixel(define, toUnsignedLiteral(count));
}

void AtmosphereLuts::_bindResources(ovGraphics::Shader& shader) {
    shader.setName(ovMemory::String(getName()) + "_LUT");
    shader.setHidden(true);
    shader.getProgram()->setHidden(true);
    writeCornerConstants(shader);
    writePixelConstants(shader, _loadedInfo, _loadedInfo.usesShadows());
    writeAirConstants(shader, _loadedInfo);
    constantSlot(shader, 0, LUT_CONSTANTS).setFromVector(SELECT_NOTHING);
    shader.setSampler(_sampler.get(), LUTS_SUN_TABLE_UNIT, 0);
}

} // namespace ovVeldris
