#include <ovVeldris/content/detail/LoadSteps.h>

#include <utility>

namespace ovVeldris::detail {

LoadSteps::LoadSteps(ModelLoadProgress progress, const ovGraphics::GltfScene& scene)
    : _progress(std::move(progress)) {
    for (const ovGraphics::GltfImage& image : scene.images)
        _allBytes += image.bytes.size();
}

void LoadSteps::_begin(MODEL_LOAD_STEP step) {
    _step = step;
    if (_progress)
        _progress(step,
                  _allBytes == 0 ? 0.0 : static_cast<double>(_decodedBytes) / static_cast<double>(_allBytes));
}

} // namespace ovVeldris::detail
