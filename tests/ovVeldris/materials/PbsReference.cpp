#include <ovVeldris/materials/PbsReference.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double PI = 3.14159; // as the material rounds it
constexpr int SAMPLES = 1024;

double saturate(double x) {
    return std::clamp(x, 0.0, 1.0);
}

/// Schlick 1994.
Vec3 schlick(const Vec3& f0, double cosine) {
    const double weight = std::pow(1.0 - cosine, 5.0);
    return f0 + weight * (Vec3{1.0, 1.0, 1.0} - f0);
}

/// GGX of the width a = roughness^2.
double ggx(double dotNH, double roughness) {
    const double a2 = std::pow(roughness, 4.0);
    const double root = dotNH * dotNH * (a2 - 1.0) + 1.0;
    return a2 == 0.0 ? 0.0 : a2 / (PI * root * root);
}

double smithSchlick(double dotNV, double dotNL, double k) {
    const auto g1 = [k](double x) { return x / (x * (1.0 - k) + k); };
    return g1(dotNV) * g1(dotNL);
}

Vec3 mirror(const Vec3& v, const Vec3& axis) {
    return normalized(2.0 * dot(v, axis) * axis - v);
}

/// Digits of i in base 2 after the binary point, in reverse.
double vanDerCorput(int i) {
    double value = 0.0;
    for (double digit = 0.5; i > 0; i /= 2, digit *= 0.5)
        value += digit * (i % 2);
    return value;
}

/// The half vectors of the samples.
Vec3 sampleHalfVector(const Vec3& normal, double roughness, int i) {
    const double a = roughness * roughness;
    const double x = double(i) / SAMPLES;
    const double phi = 2.0 * PI * vanDerCorput(i);
    const double cosTheta = std::sqrt((1.0 - x) / (1.0 + (a * a - 1.0) * x));
    const double sinTheta = std::sqrt(1.0 - cosTheta * cosTheta);
    const Vec3 up = std::abs(normal[1]) < 0.999 ? Vec3{0.0, 1.0, 0.0} : Vec3{1.0, 0.0, 0.0};
    const Vec3 tangent = normalized(cross(up, normal));
    const Vec3 bitangent = cross(normal, tangent);
    return std::cos(phi) * sinTheta * tangent + std::sin(phi) * sinTheta * bitangent + cosTheta * normal;
}

double sampleMip(double dotNH, double roughness, double resolution) {
    if (roughness == 0.0)
        return 0.0;
    const double saTexel = 4.0 * PI / (6.0 * resolution * resolution);
    const double pdf = ggx(dotNH, roughness) / 4.0 + 0.0001;
    const double saSample = 1.0 / (SAMPLES * pdf + 0.0001);
    return 0.5 * std::log2(saSample / saTexel);
}

Vec3 reflectSampled(const PbsReferenceMap& map, const Vec3& n, const Vec3& v, const Vec3& f0,
                    double roughness) {
    const double dotNV = std::clamp(dot(n, v), 0.001, 1.0);
    Vec3 sum{};
    for (int i = 0; i < SAMPLES; ++i) {
        const Vec3 h = sampleHalfVector(n, roughness, i);
        const Vec3 l = mirror(v, h);
        const double dotNL = saturate(dot(n, l));
        if (dotNL <= 0.0)
            continue;
        const double dotNH = saturate(dot(n, h));
        const double dotVH = saturate(dot(v, h));
        const double weight = smithSchlick(dotNV, dotNL, roughness * roughness) * dotVH / (dotNH * dotNV);
        sum = sum + weight * schlick(f0, dotVH) * map.read(l, sampleMip(dotNH, roughness, map.resolution), i);
    }
    return 1.0 / SAMPLES * sum;
}

/// The fit of the split sum's second part.
Vec3 integratedReflectance(const Vec3& f0, double x, double s) {
    const double delta = 0.991086418474895 + 0.412367709802119 * s * x * x - 0.363848256078895 * s * s -
                         0.758634385642633 * x * s * s;
    const double bias =
        saturate(0.0306613448029984 * s + 0.0238299731830387 / (0.0272458171384516 + s * s * s + x * x) -
                 0.0454747751719356);
    return saturate(delta - bias) * f0 + Vec3{bias, bias, bias};
}

Vec3 reflectPrefiltered(const PbsReferenceMap& map, const Vec3& n, const Vec3& v, const Vec3& f0,
                        double roughness) {
    const Vec3 light = map.read(mirror(v, n), (map.mipCount - 1.0) * roughness, 0);
    return light * integratedReflectance(f0, saturate(dot(n, v)), std::sqrt(roughness));
}

} // namespace

Vec3 operator+(const Vec3& a, const Vec3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
Vec3 operator-(const Vec3& a, const Vec3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
Vec3 operator*(const Vec3& a, const Vec3& b) {
    return {a[0] * b[0], a[1] * b[1], a[2] * b[2]};
}
Vec3 operator*(double s, const Vec3& a) {
    return {s * a[0], s * a[1], s * a[2]};
}
double dot(const Vec3& a, const Vec3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Vec3 cross(const Vec3& a, const Vec3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
Vec3 normalized(const Vec3& a) {
    return 1.0 / std::sqrt(dot(a, a)) * a;
}

Vec3 shadePbs(const PbsReferenceScene& scene, const PbsReferencePoint& point) {
    const Vec3& n = point.normal;
    const Vec3 v = normalized(point.eyeDirection);
    const Vec3 l = normalized(-1.0 * scene.lightDirection);
    const bool lit = !scene.environment || scene.combine;
    const Vec3 light = (lit ? point.shadow : 0.0) * scene.lightColor;

    const Vec3 f0 = point.metalness * point.specular;
    const Vec3 h = normalized((scene.environment ? n : l) + v);
    const Vec3 f = schlick(f0, saturate(dot(v, h)));
    Vec3 albedo = point.albedo;
    double roughness = point.roughnessGlossiness;
    if (scene.glossiness) {
        albedo = (1.0 - std::max({f0[0], f0[1], f0[2]})) * albedo;
        roughness = 1.0 - roughness;
    }

    Vec3 specular{};
    if (scene.environment) {
        const auto reflect = scene.environment->prefiltered ? reflectPrefiltered : reflectSampled;
        specular = point.shadow * reflect(*scene.environment, n, v, f0, roughness);
    }
    const double dotNL = saturate(dot(n, l));
    const double k = (roughness + 1.0) * (roughness + 1.0) / 8.0;
    const double reflected =
        ggx(saturate(dot(n, normalized(l + v))), roughness) * smithSchlick(saturate(dot(n, v)), dotNL, k);
    specular = specular + reflected * light * f;

    const Vec3 irradiance = scene.irradiance ? scene.irradiance->read(n, 0.0, 0) : scene.irradianceColor;
    const Vec3 diffuse = albedo * (irradiance + dotNL * light);
    return point.emissive + point.occlusion * (Vec3{1.0, 1.0, 1.0} - f) * diffuse + specular;
}

std::array<Vec3, 1024> listPbsSampleDirections(const Vec3& normal, const Vec3& eye, double roughness) {
    std::array<Vec3, SAMPLES> directions;
    for (int i = 0; i < SAMPLES; ++i)
        directions[std::size_t(i)] = mirror(normalized(eye), sampleHalfVector(normal, roughness, i));
    return directions;
}

std::array<double, 2> toFlatMap(const Vec3& d) {
    constexpr double MAP_PI = 3.1415956; // as maps have it
    return {0.5 + std::atan2(d[2], d[0]) / (2.0 * MAP_PI), 0.5 - std::asin(d[1]) / MAP_PI};
}
