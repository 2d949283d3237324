// The camera of effects that look into the picture of a chain.
#pragma once

#include <ovVeldris/core/settings/Configurable.h>

namespace veldris {

/// Where effects with a camera look when only a picture is there: beside the settings of such an effect, a
/// chain takes these.
class ChainView : public ovVeldris::Configurable {
public:
    ChainView();

    static const ovVeldris::SettingTable& settings();

    /// Looked along, of any length. Default (0, 0, 1).
    void setDirection(const ovMaths::Vector& direction) { _direction = direction; }
    const ovMaths::Vector& getDirection() const { return _direction; }
    /// Vertical angle in degrees, 1 to 179. Default 60.
    void setFieldOfView(float degrees) { _fieldOfView = degrees; }
    float getFieldOfView() const { return _fieldOfView; }

    /// What is wrong with the settings together, in one line; empty when nothing is.
    ovMemory::String check() const;

    /// Points a camera. @param aspect width over height of the picture
    void apply(ovGraphics::Camera& camera, float aspect) const;

private:
    ovMaths::Vector _direction{0.0f, 0.0f, 1.0f};
    float _fieldOfView = 60.0f;
};

} // namespace veldris
