// What the tests of glTF share.
#pragma once

#include <cstring>
#include <gtest/gtest.h>
#include <ovGraphics/gltf/GltfBuilder.h>
#include <ovGraphics/gltf/GltfEncoder.h>
#include <string>
#include <string_view>
#include <vector>

/// Warnings of a file.
using Strings = ovMemory::Buffer<ovMemory::String>;

inline ovGraphics::GltfDecodeResult decodeGltf(const GltfBytes& bytes,
                                               const ovGraphics::GltfDecodeOptions& options = {}) {
    return ovGraphics::GltfEncoder().decode(bytes, options);
}

/// Decodes what must be whole; an empty scene after a failure.
inline ovGraphics::GltfScene decodeWhole(const GltfBuilder& file,
                                         const ovGraphics::GltfDecodeOptions& options = {}) {
    ovGraphics::GltfDecodeResult result = decodeGltf(file.toBinary(), options);
    EXPECT_TRUE(result) << result.error;
    return result ? std::move(*result.scene) : ovGraphics::GltfScene();
}

/// The error of a file that must have one.
inline std::string errorOf(const GltfBuilder& file, const ovGraphics::GltfDecodeOptions& options = {}) {
    const ovGraphics::GltfDecodeResult result = decodeGltf(file.toBinary(), options);
    EXPECT_FALSE(result);
    return result.error;
}

/// The values of an attribute; none if there is no such.
inline std::vector<ovMaths::Vector> valuesOf(const ovGraphics::GltfPrimitive& primitive,
                                             std::string_view name) {
    const ovGraphics::VertexAttribute* attribute = primitive.composition.find(name);
    std::vector<ovMaths::Vector> values;
    for (std::size_t i = 0; attribute && i < primitive.vertexCount; ++i) {
        float numbers[3] = {};
        const std::size_t count = attribute->format == ovGraphics::FORMAT::R32G32_FLOAT ? 2 : 3;
        std::memcpy(numbers,
                    primitive.vertices.data() + i * primitive.composition.getStride() + attribute->offset,
                    count * sizeof(float));
        values.emplace_back(numbers[0], numbers[1], numbers[2]);
    }
    return values;
}

/// The values of an attribute, one for each corner drawn.
inline std::vector<ovMaths::Vector> cornersOf(const ovGraphics::GltfPrimitive& primitive,
                                              std::string_view name) {
    const std::vector<ovMaths::Vector> values = valuesOf(primitive, name);
    std::vector<ovMaths::Vector> corners;
    for (const std::uint32_t index : primitive.indices)
        corners.push_back(values.at(index));
    return primitive.indices.empty() ? values : corners;
}
