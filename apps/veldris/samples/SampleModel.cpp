#include <veldris/samples/SampleModel.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <fmt/format.h>
#include <functional>
#include <numbers>
#include <ovImages/PngEncoder.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;
using Bytes = Buffer<unsigned char>;

constexpr float PI = std::numbers::pi_v<float>;
constexpr unsigned int COLUMNS = 65; // vertices around a shape, the last on the first
constexpr unsigned int ROWS = 25;    // vertices along a profile
constexpr unsigned int FLOATS = 8;   // of a vertex: position, normal, texture coordinates
constexpr unsigned int INDICES = 6 * (COLUMNS - 1) * (ROWS - 1);
constexpr unsigned int PICTURE_SIDE = 64;

struct ProfilePoint {
    float radius;
    float height;
};

/// A shape as turned on a lathe: its outline from below to above by a number from 0 to 1.
using Profile = std::function<ProfilePoint(float)>;

struct Part {
    Profile profile;
    unsigned int material;
};

ProfilePoint bulge(float radius, float height, float width, float thickness, float t) {
    const float angle = PI * (t - 0.5f);
    return {radius + width * std::cos(angle), height + thickness * std::sin(angle)};
}

constexpr unsigned int CERAMIC = 0;
constexpr unsigned int BRASS = 1;

// Radii and heights in metres.
const Buffer<Part>& pawnParts() {
    static const Buffer<Part> PARTS = {
        {[](float t) {
             return ProfilePoint{0.36f * t, 0.0f};
         },
         BRASS},                                                             // below the foot
        {[](float t) { return bulge(0.36f, 0.1f, 0.08f, 0.1f, t); }, BRASS}, // foot
        {[](float t) {
             return ProfilePoint{0.11f + 0.25f * std::pow(1.0f - t, 3.0f), 0.2f + 0.56f * t};
         },
         CERAMIC},
        {[](float t) { return bulge(0.1f, 0.76f, 0.12f, 0.035f, t); }, BRASS}, // collar
        {[](float t) { return bulge(0.0f, 0.96f, 0.2f, 0.2f, t); }, CERAMIC},  // head
    };
    return PARTS;
}

template <typename T>
void append(Bytes& bytes, const T& value) {
    // Not by inserting, of which GCC 12 warns falsely at -O3.
    const std::size_t size = bytes.size();
    bytes.resize(size + sizeof(T));
    std::memcpy(bytes.data() + size, &value, sizeof(T));
}

/// glTF 2.0, 3.6.2: what chunks and views hold begins at multiples of four bytes.
void pad(Bytes& bytes, unsigned char filling) {
    while (bytes.size() % 4 != 0)
        bytes.push_back(filling);
}

// In the file's space: right-handed, so that growing angles run to the right of who looks from +z.
void appendVertices(Bytes& bytes, const Profile& profile) {
    constexpr float STEP = 1e-3f; // of the profile, for its slope
    for (unsigned int row = 0; row < ROWS; ++row) {
        const float t = static_cast<float>(row) / (ROWS - 1);
        const ProfilePoint point = profile(t);
        const ProfilePoint before = profile(std::max(t - STEP, 0.0f));
        const ProfilePoint after = profile(std::min(t + STEP, 1.0f));
        const float outwards = after.height - before.height;
        const float upwards = before.radius - after.radius;
        const float length = std::hypot(outwards, upwards);
        for (unsigned int column = 0; column < COLUMNS; ++column) {
            const float u = static_cast<float>(column) / (COLUMNS - 1);
            const float sine = std::sin(2.0f * PI * u);
            const float cosine = std::cos(2.0f * PI * u);
            const float vertex[FLOATS] = {point.radius * sine,
                                          point.height,
                                          point.radius * cosine,
                                          sine * outwards / length,
                                          upwards / length,
                                          cosine * outwards / length,
                                          u,
                                          1.0f - t};
            append(bytes, vertex);
        }
    }
}

/// All parts have the same grid, fronts counter-clockwise.
void appendIndices(Bytes& bytes) {
    for (unsigned int row = 0; row + 1 < ROWS; ++row) {
        for (unsigned int column = 0; column + 1 < COLUMNS; ++column) {
            const unsigned int below = row * COLUMNS + column;
            const unsigned int above = below + COLUMNS;
            for (const unsigned int index : {below, below + 1, above + 1, below, above + 1, above})
                append(bytes, static_cast<std::uint16_t>(index));
        }
    }
}

/// White with bands of blue glaze.
Bytes makeGlaze() {
    ovImages::Image picture(PICTURE_SIDE, PICTURE_SIDE, 3, ovImages::COMPONENT_TYPE::UINT8,
                            ovImages::COLOR_ENCODING::SRGB);
    for (unsigned int y = 0; y < PICTURE_SIDE; ++y) {
        for (unsigned int x = 0; x < PICTURE_SIDE; ++x) {
            const bool isBand = y / 8 % 4 == 2 || (y / 8 % 4 == 3 && x / 4 % 2 == 0);
            const float color[] = {isBand ? 0.13f : 0.93f, isBand ? 0.28f : 0.92f, isBand ? 0.62f : 0.88f};
            for (unsigned int channel = 0; channel < 3; ++channel)
                picture.setComponent(x, y, channel, color[channel]);
        }
    }
    return ovImages::PngEncoder().encode(picture.view()).bytes;
}

String primitiveText(std::size_t part, unsigned int material) {
    return fmt::format(
        R"({{"attributes":{{"POSITION":{},"NORMAL":{},"TEXCOORD_0":{}}},"indices":{},"material":{}}})",
        3 * part, 3 * part + 1, 3 * part + 2, 3 * pawnParts().size(), material);
}

/// The bounds of a part, which the format demands of positions.
String boundsText(const Profile& profile) {
    float radius = 0.0f;
    for (unsigned int row = 0; row < ROWS; ++row)
        radius = std::max(radius, profile(static_cast<float>(row) / (ROWS - 1)).radius);
    return fmt::format(R"("min":[{0},{1},{0}],"max":[{2},{3},{2}])", -radius, profile(0.0f).height, radius,
                       profile(1.0f).height);
}

String documentText(std::size_t vertexBytes, std::size_t indexBytes, std::size_t pictureBytes) {
    constexpr unsigned int VERTICES = COLUMNS * ROWS;
    const std::size_t partBytes = std::size_t(VERTICES) * FLOATS * sizeof(float);
    String primitives;
    String accessors;
    for (std::size_t part = 0; part < pawnParts().size(); ++part) {
        primitives += (part > 0 ? "," : "") + primitiveText(part, pawnParts()[part].material);
        const std::size_t start = part * partBytes;
        accessors += fmt::format(
            R"({{"bufferView":0,"byteOffset":{},"componentType":5126,"count":{},"type":"VEC3",{}}},)", start,
            VERTICES, boundsText(pawnParts()[part].profile));
        accessors += fmt::format(
            R"({{"bufferView":0,"byteOffset":{},"componentType":5126,"count":{},"type":"VEC3"}},)",
            start + 12, VERTICES);
        accessors += fmt::format(
            R"({{"bufferView":0,"byteOffset":{},"componentType":5126,"count":{},"type":"VEC2"}},)",
            start + 24, VERTICES);
    }
    accessors +=
        fmt::format(R"({{"bufferView":1,"componentType":5123,"count":{},"type":"SCALAR"}})", INDICES);
    return fmt::format(
        R"({{"asset":{{"version":"2.0","generator":"veldris samples"}},"scene":0,"scenes":[{{"nodes":[0]}}],)"
        R"("nodes":[{{"name":"pawn","mesh":0}}],"meshes":[{{"name":"pawn","primitives":[{}]}}],)"
        R"("materials":[{{"name":"ceramic","pbrMetallicRoughness":{{"baseColorTexture":{{"index":0}},)"
        R"("metallicFactor":0,"roughnessFactor":0.2}}}},{{"name":"brass","pbrMetallicRoughness":)"
        R"({{"baseColorFactor":[0.89,0.69,0.3,1],"metallicFactor":1,"roughnessFactor":0.3}}}}],)"
        R"("textures":[{{"source":0}}],"images":[{{"name":"glaze","bufferView":2,"mimeType":"image/png"}}],)"
        R"("accessors":[{}],"bufferViews":[{{"buffer":0,"byteLength":{},"byteStride":{}}},)"
        R"({{"buffer":0,"byteOffset":{},"byteLength":{}}},{{"buffer":0,"byteOffset":{},"byteLength":{}}}],)"
        R"("buffers":[{{"byteLength":{}}}]}})",
        primitives, accessors, vertexBytes, FLOATS * sizeof(float), vertexBytes, indexBytes,
        vertexBytes + indexBytes, pictureBytes, vertexBytes + indexBytes + pictureBytes);
}

void appendChunk(Bytes& file, const char* type, const Bytes& chunk) {
    append(file, static_cast<std::uint32_t>(chunk.size()));
    file.insert(file.end(), type, type + 4);
    file.insert(file.end(), chunk.begin(), chunk.end());
}

} // namespace

Bytes makeSampleModel() {
    constexpr std::uint32_t VERSION = 2;
    Bytes data;
    for (const Part& part : pawnParts())
        appendVertices(data, part.profile);
    const std::size_t vertexBytes = data.size();
    appendIndices(data);
    const std::size_t indexBytes = data.size() - vertexBytes;
    const Bytes picture = makeGlaze();
    data.insert(data.end(), picture.begin(), picture.end());
    pad(data, 0);
    const String document = documentText(vertexBytes, indexBytes, data.size() - vertexBytes - indexBytes);
    Bytes text(document.begin(), document.end());
    pad(text, ' ');

    constexpr std::size_t HEADER = 12;
    constexpr std::size_t CHUNK_HEADER = 8;
    Bytes file = {'g', 'l', 'T', 'F'};
    append(file, VERSION);
    append(file, static_cast<std::uint32_t>(HEADER + 2 * CHUNK_HEADER + text.size() + data.size()));
    appendChunk(file, "JSON", text);
    appendChunk(file, "BIN\0", data);
    return file;
}

} // namespace veldris
