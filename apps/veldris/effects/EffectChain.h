// Runs a chain of effects over a picture.
#pragma once

#include <ovGraphics/resources/Texture.h>
#include <ovImages/Image.h>
#include <veldris/effects/EffectPlan.h>

namespace veldris {

class Session;

/// One measured pass: the effect as written, or the conversion, and its milliseconds.
struct EffectTiming {
    ovMemory::String effect;
    double milliseconds = 0.0;
};

/// The picture at the end of a chain, or why there is none.
struct ChainResult {
    ovMemory::UniquePtr<ovImages::Image> image; ///< four floats a pixel; null on failure
    PICTURE_CONTENT content = PICTURE_CONTENT::SCENE_LINEAR;
    /// One for each effect and conversion, when the session measures.
    ovMemory::Buffer<EffectTiming> timings;
    ovMemory::String error;
    explicit operator bool() const { return image != nullptr; }
};

/// Draws the effects one after another, in float targets, with the conversions between them that they need.
/// The picture stays on the device from the first effect to the last, and is read back once.
/// @param picture of four floats; it goes when the first effect has read it
ChainResult runChain(Session& session, ovMemory::UniquePtr<ovGraphics::Texture> picture,
                     const ChainPlan& plan);
/// The same of a picture that is uploaded first.
ChainResult runChain(Session& session, const ovImages::ImageView& picture, const ChainPlan& plan);

/// An unloaded effect with the settings of a plan, named like its kind.
ovMemory::UniquePtr<ovVeldris::Effect> makeEffect(Session& session, const PlannedEffect& planned);

} // namespace veldris
