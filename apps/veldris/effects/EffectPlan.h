// A chain of effects, checked against the tables of the library: everything that can be told without a
// device.
#pragma once

#include <veldris/effects/ChainKinds.h>
#include <veldris/effects/ChainView.h>
#include <veldris/effects/ContentConversions.h>
#include <veldris/effects/EffectSpec.h>

namespace veldris {

/// One effect with values for its settings.
struct PlannedEffect {
    const ovVeldris::EffectKind* kind = nullptr;               ///< null for one of several passes
    const ovVeldris::ComplexEffectKind* complexKind = nullptr; ///< null for one of a single pass
    ovMemory::String text;                                     ///< as written, without needless spaces
    ovMemory::Buffer<ovVeldris::SettingAssignment> settings;
    ChainView view; ///< of an effect with a camera
    /// How an effect reads the scene; null for one that does not. Of the kind.
    const ovVeldris::SceneReading* reading = nullptr;
    bool focusesOnScene =
        false; ///< `focus=auto`: on the middle of the scene, which is known when it is drawn

    ovMemory::String getName() const { return kind ? kind->getName() : complexKind->getName(); }
};

/// Reads a list of effects, see parseEffectList(), and checks names and values.
/// @return false with one line in error; effects is then empty
bool planEffects(ovMemory::StringView text, ovMemory::Buffer<PlannedEffect>& effects,
                 ovMemory::String& error);

/// The settings that a list of effects may give a kind, with the defaults that they have there: all but
/// those that hold resources or come with the scene, which are bound, and those of the chain's view for a
/// kind whose camera is not the scene's. A kind with several ways to read a scene has `reads` in front.
ovVeldris::SettingTable settingsInChain(const ovVeldris::EffectKind& kind);
/// The same of a kind of several passes: all but what is bound and how a scene writes its depth.
ovVeldris::SettingTable settingsInChain(const ovVeldris::ComplexEffectKind& kind);

/// Whether a setting that may be written is the scene's own where it is not.
bool isOfScene(const ovVeldris::EffectKind& kind, const ovVeldris::Setting& setting);

/// Parts a list of effects where the picture of the scene is done: those that read the scene, and the rest.
/// @return false with one line in error when one that reads the scene stands behind another
bool takeSceneEffects(ovMemory::Buffer<PlannedEffect>& effects, ovMemory::Buffer<PlannedEffect>& ofScene,
                      ovMemory::String& error);

/// The tone mapping of whoever did not choose one.
constexpr ovMemory::StringView DEFAULT_TONE_MAPPING = "tone-mapping:operator=reinhard,max-white=6,6,6";

/// The list of effects that shows an example over a picture of scene light: a tone mapping stands before a
/// kind that takes the colours of a display.
ovMemory::String listOfExample(const ovVeldris::EffectKind& kind, const ovVeldris::EffectExample& example);

/// Where a picture comes from and goes to.
struct ChainOptions {
    PICTURE_CONTENT input = PICTURE_CONTENT::SCENE_LINEAR; ///< what the picture's numbers mean
    std::optional<PICTURE_CONTENT> output;                 ///< what the result's numbers must mean
    ovMemory::String outputName = "the output";            ///< what messages call the taker of the result
    bool raw = false;        ///< numbers in, numbers out: no conversions, no checks
    bool hasDepth = false;   ///< the picture is of a scene whose depth is known
    bool keepsAlpha = false; ///< something is laid behind the result: alpha must go through all effects
};

/// Effects with the conversions between them. A conversion at the end is not among them: whoever writes the
/// result does it, once and to the precision of the file.
struct ChainPlan {
    ovMemory::Buffer<PlannedEffect> effects;
    ovMemory::Buffer<ContentConversion> conversions;
    PICTURE_CONTENT content = PICTURE_CONTENT::SCENE_LINEAR; ///< of the result
    PICTURE_CONTENT output = PICTURE_CONTENT::SCENE_LINEAR;  ///< what it is written as
};

/// Finds the conversions that effects need.
/// @return false with one line in error when no conversion will do, or when one of them reads a scene
bool planChain(ovMemory::Buffer<PlannedEffect> effects, const ChainOptions& options, ChainPlan& plan,
               ovMemory::String& error);

} // namespace veldris
