// A small model on disk for tests of commands.
#pragma once

#include <fstream>
#include <ovImages/CompositeEncoder.h>
#include <support/TemporaryFolder.h>

/// Writes a square of side 2 that faces the viewer, with a picture of four colours, as quad.gltf with its
/// buffer and its picture beside it. @param material members added to the material's object
/// @return the path of the .gltf file
inline ovMemory::String writeQuad(const TemporaryFolder& folder, const ovMemory::String& material = "") {
    // Positions, normals, texture coordinates; front faces run counter-clockwise in files.
    const float vertices[4][8] = {{-1, 1, 0, 0, 0, 1, 0, 0},
                                  {-1, -1, 0, 0, 0, 1, 0, 1},
                                  {1, -1, 0, 0, 0, 1, 1, 1},
                                  {1, 1, 0, 0, 0, 1, 1, 0}};
    const unsigned short indices[6] = {0, 1, 2, 0, 2, 3};
    std::ofstream buffer(folder.getPath("quad.bin"), std::ios::binary);
    buffer.write(reinterpret_cast<const char*>(vertices), sizeof(vertices));
    buffer.write(reinterpret_cast<const char*>(indices), sizeof(indices));
    buffer.close();

    ovImages::Image picture(2, 2, 3, ovImages::COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::SRGB);
    for (unsigned int i = 0; i < 4; ++i) { // red, green; blue, white
        for (unsigned int channel = 0; channel < 3; ++channel)
            picture.setComponent(i % 2, i / 2, channel, i == 3 || i == channel ? 1.0f : 0.0f);
    }
    ovImages::CompositeEncoder().encodeFile(folder.getPath("quad.png"), picture.view());

    std::ofstream(folder.getPath("quad.gltf")) << R"({
"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}], "nodes": [{"mesh": 0}],
"meshes": [{"primitives": [{"attributes": {"POSITION": 0, "NORMAL": 1, "TEXCOORD_0": 2}, "indices": 3, "material": 0}]}],
"materials": [{"name": "paint", "pbrMetallicRoughness": {"baseColorTexture": {"index": 0}, "metallicFactor": 0})"
                                               << material << R"(}],
"textures": [{"source": 0, "sampler": 0}], "images": [{"uri": "quad.png"}],
"samplers": [{"magFilter": 9728, "minFilter": 9728}],
"buffers": [{"uri": "quad.bin", "byteLength": 140}],
"bufferViews": [{"buffer": 0, "byteLength": 128, "byteStride": 32}, {"buffer": 0, "byteOffset": 128, "byteLength": 12}],
"accessors": [{"bufferView": 0, "componentType": 5126, "count": 4, "type": "VEC3", "min": [-1, -1, 0], "max": [1, 1, 0]},
 {"bufferView": 0, "byteOffset": 12, "componentType": 5126, "count": 4, "type": "VEC3"},
 {"bufferView": 0, "byteOffset": 24, "componentType": 5126, "count": 4, "type": "VEC2"},
 {"bufferView": 1, "componentType": 5123, "count": 6, "type": "SCALAR"}]
})";
    return folder.getPath("quad.gltf");
}
