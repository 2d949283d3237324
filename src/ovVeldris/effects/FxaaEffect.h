// The effect that smooths the stairs of edges in a finished picture.
#pragma once

#include <ovMemory/Enumeration.h>
#include <ovVeldris/core/ProgramTracker.h>
#include <ovVeldris/effects/ScreenEffect.h>

namespace ovVeldris {

/// How far an FxaaEffect searches along an edge, and with what steps: the presets of FXAA 3.11, by whose
/// numbers the values are named. Presets of the tens have the most dithering and cost least, those of the
/// twenties have less, 39 has none. Every value beyond these draws as QUALITY_39.
enum class FXAA_PRESET : unsigned int {
    QUALITY_10 = 0,
    QUALITY_11 = 1,
    QUALITY_12 = 2,
    QUALITY_13 = 3,
    QUALITY_14 = 4,
    QUALITY_15 = 5,
    QUALITY_20 = 6,
    QUALITY_21 = 7,
    QUALITY_22 = 8,
    QUALITY_23 = 9,
    QUALITY_24 = 10,
    QUALITY_25 = 11,
    QUALITY_26 = 12,
    QUALITY_27 = 13,
    QUALITY_28 = 14,
    QUALITY_29 = 15,
    QUALITY_39 = 16
};

/// The texts are the numbers, as the shader and users know them.
inline constexpr ovMemory::EnumEntry<FXAA_PRESET> FXAA_PRESET_ENTRIES[] = {
    {FXAA_PRESET::QUALITY_10, "10"}, {FXAA_PRESET::QUALITY_11, "11"}, {FXAA_PRESET::QUALITY_12, "12"},
    {FXAA_PRESET::QUALITY_13, "13"}, {FXAA_PRESET::QUALITY_14, "14"}, {FXAA_PRESET::QUALITY_15, "15"},
    {FXAA_PRESET::QUALITY_20, "20"}, {FXAA_PRESET::QUALITY_21, "21"}, {FXAA_PRESET::QUALITY_22, "22"},
    {FXAA_PRESET::QUALITY_23, "23"}, {FXAA_PRESET::QUALITY_24, "24"}, {FXAA_PRESET::QUALITY_25, "25"},
    {FXAA_PRESET::QUALITY_26, "26"}, {FXAA_PRESET::QUALITY_27, "27"}, {FXAA_PRESET::QUALITY_28, "28"},
    {FXAA_PRESET::QUALITY_29, "29"}, {FXAA_PRESET::QUALITY_39, "39"},
};
constexpr ovMemory::EnumTable<FXAA_PRESET> enumTable(FXAA_PRESET) {
    return {"FXAA_PRESET", FXAA_PRESET_ENTRIES};
}

/// Settings of an FxaaEffect. The two thresholds are in the units of the shader.
struct FxaaEffectInfo {
    ovMemory::Borrowed<ovGraphics::Texture> sourceTexture; ///< becomes null when it is destroyed
    float minContrast = 0.25f;
    float minLuminance = 0.0625f;
    float smoothingStrength = 0.75f;
    FXAA_PRESET preset = FXAA_PRESET::QUALITY_12;
    bool luminanceAsGreenChannelOnly = false;
};

/// The preset's value. Where the luminance comes from is left out on purpose: effects of one preset share the
/// program of the one that was loaded first.
struct FxaaIdGenerator {
    uint64_t operator()(const FxaaEffectInfo& info) const { return static_cast<uint64_t>(info.preset); }
};

struct FxaaNameGenerator {
    ovMemory::StringView operator()() const { return "ORVANE_FXAA_PROGRAM_"; }
};

class OV_API FxaaProgramTracker : public ProgramTracker<FxaaEffectInfo, FxaaIdGenerator, FxaaNameGenerator> {
public:
    using ProgramTracker::ProgramTracker;
};

/// Smooths the stairs of edges by FXAA 3.11, quality version (Timothy Lottes, 2011). It takes display colours
/// that are encoded as sRGB, since it judges contrast as eyes do, and gives the same. Pixels without an edge
/// keep their bits, alpha is smoothed as the colours are. Beyond its edges the picture counts as black.
///
/// Numbers and source reach a loaded effect at once; the preset and where the luminance comes from wait for
/// the next load().
class OV_API FxaaEffect final : public ScreenEffect<FxaaEffectInfo, FxaaProgramTracker> {
public:
    /// A new, unloaded effect. @param system not owned; null means the System singleton, created when missing
    static ovMemory::UniquePtr<FxaaEffect> create(System* system);
    explicit FxaaEffect(System* system);
    ~FxaaEffect() override;

    /// The settings of every FXAA effect.
    static const SettingTable& settings();

    /// The texture to smooth, not owned; null (the default) reads as opaque black. Reaches a loaded effect at
    /// once, whatever its size is.
    void setSourceTexture(ovGraphics::Texture* texture);

    /// The contrast that makes an edge, as a share of the brightest neighbour: 0 finds the most edges, 1 the
    /// fewest. Clamped to 0 to 1; NaN counts as 0. Stored as contrast * 0.35 + 0.05. Default: stored 0.25.
    void setMinContrast(float contrast);
    /// The contrast that an edge in the dark must have: 0 finds the most edges, 1 the fewest. Clamped to 0
    /// to 1; NaN counts as 0. Stored as luminance * 0.06 + 0.03. Default: stored 0.0625.
    void setMinLuminance(float luminance);
    /// How much single pixels and thin lines are smoothed, 0 (not at all, sharpest) to 1. Clamped; NaN counts
    /// as 0. Default 0.75.
    void setSmoothingStrength(float strength);

    /// How edges are searched. Waits for load(). Default QUALITY_12.
    void setPreset(FXAA_PRESET preset);
    /// Take green for the luminance, which is a little faster, or weigh the three colours (false, the
    /// default). Waits for load(). Effects of one preset share a program: while one of them is loaded, the
    /// others draw with its choice.
    void setLuminanceAsGreenChannelOnly(bool greenOnly);

    ovGraphics::Texture* getSourceTexture() const;
    /// What was set, up to the rounding of the stored number; a new effect has (0.25 - 0.05) / 0.35.
    float getMinContrast() const;
    /// What was set, up to the rounding of the stored number; a new effect has (0.0625 - 0.03) / 0.06.
    float getMinLuminance() const;
    float getSmoothingStrength() const { return _currentInfo.smoothingStrength; }
    /// As it was set, also beyond QUALITY_39.
    FXAA_PRESET getPreset() const { return _currentInfo.preset; }
    bool getLuminanceAsGreenChannelOnly() const { return _currentInfo.luminanceAsGreenChannelOnly; }

private:
    void _fillSources(ovGraphics::ProgramSourcesHolder& sources) const override;
    void _bindResources(ovGraphics::Shader& shader) override;
    void _writeNumbers(ovGraphics::Shader& shader) const;
    void _writeNumbersIfLoaded() const;
};

} // namespace ovVeldris
