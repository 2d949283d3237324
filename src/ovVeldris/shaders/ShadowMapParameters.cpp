#include <ovVeldris/shaders/ShadowMapParameters.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <ovGraphics/resources/ProgramSourcesHolder.h>
#include <ovVeldris/shaders/ShaderText.h>

namespace ovVeldris {

namespace {

ovMemory::StringView defineOf(SHADOW_MAP_PCF method) {
    switch (method) {
    case SHADOW_MAP_PCF::PCF_4_TAP:
        return "OV_SHADOW_MAP_METHOD_PCF_4_TAP";
    case SHADOW_MAP_PCF::PCF_9_TAP:
        return "OV_SHADOW_MAP_METHOD_PCF_9_TAP";
    case SHADOW_MAP_PCF::PCF_16_TAP:
        return "OV_SHADOW_MAP_METHOD_PCF_16_TAP";
    default:
        return {};
    }
}

/// A float literal of both shader languages that reads back as the same number, whatever the locale.
ovMemory::String toLiteral(float number) {
    std::array<char, 64> digits{}; // the smallest float has 47 characters
    const float finite = std::min(number, std::numeric_limits<float>::max());
    const auto result =
        std::to_chars(digits.data(), digits.data() + digits.size(), finite, std::chars_format::fixed);
    ovMemory::String text(digits.data(), result.ptr);
    if (text.find('.') == ovMemory::String::npos)
        text += ".0";
    return text;
}

} // namespace

void addShadowMapDefines(ovGraphics::ProgramSourcesHolder& sources, const ShadowMapParameters& parameters,
                         SHADOW_MAP_DEFINES form) {
    const bool isExact = form == SHADOW_MAP_DEFINES::EXACT;
    if (const ovMemory::StringView method = defineOf(parameters.pcfMethod); !method.empty())
        sources.addDefineMacroPixel(method, "");
    else if (!isExact)
        sources.addDefineMacroPixel("OV_SHADOW_MAP_METHOD_PCF_NONE", "");
    if (parameters.bias >= 0.0f)
        sources.addDefineMacroPixel("OV_SHADOW_MAP_METHOD_BIAS",
                                    isExact ? toLiteral(parameters.bias) : toSixDecimals(parameters.bias));
    if (parameters.debugOutOfBounds)
        sources.addDefineMacroPixel("OV_SHADOW_MAP_METHOD_DEBUG_OOB", "");
}

} // namespace ovVeldris
