// The effect that brings scene light into the range of a display.
#pragma once

#include <ovMaths/Matrix.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Enumeration.h>
#include <ovVeldris/core/ProgramTracker.h>
#include <ovVeldris/effects/ScreenEffect.h>
#include <ovVeldris/effects/ToneMappingHablesCurve.h>

namespace ovVeldris {

/// The curve of a ToneMappingEffect.
enum class TONE_MAPPING_OPERATOR : unsigned int { REINHARD = 0, HABLES = 1, ACES = 2 };

inline constexpr ovMemory::EnumEntry<TONE_MAPPING_OPERATOR> TONE_MAPPING_OPERATOR_ENTRIES[] = {
    {TONE_MAPPING_OPERATOR::REINHARD, "REINHARD"},
    {TONE_MAPPING_OPERATOR::HABLES, "HABLES"},
    {TONE_MAPPING_OPERATOR::ACES, "ACES"},
};
constexpr ovMemory::EnumTable<TONE_MAPPING_OPERATOR> enumTable(TONE_MAPPING_OPERATOR) {
    return {"TONE_MAPPING_OPERATOR", TONE_MAPPING_OPERATOR_ENTRIES};
}

/// Settings of a ToneMappingEffect that select its shader, and its source. One operator is used at a time.
struct ToneMappingEffectInfo {
    ovMemory::Borrowed<ovGraphics::Texture> sourceTexture; ///< becomes null when it is destroyed
    bool useLuminance = true;
    bool reinhardUsed = true;
    bool hablesUsed = false;
    bool acesUsed = false;
};

/// 1 for Reinhard, 2 for Hables, 4 for ACES, plus 8 on luminance.
struct ToneMappingIdGenerator {
    uint64_t operator()(const ToneMappingEffectInfo& info) const {
        return (info.reinhardUsed ? 1u : 0u) | (info.hablesUsed ? 2u : 0u) | (info.acesUsed ? 4u : 0u) |
               (info.useLuminance ? 8u : 0u);
    }
};

struct ToneMappingNameGenerator {
    ovMemory::StringView operator()() const { return "ORVANE_TONE_PROGRAM_"; }
};

class OV_API ToneMappingProgramTracker
    : public ProgramTracker<ToneMappingEffectInfo, ToneMappingIdGenerator, ToneMappingNameGenerator> {
public:
    using ProgramTracker::ProgramTracker;
};

/// Maps a texture of scene-linear light without an upper limit to display-linear colour, meant for 0 to 1.
/// Alpha passes through. New: Reinhard on luminance with a white of (2, 2, 2).
///
/// The numbers of the operator in use reach a loaded effect at once; another operator, or the luminance
/// switch, waits for the next load().
class OV_API ToneMappingEffect final : public ScreenEffect<ToneMappingEffectInfo, ToneMappingProgramTracker> {
public:
    /// A new, unloaded effect. @param system not owned; null means the System singleton, created when missing
    static ovMemory::UniquePtr<ToneMappingEffect> create(System* system);
    explicit ToneMappingEffect(System* system);
    ~ToneMappingEffect() override;

    /// The settings of every tone mapping effect.
    static const SettingTable& settings();

    /// The texture to map, not owned; null (the default) reads as opaque black. Reaches a loaded effect at
    /// once.
    void setSourceTexture(ovGraphics::Texture* texture);

    /// Map the luminance and keep the hue (true, the default), or each channel by itself. Waits for load().
    /// ACES works on all three channels together and draws the same with both.
    void setUseLuminance(bool use);

    /// Extended Reinhard: white and brighter become 1 and more. Reinhard et al. 2002, equation 4.
    /// @param maxWhite the smallest colour that becomes 1: scene-linear red, green, blue above 0; w is
    ///        ignored. On luminance only its luminance counts. Default (2, 2, 2).
    void setAsReinhard(const ovMaths::Vector& maxWhite);

    /// A filmic curve with toe and shoulder. Its useful ranges are with the descriptor's fields. Black stays
    /// black.
    void setAsHables(const ToneMappingHablesCurveDescriptor& curve);

    /// A fit of the ACES rendering and sRGB output transforms, without any clamp.
    /// @param lookTransform applied to the ACEScg colour as a column vector before the curve; its upper left
    ///        3 x 3 counts. Default: the identity.
    void setAsAces(const ovMaths::Matrix& lookTransform);

    /// Chooses an operator with the numbers that it was given last. Waits for load().
    void setOperator(TONE_MAPPING_OPERATOR chosen);
    // The numbers of one operator, whichever is chosen; see above. They reach an effect that is loaded with
    // it at once.
    void setReinhardMaxWhite(const ovMaths::Vector& maxWhite);
    void setHablesDescriptor(const ToneMappingHablesCurveDescriptor& curve);
    void setAcesLookTransform(const ovMaths::Matrix& lookTransform);

    ovGraphics::Texture* getSourceTexture() const;
    bool getUseLuminance() const { return _currentInfo.useLuminance; }
    TONE_MAPPING_OPERATOR getOperator() const;
    bool getReinhardUsed() const { return _currentInfo.reinhardUsed; }
    bool getHablesUsed() const { return _currentInfo.hablesUsed; }
    bool getAcesUsed() const { return _currentInfo.acesUsed; }
    const ovMaths::Vector& getReinhardMaxWhite() const { return _reinhardMaxWhite; }
    const ToneMappingHablesCurveDescriptor& getHablesDescriptor() const { return _hablesDescriptor; }
    const ovMaths::Matrix& getAcesLookTransform() const { return _acesLookTransform; }

private:
    void _fillSources(ovGraphics::ProgramSourcesHolder& sources) const override;
    void _bindResources(ovGraphics::Shader& shader) override;
    void _writeConstantsIfLoaded(TONE_MAPPING_OPERATOR changed) const;
    void _writeConstants(ovGraphics::Shader& shader, TONE_MAPPING_OPERATOR used) const;

    ovMaths::Vector _reinhardMaxWhite{2.0f, 2.0f, 2.0f};
    ToneMappingHablesCurveDescriptor _hablesDescriptor;
    ovMaths::Matrix _acesLookTransform;
};

} // namespace ovVeldris
