// Tells what the loader of models is at.
#pragma once

#include <ovGraphics/gltf/GltfScene.h>
#include <ovVeldris/content/ModelLoadProgress.h>

namespace ovVeldris::detail {

/// The steps of one loading. They may lie within each other: what ends gives way to what it interrupted.
class OV_API LoadSteps {
public:
    /// @param progress may be empty @param scene whose pictures are the whole work
    LoadSteps(ModelLoadProgress progress, const ovGraphics::GltfScene& scene);

    /// A step, from here to the end of this object.
    class Scope {
    public:
        Scope(LoadSteps& steps, MODEL_LOAD_STEP step)
            : _steps(steps)
            , _outer(steps._step) {
            _steps._begin(step);
        }
        ~Scope() { _steps._begin(_outer); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        LoadSteps& _steps;
        MODEL_LOAD_STEP _outer;
    };

    /// Counts bytes of a picture that was decoded for the first time.
    void addDecoded(std::size_t bytes) { _decodedBytes += bytes; }

private:
    void _begin(MODEL_LOAD_STEP step);

    ModelLoadProgress _progress;
    std::size_t _allBytes = 0;
    std::size_t _decodedBytes = 0;
    MODEL_LOAD_STEP _step = MODEL_LOAD_STEP::DECODING;
};

} // namespace ovVeldris::detail
