// The part of a target that is drawn to.
#pragma once

#include <ovGraphics/resources/Resource.h>

namespace ovGraphics {

/// A rectangle of a target in texels; the origin is the top left. New: origin 0, size 1 x 1.
class OV_API Viewport : public Resource {
public:
    /// A new viewport; a null system means the singleton.
    static ovMemory::UniquePtr<Viewport> create(System* system);
    explicit Viewport(System* system);

    int getX() const { return _x; }
    int getY() const { return _y; }
    unsigned int getWidth() const { return _width; }
    unsigned int getHeight() const { return _height; }

    void setOrigin(int x, int y);
    void setSize(unsigned int width, unsigned int height);

    void reset() override;

private:
    int _x = 0;
    int _y = 0;
    unsigned int _width = 1;
    unsigned int _height = 1;
};

} // namespace ovGraphics
