#include <veldris/effects/ChainView.h>

#include <numbers>
#include <ovGraphics/resources/Camera.h>
#include <ovVeldris/core/settings/SettingRows.h>

namespace veldris {

const ovVeldris::SettingTable& ChainView::settings() {
    using Rows = ovVeldris::SettingRows<ChainView>;
    static const ovVeldris::SettingTable TABLE = {
        Rows::vector("direction", 3, &ChainView::getDirection, &ChainView::setDirection, {0.0f, 0.0f, 1.0f},
                     "looked along; the middle of a panorama is 1,0,0"),
        Rows::number("field-of-view", &ChainView::getFieldOfView, &ChainView::setFieldOfView, 60.0f,
                     "vertical angle of the view")
            .in({.minimum = 1.0f, .maximum = 179.0f}, "degrees"),
    };
    return TABLE;
}

ChainView::ChainView()
    : Configurable(settings()) {}

ovMemory::String ChainView::check() const {
    const bool hasDirection = _direction.getNormalizedVec3().getLengthVec3() > 0.0f;
    return hasDirection ? "" : "'direction' has no direction; give one such as 0,0,1.";
}

void ChainView::apply(ovGraphics::Camera& camera, float aspect) const {
    camera.lookAt(_direction, {});
    camera.setPerspective(_fieldOfView * std::numbers::pi_v<float> / 180.0f, aspect, camera.getNear(),
                          camera.getFar());
}

} // namespace veldris
