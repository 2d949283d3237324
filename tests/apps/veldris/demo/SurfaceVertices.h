// Reads the meshes of computed surfaces.
#pragma once

#include <cstring>
#include <ovGraphics/scene/Mesh.h>
#include <ovMaths/Vector.h>

/// Position, normal and texture coordinates of every vertex, three vectors each.
inline ovMemory::Buffer<ovMaths::Vector> surfaceVertices(const ovGraphics::Mesh& mesh) {
    constexpr std::size_t FLOATS = 8;
    const ovMemory::Buffer<unsigned char>& bytes = mesh.getCurrentVertexArray();
    ovMemory::Buffer<ovMaths::Vector> vectors;
    for (std::size_t at = 0; at + FLOATS * sizeof(float) <= bytes.size(); at += FLOATS * sizeof(float)) {
        float numbers[FLOATS];
        std::memcpy(numbers, bytes.data() + at, sizeof(numbers));
        vectors.push_back({numbers[0], numbers[1], numbers[2]});
        vectors.push_back({numbers[3], numbers[4], numbers[5]});
        vectors.push_back({numbers[6], numbers[7], 0.0f});
    }
    return vectors;
}
