// The demo's pictures that compare settings of one effect.
#pragma once

#include <functional>
#include <ovImages/Image.h>
#include <veldris/effects/EffectChain.h>

namespace veldris {

/// One picture, as it is shown.
struct EffectPicture {
    ovMemory::StringView name;    ///< of its file, without extension
    ovMemory::StringView caption; ///< what is to be seen
    ovImages::Image image;
    ovMemory::Buffer<EffectTiming> timings = {};
};

/// @return false with one line in error to stop
using TakeEffectPicture = std::function<bool(EffectPicture& picture, ovMemory::String& error)>;

/// Draws every picture that compares settings of an effect, one after another, and hands each on.
/// @param scene of scene light; the pictures have its size
/// @param only the name of the only picture to draw; empty: all
/// @param take stops by returning false, with one line in error @return false with one line in error
bool drawEffectPictures(Session& session, const ovImages::ImageView& scene, ovMemory::StringView only,
                        const TakeEffectPicture& take, ovMemory::String& error);

/// The names of those pictures.
ovMemory::Buffer<ovMemory::StringView> effectPictureNames();

} // namespace veldris
