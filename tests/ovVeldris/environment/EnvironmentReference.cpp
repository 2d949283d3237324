#include <algorithm>
#include <cstdint>
#include <ovVeldris/environment/EnvironmentReference.h>

namespace environmentReference {

namespace {

Direction cross(const Direction& a, const Direction& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// Adds a weighted pixel; a weight of 0 adds nothing, also of NaN.
void add(Color& sum, const FloatPixel& pixel, double weight) {
    for (std::size_t i = 0; i < 4 && weight != 0.0; ++i)
        sum[i] += weight * double(pixel[i]);
}

struct FacePlace {
    unsigned int face;
    double u;
    double v;
};

/// The face that a direction meets, and where: the inverse of faceDirection().
FacePlace placeOf(const Direction& d) {
    const double x = std::abs(d[0]);
    const double y = std::abs(d[1]);
    const double z = std::abs(d[2]);
    const auto place = [](unsigned int face, double s, double t, double major) {
        return FacePlace{face, 0.5 * (s / major + 1.0), 0.5 * (t / major + 1.0)};
    };
    if (x >= y && x >= z)
        return d[0] > 0.0 ? place(0, -d[2], -d[1], x) : place(1, d[2], -d[1], x);
    if (y >= z)
        return d[1] > 0.0 ? place(2, d[0], d[2], y) : place(3, d[0], -d[2], y);
    return d[2] > 0.0 ? place(4, d[0], -d[1], z) : place(5, -d[0], -d[1], z);
}

int wrap(int i, int count) {
    return ((i % count) + count) % count;
}

/// A texel of a cube; one beyond an edge is the nearest texel of the neighbouring face.
const FloatPixel& cubeTexel(const ovMemory::Buffer<FloatPicture>& faces, unsigned int face, int x, int y) {
    const int size = int(faces[0].width);
    if (x >= 0 && x < size && y >= 0 && y < size)
        return faces[face].at(unsigned(x), unsigned(y));
    const FacePlace place = placeOf(faceDirection(face, (x + 0.5) / size, (y + 0.5) / size));
    const auto index = [size](double coordinate) {
        return unsigned(std::clamp(int(std::floor(coordinate * size)), 0, size - 1));
    };
    return faces[place.face].at(index(place.u), index(place.v));
}

double radicalInverse(uint32_t bits) {
    bits = (bits << 16u) | (bits >> 16u);
    bits = ((bits & 0x55555555u) << 1u) | ((bits & 0xAAAAAAAAu) >> 1u);
    bits = ((bits & 0x33333333u) << 2u) | ((bits & 0xCCCCCCCCu) >> 2u);
    bits = ((bits & 0x0F0F0F0Fu) << 4u) | ((bits & 0xF0F0F0F0u) >> 4u);
    bits = ((bits & 0x00FF00FFu) << 8u) | ((bits & 0xFF00FF00u) >> 8u);
    return double(bits) * 2.3283064365386963e-10;
}

} // namespace

Direction normalized(const Direction& d) {
    const double length = std::sqrt(dot(d, d));
    return {d[0] / length, d[1] / length, d[2] / length};
}

double dot(const Direction& a, const Direction& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Direction faceDirection(unsigned int face, double u, double v) {
    const double s = 2.0 * u - 1.0;
    const double t = 2.0 * v - 1.0;
    const Direction directions[6] = {{1.0, -t, -s}, {-1.0, -t, s}, {s, 1.0, t},
                                     {s, -1.0, -t}, {s, -t, 1.0},  {-s, -t, -1.0}};
    return normalized(directions[face]);
}

Direction texelDirection(unsigned int face, unsigned int x, unsigned int y, unsigned int size) {
    return faceDirection(face, (x + 0.5) / size, (y + 0.5) / size);
}

Direction mapDirection(double u, double v) {
    const double longitude = (u - 0.5) * 2.0 * std::numbers::pi;
    const double latitude = (0.5 - v) * std::numbers::pi;
    return {std::cos(longitude) * std::cos(latitude), std::sin(latitude),
            std::sin(longitude) * std::cos(latitude)};
}

Frame::Frame(const Direction& normal)
    : _normal(normal) {
    const Direction up = std::abs(normal[1]) < 0.999 ? Direction{0.0, 1.0, 0.0} : Direction{1.0, 0.0, 0.0};
    _tangent = normalized(cross(up, normal));
    _bitangent = cross(normal, _tangent);
}

Direction Frame::toWorld(const Direction& local) const {
    Direction world{};
    for (std::size_t i = 0; i < 3; ++i)
        world[i] = local[0] * _tangent[i] + local[1] * _bitangent[i] + local[2] * _normal[i];
    return world;
}

Color Environment::sampleMap(double u, double v, unsigned int mip) const {
    const FloatPicture& picture = mips[mip][0];
    const int width = int(picture.width);
    const int height = int(picture.height);
    const double x = u * width - 0.5;
    const double y = v * height - 0.5;
    const int left = int(std::floor(x));
    const int top = int(std::floor(y));
    Color sum{};
    for (int dy = 0; dy < 2; ++dy)
        for (int dx = 0; dx < 2; ++dx)
            add(sum, picture.at(unsigned(wrap(left + dx, width)), unsigned(wrap(top + dy, height))),
                (dx ? x - left : 1.0 - (x - left)) * (dy ? y - top : 1.0 - (y - top)));
    return sum;
}

Color Environment::_sampleCube(const Direction& direction, unsigned int mip) const {
    const ovMemory::Buffer<FloatPicture>& faces = mips[mip];
    const int size = int(faces[0].width);
    const FacePlace place = placeOf(direction);
    const double x = place.u * size - 0.5;
    const double y = place.v * size - 0.5;
    const int left = int(std::floor(x));
    const int top = int(std::floor(y));
    const auto isOutside = [size](int i) { return i < 0 || i >= size; };
    Color sum{};
    for (int dy = 0; dy < 2; ++dy)
        for (int dx = 0; dx < 2; ++dx) {
            const double weight = (dx ? x - left : 1.0 - (x - left)) * (dy ? y - top : 1.0 - (y - top));
            if (!isOutside(left + dx) || !isOutside(top + dy)) {
                add(sum, cubeTexel(faces, place.face, left + dx, top + dy), weight);
                continue;
            }
            // Three faces meet at a corner: the fourth texel, which is not there, counts as their mean.
            add(sum, cubeTexel(faces, place.face, left + 1 - dx, top + 1 - dy), weight / 3.0);
            add(sum, cubeTexel(faces, place.face, left + dx, top + 1 - dy), weight / 3.0);
            add(sum, cubeTexel(faces, place.face, left + 1 - dx, top + dy), weight / 3.0);
        }
    return sum;
}

Color Environment::sample(const Direction& direction, double level) const {
    const double clamped = std::clamp(level, 0.0, double(mips.size() - 1));
    const auto sampleMip = [&](unsigned int mip) {
        if (cube)
            return _sampleCube(direction, mip);
        constexpr double MAP_PI = 3.1415956;
        return sampleMap(0.5 + std::atan2(direction[2], direction[0]) / (2.0 * MAP_PI),
                         0.5 - std::asin(std::clamp(direction[1], -1.0, 1.0)) / MAP_PI, mip);
    };
    const unsigned int fine = unsigned(clamped);
    const double share = clamped - fine;
    Color color = sampleMip(fine);
    if (share == 0.0)
        return color;
    const Color coarse = sampleMip(fine + 1);
    for (std::size_t i = 0; i < 4; ++i)
        color[i] += share * (coarse[i] - color[i]);
    return color;
}

Color filter(const Environment& environment, const Direction& normal, double roughness) {
    constexpr unsigned int COUNT = 1024;
    constexpr double PI = 3.14159;
    const Frame frame(normal);
    const double resolution = 0.5 * environment.mips[0][0].height;
    const double saTexel = 4.0 * PI / (6.0 * resolution * resolution);
    const double a = roughness * roughness;
    Color sum{};
    double weights = 0.0;
    for (uint32_t i = 0; i < COUNT; ++i) {
        const double xiX = double(i) / COUNT;
        const double phi = 2.0 * PI * radicalInverse(i);
        const double cosTheta = std::sqrt((1.0 - xiX) / (1.0 + (a * a - 1.0) * xiX));
        const double sinTheta = std::sqrt(1.0 - cosTheta * cosTheta);
        const Direction h = frame.toWorld({sinTheta * std::cos(phi), sinTheta * std::sin(phi), cosTheta});
        const double dotVH = dot(normal, h);
        Direction l{};
        for (std::size_t k = 0; k < 3; ++k)
            l[k] = 2.0 * dotVH * h[k] - normal[k];
        l = normalized(l);
        const double dotNL = std::clamp(dot(normal, l), 0.0, 1.0);
        if (dotNL <= 0.0)
            continue;
        const double dotNH = std::clamp(dotVH, 0.0, 1.0);
        const double root = dotNH * dotNH * (a * a - 1.0) + 1.0;
        const double pdf = a * a / (PI * root * root) / 4.0 + 0.0001;
        const double saSample = 1.0 / (COUNT * pdf + 0.0001);
        const double mip = roughness == 0.0 ? 0.0 : 0.5 * std::log2(saSample / saTexel);
        const Color light = environment.sample(l, mip);
        for (std::size_t k = 0; k < 3; ++k)
            sum[k] += light[k] * dotNL;
        weights += dotNL;
    }
    for (std::size_t k = 0; k < 3 && weights != 0.0; ++k)
        sum[k] /= weights;
    sum[3] = 1.0;
    return sum;
}

} // namespace environmentReference
