// The light of an environment between its texels.
#pragma once

#include <ovVeldris/environment/light/EnvironmentTexels.h>

namespace ovVeldris {

/// Interpolates between the four texels around a direction, wherever they lie.
class OV_API EnvironmentSampler {
public:
    using Color = std::array<float, 3>;

    /// @param environment kept by reference
    explicit EnvironmentSampler(const EnvironmentTexels& environment)
        : _environment(environment) {}

    /// @param direction of any length above 0
    Color sample(const Direction& direction) const;

private:
    /// A place between texels: a column and row, which may be one beyond the edges, and the way to the next
    /// ones.
    struct Place {
        int column;
        int row;
        float right;
        float down;
    };

    static Place _placeOf(float column, float row);
    const float* _getPanoramaTexel(int column, int row) const;
    const float* _getCubeTexel(unsigned int face, int column, int row) const;
    Color _samplePanorama(const Direction& direction) const;
    Color _sampleCube(const Direction& direction) const;

    const EnvironmentTexels& _environment;
};

} // namespace ovVeldris
