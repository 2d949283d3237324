// Base colours and metalness turned into diffuse colours and reflectances.
#pragma once

#include <ovCommon/Api.h>
#include <ovImages/Image.h>
#include <ovMaths/Vector.h>

namespace ovVeldris::detail {

/// The part of a base colour that is scattered, of one channel: base (1 - m) (glTF 2.0, appendix B.3.5).
constexpr float diffuseOf(float base, float metalness) {
    return base * (1.0f - metalness);
}

/// What a surface reflects at normal incidence, of one channel: 0.04 (1 - m) + base m (the same).
constexpr float reflectanceOf(float base, float metalness) {
    constexpr float DIELECTRIC = 0.04f;
    return DIELECTRIC * (1.0f - metalness) + base * metalness;
}

/// The pictures of a material, with its factors.
struct MetalSurface {
    ovImages::ImageView base;    ///< base colour and alpha, in the encoding that it tells
    ovImages::ImageView surface; ///< metalness in blue, or in grey; of linear numbers
    ovMaths::Vector baseColor;   ///< factor of the base colour
    float metallic = 1.0f;       ///< factor of the metalness
};

/// Pictures of 8 bits and four channels, sRGB-encoded, as large as the larger side of both that are given;
/// the other is stretched. Diffuse colours keep the alpha of the base picture, without its factor, for
/// blended and masked surfaces read it from there. @return the empty picture when memory does not suffice
OV_API ovImages::Image makeDiffuse(const MetalSurface& source);
/// The same of reflectances; alpha is 1.
OV_API ovImages::Image makeReflectance(const MetalSurface& source);

} // namespace ovVeldris::detail
