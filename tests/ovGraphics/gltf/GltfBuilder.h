// Small glTF files made in code, for tests and as seeds of the fuzzer.
#pragma once

#include <cstdint>
#include <cstring>
#include <ovImages/PngEncoder.h>
#include <string>
#include <string_view>
#include <vector>

/// Component types of accessors.
enum COMPONENT : unsigned int {
    INT8 = 5120,
    UINT8 = 5121,
    INT16 = 5122,
    UINT16 = 5123,
    UINT32 = 5125,
    FLOAT32 = 5126
};

using GltfBytes = std::vector<unsigned char>;

/// A file in the making: bytes of one buffer, with a view and an accessor for each array.
class GltfBuilder {
public:
    /// JSON of the members beside asset, buffers, bufferViews and accessors: "\"nodes\": [...], ...".
    std::string members;
    std::string asset = R"({"version": "2.0"})";

    /// Adds bytes as a view. @return its index
    unsigned int addView(const GltfBytes& bytes, const std::string& extra = "") {
        while (_bytes.size() % 4 != 0)
            _bytes.push_back(0);
        append(_views, R"({"buffer": 0, "byteOffset": )" + std::to_string(_bytes.size()) +
                           R"(, "byteLength": )" + std::to_string(bytes.size()) + extra + "}");
        _bytes.insert(_bytes.end(), bytes.begin(), bytes.end());
        return _viewCount++;
    }

    /// Adds an accessor. @return its index
    unsigned int addAccessor(const std::string& json) {
        append(_accessors, json);
        return _accessorCount++;
    }

    /// Adds an array with an accessor of its own. @param extra JSON members of the accessor, each with a
    /// comma before it
    template <typename T>
    unsigned int add(const std::vector<T>& values, const std::string& type, COMPONENT component,
                     const std::string& extra = "") {
        const unsigned int view = addView(bytesOf(values));
        const std::size_t components = type == "SCALAR" ? 1
                                       : type == "MAT4" ? 16
                                                        : std::size_t(type[3] - '0');
        return addAccessor(R"({"bufferView": )" + std::to_string(view) + R"(, "componentType": )" +
                           std::to_string(component) + R"(, "type": ")" + type + R"(", "count": )" +
                           std::to_string(values.size() / components) + extra + "}");
    }
    unsigned int addFloats(const std::string& type, const std::vector<float>& values) {
        return add(values, type, FLOAT32);
    }

    template <typename T>
    static GltfBytes bytesOf(const std::vector<T>& values) {
        GltfBytes bytes(values.size() * sizeof(T));
        if (!bytes.empty())
            std::memcpy(bytes.data(), values.data(), bytes.size());
        return bytes;
    }

    const GltfBytes& getBytes() const { return _bytes; }

    /// The JSON text, with a buffer that has the given "uri" member, or none.
    std::string toJson(const std::string& uri = "") const {
        std::string text = R"({"asset": )" + asset;
        if (!_bytes.empty())
            text += R"(, "buffers": [{"byteLength": )" + std::to_string(_bytes.size()) +
                    (uri.empty() ? "" : R"(, "uri": ")" + uri + "\"") + "}]";
        text += R"(, "bufferViews": [)" + _views + R"(], "accessors": [)" + _accessors + "]";
        return text + (members.empty() ? "" : ", " + members) + "}";
    }

    /// A text file with the buffer inside.
    GltfBytes toText() const {
        const std::string json = toJson("data:application/octet-stream;base64," + toBase64(_bytes));
        return GltfBytes(json.begin(), json.end());
    }

    /// A binary file.
    GltfBytes toBinary() const { return toBinary(toJson(), _bytes); }

    static GltfBytes toBinary(std::string json, GltfBytes binary) {
        json.resize((json.size() + 3) / 4 * 4, ' ');
        binary.resize((binary.size() + 3) / 4 * 4, 0);
        GltfBytes file = {'g', 'l', 'T', 'F'};
        appendWord(file, 2);
        appendWord(file, std::uint32_t(12 + 8 + json.size() + (binary.empty() ? 0 : 8 + binary.size())));
        appendWord(file, std::uint32_t(json.size()));
        appendWord(file, 0x4e4f534a);
        file.insert(file.end(), json.begin(), json.end());
        if (binary.empty())
            return file;
        appendWord(file, std::uint32_t(binary.size()));
        appendWord(file, 0x004e4942);
        file.insert(file.end(), binary.begin(), binary.end());
        return file;
    }

    static std::string toBase64(const GltfBytes& bytes) {
        static const char* const DIGITS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string text;
        for (std::size_t i = 0; i < bytes.size(); i += 3) {
            std::uint32_t triple = 0;
            for (std::size_t k = 0; k < 3; ++k)
                triple = triple << 8 | (i + k < bytes.size() ? bytes[i + k] : 0u);
            for (std::size_t k = 0; k < 4; ++k)
                text += i + k <= bytes.size() ? DIGITS[triple >> (18 - 6 * k) & 63] : '=';
        }
        return text;
    }

private:
    static void append(std::string& list, const std::string& json) {
        list += (list.empty() ? "" : ", ") + json;
    }
    static void appendWord(GltfBytes& bytes, std::uint32_t word) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<unsigned char>(word >> shift));
    }

    GltfBytes _bytes;
    std::string _views;
    std::string _accessors;
    unsigned int _viewCount = 0;
    unsigned int _accessorCount = 0;
};

/// A triangle in the plane z = 0.5 of the file, counter-clockwise seen from its +z, with a node and a scene.
/// @param attributes more JSON of the attributes, each with a comma before it @param primitive the same of
/// the primitive @param rest the same of the file
inline GltfBuilder makeTriangle(const std::string& primitive = "", const std::string& rest = "") {
    GltfBuilder file;
    const unsigned int position = file.addFloats("VEC3", {0, 0, 0.5f, 1, 0, 0.5f, 0, 1, 0.5f});
    file.members = R"("meshes": [{"name": "Tri", "primitives": [{"attributes": {"POSITION": )" +
                   std::to_string(position) + "}" + primitive +
                   R"(}]}], "nodes": [{"mesh": 0, "name": "Node"}], "scenes": [{"nodes": [0]}], "scene": 0)" +
                   rest;
    return file;
}

/// A picture of one pixel as a PNG file.
inline GltfBytes makePng() {
    ovImages::Image image(1, 1, 4, ovImages::COMPONENT_TYPE::UINT8, ovImages::COLOR_ENCODING::SRGB);
    image.setComponent(0, 0, 0, 1.0f);
    image.setComponent(0, 0, 3, 1.0f);
    return ovImages::PngEncoder().encode(image.view()).bytes;
}

/// A small file with a bit of everything.
inline GltfBuilder makeRich() {
    GltfBuilder file = makeTriangle(R"(, "material": 0, "indices": 2)", R"(, "skins": [{"joints": [0]}],
        "cameras": [{"perspective": {"yfov": 1, "znear": 1}}], "materials": [{"normalTexture": {"index": 0}}],
        "textures": [{"source": 0, "sampler": 0}], "samplers": [{"minFilter": 9729}], "images": [{"bufferView": 3}],
        "animations": [{}], "extensionsUsed": ["KHR_lights_punctual"],
        "extensions": {"KHR_lights_punctual": {"lights": [{"type": "directional"}]}})");
    file.members.replace(file.members.find("\"POSITION\": 0"), 13,
                         "\"POSITION\": 0, \"TEXCOORD_0\": 1, "
                         "\"JOINTS_0\": 3, \"WEIGHTS_0\": 4");
    file.members.replace(
        file.members.find("\"mesh\": 0"), 9,
        "\"mesh\": 0, \"skin\": 0, \"camera\": 0, \"rotation\": [0, 0, 0, 1], \"extensions\": "
        "{\"KHR_lights_punctual\": {\"light\": 0}}");
    file.addFloats("VEC2", {0, 1, 1, 1, 0, 0});
    file.add<std::uint16_t>({0, 1, 2}, "SCALAR", UINT16);
    file.addView(makePng());
    file.add<std::uint8_t>(std::vector<std::uint8_t>(12), "VEC4", UINT8);
    file.addFloats("VEC4", {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0});
    return file;
}

/// A file of what makeRich() leaves out: sparse and quantized accessors, strips, fans, loops, transformations
/// of texture coordinates, vertex colours, morph targets, both kinds of materials, an orthographic camera.
inline GltfBuilder makeVaried() {
    GltfBuilder file;
    file.add<std::int16_t>({0, 0, 0, 9, 0, 0, 0, 9, 0, 9, 9, 0}, "VEC3", INT16);
    file.add<std::uint8_t>({0, 0, 255, 0, 0, 255, 255, 255}, "VEC2", UINT8, R"(, "normalized": true)");
    const unsigned int indices = file.addView({1, 3});
    const unsigned int values = file.addView(GltfBuilder::bytesOf<float>({0, 0, 1, 1, 0, 0}));
    file.addAccessor(R"({"componentType": 5126, "type": "VEC3", "count": 4, "sparse": {"count": 2, "indices":
        {"bufferView": )" +
                     std::to_string(indices) + R"(, "componentType": 5121}, "values": {"bufferView": )" +
                     std::to_string(values) + "}}}");
    file.add<std::uint32_t>({3, 2, 1, 0}, "SCALAR", UINT32);
    file.members = R"("meshes": [{"primitives": [
        {"attributes": {"POSITION": 0, "NORMAL": 2, "TEXCOORD_0": 1}, "mode": 5, "material": 1},
        {"attributes": {"POSITION": 2, "COLOR_0": 2}, "mode": 6, "targets": [{"POSITION": 0}]},
        {"attributes": {"POSITION": 0}, "mode": 2, "indices": 3}, {"attributes": {"POSITION": 0}, "mode": 0}]}],
        "materials": [{"alphaMode": "MASK", "doubleSided": true}, {"extensions": {"KHR_materials_pbrSpecularGlossiness":
        {"diffuseFactor": [1, 0.5, 0, 1], "diffuseTexture": {"index": 0, "extensions": {"KHR_texture_transform":
        {"offset": [1, 2], "rotation": 0.5, "scale": [2, 3]}}}}}}], "textures": [{"source": 0}], "images": [{"uri": "x"}],
        "nodes": [{"children": [1], "matrix": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1]},
        {"mesh": 0, "camera": 0, "scale": [1, 2, 3]}], "cameras": [{"orthographic": {"xmag": 2, "ymag": 1, "znear": 1,
        "zfar": 9}}], "scenes": [{"nodes": [0]}])";
    return file;
}
