// Runs a chain of effects over a picture.
#pragma once

#include <ovImages/Image.h>
#include <veldris/effects/EffectCatalog.h>

namespace veldris {

class Session;

/// How to run a chain.
struct ChainOptions {
    PICTURE_CONTENT input = PICTURE_CONTENT::SCENE_LINEAR; ///< what the picture's numbers mean
    std::optional<PICTURE_CONTENT> output;                 ///< what the result's numbers must mean
    ovMemory::String outputName = "the output";            ///< what messages call the taker of the result
    bool raw = false; ///< numbers in, numbers out: no conversions, no checks
};

/// One measured pass: the effect as written, and its milliseconds.
struct EffectTiming {
    ovMemory::String effect;
    double milliseconds = 0.0;
};

/// The picture at the end of a chain, or why there is none.
struct ChainResult {
    ovMemory::UniquePtr<ovImages::Image> image; ///< four floats a pixel; null on failure
    PICTURE_CONTENT content = PICTURE_CONTENT::SCENE_LINEAR;
    ovMemory::Buffer<EffectTiming> timings; ///< one for each effect, when the session measures
    ovMemory::String error;
    explicit operator bool() const { return image != nullptr; }
};

/// Whether a chain can be run, as far as that can be told without a device: names, values of settings, and
/// what the effects hand on. @return false with one line in error
bool checkChain(const ovMemory::Buffer<EffectSpec>& effects, const ChainOptions& options,
                ovMemory::String& error);

/// Draws the effects one after another, in float targets, with the conversions between them that they need.
ChainResult runChain(Session& session, const ovImages::ImageView& picture,
                     const ovMemory::Buffer<EffectSpec>& effects, const ChainOptions& options);

/// An unloaded effect with the settings of a spec. @return null with one line in error
ovMemory::UniquePtr<ovVeldris::Effect> makeEffect(Session& session, const EffectSpec& spec,
                                                  ovMemory::String& error);

} // namespace veldris
