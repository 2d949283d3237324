// Means over a part of a picture.
#pragma once

#include <ovImages/Image.h>

/// The mean of one channel in a rectangle.
inline double meanIn(const ovImages::Image& picture, unsigned int left, unsigned int top, unsigned int width,
                     unsigned int height, unsigned int channel) {
    double sum = 0.0;
    for (unsigned int y = top; y < top + height; ++y)
        for (unsigned int x = left; x < left + width; ++x)
            sum += double(picture.getComponent(x, y, channel));
    return sum / (width * height);
}
