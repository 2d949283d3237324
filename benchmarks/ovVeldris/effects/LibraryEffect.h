// One effect of the library, drawn by a compositor as an application would.
#pragma once

#include <cstdint>
#include <functional>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/Image.h>
#include <ovVeldris/System.h>
#include <ovVeldris/effects/Effect.h>
#include <vector>

namespace ovBenchmarks {

constexpr float EFFECT_SECONDS = 1.5f; // the time at which effects that change with it are drawn

/// Half floats, four a texel.
using HalfTexels = std::vector<std::uint16_t>;

/// An unloaded effect over a source.
using MakeEffect =
    std::function<ovMemory::UniquePtr<ovVeldris::Effect>(ovVeldris::System&, ovGraphics::Texture*)>;

class LibraryEffect {
public:
    /// @param width, height of the target of half floats
    bool open(int width, int height);
    /// The source of load(), of the target's size and format.
    bool setSource(const HalfTexels& texels);
    bool load(const MakeEffect& make);

    /// A texture of the target's size that the effect may read too, until the end of this object; null when
    /// it cannot be made. @param texels tightly packed
    ovGraphics::Texture* addTexture(ovGraphics::FORMAT format, const void* texels, std::size_t size);

    ovVeldris::System& system() { return _system; }
    ovGraphics::System& graphics();
    /// The camera that renders.
    ovGraphics::Camera& camera() { return *_camera; }
    ovVeldris::Effect& effect() { return *_effect; }
    void draw();
    ovMemory::UniquePtr<ovImages::Image> read() { return _target->convertToImage(); }

private:
    ovMemory::UniquePtr<ovGraphics::Texture> _makeTexture(ovGraphics::FORMAT format);

    ovVeldris::System _system;
    int _width = 0;
    int _height = 0;
    std::vector<ovMemory::UniquePtr<ovGraphics::Texture>> _sources;
    ovMemory::UniquePtr<ovGraphics::Texture> _target;
    ovMemory::UniquePtr<ovGraphics::Camera> _camera;
    ovMemory::UniquePtr<ovVeldris::Effect> _effect;
    ovMemory::UniquePtr<ovGraphics::Compositor> _compositor;
    ovMemory::UniquePtr<ovGraphics::RenderContext> _context;
};

} // namespace ovBenchmarks
