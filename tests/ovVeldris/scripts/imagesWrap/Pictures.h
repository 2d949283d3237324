// Encoded pictures for scripts.
#pragma once

#include "../support/Cases.h"

#include <ovImages/JpgEncoder.h>
#include <ovImages/PngEncoder.h>

namespace luaTest {

/// A picture whose pixels all differ a little.
inline ovImages::Image makeRamp(unsigned int width, unsigned int height, ovImages::COMPONENT_TYPE type) {
    ovImages::Image image(width, height, 3, type, ovImages::COLOR_ENCODING::SRGB);
    for (unsigned int y = 0; y < height; ++y)
        for (unsigned int x = 0; x < width; ++x)
            for (unsigned int channel = 0; channel < 3; ++channel)
                image.setComponent(x, y, channel, static_cast<float>(x + y + channel) / 64.0f);
    return image;
}

/// An environment whose globals "jpg" and "png" are files of a ramp of 24 x 16 pixels, and "deep" one of 16
/// bits.
class PictureEnvironment {
public:
    PictureEnvironment() {
        _engine.initialize();
        const ovImages::Image ramp = makeRamp(24, 16, ovImages::COMPONENT_TYPE::UINT8);
        const ovImages::Image deep = makeRamp(24, 16, ovImages::COMPONENT_TYPE::UINT16);
        _set("jpg", ovImages::JpgEncoder().encode(ramp.view()).bytes);
        _set("png", ovImages::PngEncoder().encode(ramp.view()).bytes);
        _set("deep", ovImages::PngEncoder().encode(deep.view()).bytes);
    }

    ovScripts::Environment& get() { return *_engine.getEnvironment(); }

private:
    void _set(const char* name, const ovMemory::Buffer<unsigned char>& bytes) {
        get().setGlobal("bytes", ovMemory::String(bytes.begin(), bytes.end()));
        evaluate(get(), ovMemory::String(name) + " = ovMemory.Buffer.fromString(bytes)");
    }

    ovVeldris::ScriptsEngine _engine{nullptr};
};

} // namespace luaTest
