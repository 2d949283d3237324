#include <ovVeldris/content/StandInPicture.h>

namespace ovVeldris {

ovImages::Image makeStandInPicture(ovImages::COLOR_ENCODING encoding) {
    constexpr unsigned int SIDE = 8;
    ovImages::Image image(SIDE, SIDE, 4, ovImages::COMPONENT_TYPE::UINT8, encoding);
    for (unsigned int y = 0; y < SIDE; ++y) {
        for (unsigned int x = 0; x < SIDE; ++x) {
            const float magenta = (x + y) % 2 == 0 ? 1.0f : 0.0f;
            image.setComponent(x, y, 0, magenta);
            image.setComponent(x, y, 2, magenta);
            image.setComponent(x, y, 3, 1.0f);
        }
    }
    return image;
}

} // namespace ovVeldris
