#include <ovGraphics/resources/Viewport.h>

namespace ovGraphics {

ovMemory::UniquePtr<Viewport> Viewport::create(System* system) {
    return std::make_unique<Viewport>(system);
}

Viewport::Viewport(System* system)
    : Resource(system, "viewport") {}

void Viewport::setOrigin(int x, int y) {
    _x = x;
    _y = y;
}

void Viewport::setSize(unsigned int width, unsigned int height) {
    _width = width;
    _height = height;
}

void Viewport::reset() {
    setOrigin(0, 0);
    setSize(1, 1);
    Resource::reset();
}

} // namespace ovGraphics
