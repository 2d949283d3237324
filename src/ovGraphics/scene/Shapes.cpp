#include <ovGraphics/scene/Shapes.h>

#include <cmath>
#include <numbers>
#include <ovGraphics/scene/Mesh.h>

namespace ovGraphics {

using ovMaths::Vector;

namespace {

constexpr float PI = std::numbers::pi_v<float>;

/// Grids of vertices by texture coordinates, as a mesh.
class ShapeBuilder {
public:
    /// Adds a vertex; its binormal looks where v falls, so upwards in the picture.
    void add(const Vector& position, const Vector& normal, float u, float v, const Vector& tangent,
             const Vector& binormal) {
        for (const Vector& value : {position, normal, Vector(u, v), tangent, binormal})
            _values.push_back(value);
    }

    /// Adds the triangles between the last rows of vertices. Rows go down the picture, columns to its right.
    void joinGrid(uint32_t columns, uint32_t rows) {
        const auto first = static_cast<uint32_t>(_values.size() / VALUES_OF_VERTEX) - columns * rows;
        for (uint32_t row = 0; row + 1 < rows; ++row) {
            for (uint32_t column = 0; column + 1 < columns; ++column) {
                const uint32_t topLeft = first + row * columns + column;
                const uint32_t bottomLeft = topLeft + columns;
                for (const uint32_t index : {topLeft, topLeft + 1, bottomLeft + 1, // clockwise
                                             topLeft, bottomLeft + 1, bottomLeft})
                    _indices.push_back(index);
            }
        }
    }

    ovMemory::UniquePtr<Mesh> make(System& graphics, ovMemory::StringView name) {
        VertexComposition composition;
        composition.addAttribute("POSITION", FORMAT::R32G32B32_FLOAT);
        composition.addAttribute("NORMAL", FORMAT::R32G32B32_FLOAT);
        composition.addAttribute("TEXCOORD", FORMAT::R32G32_FLOAT);
        composition.addAttribute("TANGENT", FORMAT::R32G32B32_FLOAT);
        composition.addAttribute("BINORMAL", FORMAT::R32G32B32_FLOAT);
        auto mesh = Mesh::create(&graphics);
        mesh->setName(name);
        mesh->setVertexComposition(composition);
        mesh->fillPackedFromUnpacked(_values);
        mesh->setNewIndexArray(_indices);
        return mesh->load() ? std::move(mesh) : nullptr;
    }

private:
    static constexpr std::size_t VALUES_OF_VERTEX = 5;

    ovMemory::Buffer<Vector> _values;
    ovMemory::Buffer<uint32_t> _indices;
};

/// Where a longitude looks, and to its right. Seen from outside with +y up, growing longitudes run to the
/// right: through -z from -x to +x.
Vector outwards(float longitude) {
    return {std::sin(longitude), 0.0f, -std::cos(longitude)};
}
Vector rightwards(float longitude) {
    return {std::cos(longitude), 0.0f, std::sin(longitude)};
}

/// A surface of revolution around the y axis. @param angleOf from v to the angle of the normal above the
/// horizon
/// @param ring radius of the circle that the middle of the turned circle runs on @param radius of that circle
template <typename AngleOf>
ovMemory::UniquePtr<Mesh> makeTurned(System& graphics, ovMemory::StringView name, float ring, float radius,
                                     AngleOf angleOf) {
    constexpr uint32_t COLUMNS = 97;
    constexpr uint32_t ROWS = 49;
    const Vector up(0.0f, 1.0f, 0.0f);
    ShapeBuilder shape;
    for (uint32_t row = 0; row < ROWS; ++row) {
        const float v = static_cast<float>(row) / (ROWS - 1);
        const float angle = angleOf(v);
        for (uint32_t column = 0; column < COLUMNS; ++column) {
            const float u = static_cast<float>(column) / (COLUMNS - 1);
            const float longitude = 2.0f * PI * u - PI;
            const Vector out = outwards(longitude);
            const Vector normal = out * std::cos(angle) + up * std::sin(angle);
            const Vector binormal = up * std::cos(angle) - out * std::sin(angle);
            shape.add(out * ring + normal * radius, normal, u, v, rightwards(longitude), binormal);
        }
    }
    shape.joinGrid(COLUMNS, ROWS);
    return shape.make(graphics, name);
}

/// Adds a square of side 2 whose middle is a place. @param up in the picture
void addSquare(ShapeBuilder& shape, const Vector& middle, const Vector& normal, const Vector& up,
               float repeats) {
    const Vector right = Vector::crossVec3(normal, up);
    for (const float y : {1.0f, -1.0f}) {
        for (const float x : {-1.0f, 1.0f})
            shape.add(middle + right * x + up * y, normal, 0.5f * (x + 1.0f) * repeats,
                      0.5f * (1.0f - y) * repeats, right, up);
    }
    shape.joinGrid(2, 2);
}

} // namespace

ovMemory::UniquePtr<Mesh> makeSphere(System& graphics) {
    return makeTurned(graphics, "sphere", 0.0f, 1.0f, [](float v) { return PI * (0.5f - v); });
}

ovMemory::UniquePtr<Mesh> makeBox(System& graphics) {
    struct Side {
        Vector normal, up;
    };
    const Side sides[] = {{{1, 0, 0}, {0, 1, 0}},   {{-1, 0, 0}, {0, 1, 0}}, {{0, 1, 0}, {0, 0, 1}},
                          {{0, -1, 0}, {0, 0, -1}}, {{0, 0, 1}, {0, 1, 0}},  {{0, 0, -1}, {0, 1, 0}}};
    ShapeBuilder shape;
    for (const Side& side : sides)
        addSquare(shape, side.normal, side.normal, side.up, 1.0f);
    return shape.make(graphics, "box");
}

ovMemory::UniquePtr<Mesh> makePlane(System& graphics, float repeats) {
    ShapeBuilder shape;
    addSquare(shape, {}, {0.0f, 1.0f, 0.0f}, {0.0f, 0.0f, 1.0f}, repeats);
    return shape.make(graphics, "plane");
}

ovMemory::UniquePtr<Mesh> makeTorus(System& graphics, float thickness) {
    return makeTurned(graphics, "torus", 1.0f, thickness, [](float v) { return PI * (1.0f - 2.0f * v); });
}

} // namespace ovGraphics
