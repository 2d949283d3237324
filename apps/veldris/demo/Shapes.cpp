#include <veldris/demo/Shapes.h>

#include <cmath>
#include <numbers>
#include <ovGraphics/scene/Mesh.h>

namespace veldris {

using ovGraphics::Mesh;
using ovMaths::Vector;

namespace {

/// A grid of vertices by texture coordinates, as a mesh.
class Surface {
public:
    /// Adds a vertex; its binormal looks where v falls, so upwards in the picture.
    void add(const Vector& position, const Vector& normal, float u, float v, const Vector& tangent,
             const Vector& binormal) {
        for (const Vector& value : {position, normal, Vector(u, v), tangent, binormal})
            _values.push_back(value);
    }

    /// Adds the triangles between rows of vertices. Rows go down the picture, columns to its right.
    ovMemory::UniquePtr<Mesh> make(ovGraphics::System& graphics, ovMemory::StringView name,
                                   unsigned int columns, unsigned int rows) {
        ovGraphics::VertexComposition composition;
        composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
        composition.addAttribute("NORMAL", ovGraphics::FORMAT::R32G32B32_FLOAT);
        composition.addAttribute("TEXCOORD", ovGraphics::FORMAT::R32G32_FLOAT);
        composition.addAttribute("TANGENT", ovGraphics::FORMAT::R32G32B32_FLOAT);
        composition.addAttribute("BINORMAL", ovGraphics::FORMAT::R32G32B32_FLOAT);
        auto mesh = Mesh::create(&graphics);
        mesh->setName(name);
        mesh->setVertexComposition(composition);
        mesh->fillPackedFromUnpacked(_values);
        mesh->setNewIndexArray(_indices(columns, rows));
        return mesh->load() ? std::move(mesh) : nullptr;
    }

private:
    static ovMemory::Buffer<uint32_t> _indices(unsigned int columns, unsigned int rows) {
        ovMemory::Buffer<uint32_t> indices;
        for (unsigned int row = 0; row + 1 < rows; ++row) {
            for (unsigned int column = 0; column + 1 < columns; ++column) {
                const uint32_t topLeft = row * columns + column;
                const uint32_t bottomLeft = topLeft + columns;
                for (const uint32_t index : {topLeft, topLeft + 1, bottomLeft + 1, // clockwise
                                             topLeft, bottomLeft + 1, bottomLeft})
                    indices.push_back(index);
            }
        }
        return indices;
    }

    ovMemory::Buffer<Vector> _values;
};

} // namespace

ovMemory::UniquePtr<Mesh> makeSphere(ovGraphics::System& graphics) {
    constexpr unsigned int COLUMNS = 97;
    constexpr unsigned int ROWS = 49;
    constexpr float PI = std::numbers::pi_v<float>;
    Surface surface;
    for (unsigned int row = 0; row < ROWS; ++row) {
        const float v = static_cast<float>(row) / (ROWS - 1);
        const float latitude = PI * (0.5f - v);
        for (unsigned int column = 0; column < COLUMNS; ++column) {
            const float u = static_cast<float>(column) / (COLUMNS - 1);
            // Seen from outside with +y up, growing longitudes run to the right: through -z from -x to +x.
            const float longitude = 2.0f * PI * u - PI;
            const Vector tangent(std::cos(longitude), 0.0f, std::sin(longitude));
            const Vector normal(std::sin(longitude) * std::cos(latitude), std::sin(latitude),
                                -std::cos(longitude) * std::cos(latitude));
            const Vector binormal(-std::sin(longitude) * std::sin(latitude), std::cos(latitude),
                                  std::cos(longitude) * std::sin(latitude));
            surface.add(normal, normal, u, v, tangent, binormal);
        }
    }
    return surface.make(graphics, "sphere", COLUMNS, ROWS);
}

ovMemory::UniquePtr<Mesh> makeGround(ovGraphics::System& graphics, float repeats) {
    Surface surface;
    for (const float z : {1.0f, -1.0f}) { // the top of the picture lies far away
        for (const float x : {-1.0f, 1.0f})
            surface.add({x, 0.0f, z}, {0.0f, 1.0f, 0.0f}, 0.5f * (x + 1.0f) * repeats,
                        0.5f * (1.0f - z) * repeats, {1.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 1.0f});
    }
    return surface.make(graphics, "ground", 2, 2);
}

} // namespace veldris
