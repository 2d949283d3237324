// Runs a chain of effects over a picture.
#pragma once

#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Image.h>
#include <veldris/ImageFiles.h>
#include <veldris/effects/EffectPlan.h>

namespace veldris {

class Session;

/// The scene that a picture shows, for effects that read its depth. Borrowed.
struct PictureScene {
    ovGraphics::Texture* depth = nullptr; ///< of each pixel, as the camera writes it
    ovGraphics::Camera* camera = nullptr;
    float middle = 0.0f; ///< how far away the middle of the scene is, along the view
};

/// One measured pass: the effect as written, or the conversion, and its milliseconds.
struct EffectTiming {
    ovMemory::String effect;
    double milliseconds = 0.0;
};

/// The picture at the end of a chain, or why there is none.
struct ChainResult {
    /// Four channels of floats, or in the form that was asked for; then without an alpha that is 1
    /// everywhere. Null on failure.
    ovMemory::UniquePtr<ovImages::Image> image;
    ovMemory::String warning; ///< what that form could not hold
    PICTURE_CONTENT content = PICTURE_CONTENT::SCENE_LINEAR;
    /// One for each effect and conversion, when the session measures.
    ovMemory::Buffer<EffectTiming> timings;
    ovMemory::String error;
    explicit operator bool() const { return image != nullptr; }
};

/// Draws the effects one after another, in float targets, with the conversions between them that they need.
/// The picture stays on the device from the first effect to the last, and is read back once.
/// @param picture of four floats; it goes when the first effect has read it
/// @param scene that it shows, of a plan with effects that read one
ChainResult runChain(Session& session, ovMemory::UniquePtr<ovGraphics::Texture> picture,
                     const ChainPlan& plan, const PictureScene& scene = {});
/// The same of a picture that is uploaded first.
ChainResult runChain(Session& session, const ovImages::ImageView& picture, const ChainPlan& plan);

/// The same for a file of a form, of pictures of any size: the last effect is drawn in strips, and each is
/// converted when it was read back, so that floats of the whole picture are never in memory. Effects read the
/// whole picture, and draw what lies in the strip. @param picture goes when it is on the device
/// @param raw numbers are stored as they are, without encoding them
ChainResult runChainForFile(Session& session, ovImages::Image picture, const ChainPlan& plan,
                            const ovImages::FileForm& form, bool raw);

/// An unloaded effect of a single pass with the settings of a plan, named like its kind.
ovMemory::UniquePtr<ovVeldris::Effect> makeEffect(Session& session, const PlannedEffect& planned);

} // namespace veldris
