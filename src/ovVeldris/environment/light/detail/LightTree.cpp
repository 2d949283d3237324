#include <ovVeldris/environment/light/detail/LightTree.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <ovCommon/ParallelFor.h>

namespace ovVeldris {

namespace {

constexpr std::size_t COLOR_COUNT = 3;
constexpr unsigned int NO_TEXELS = ~0u;
constexpr float INFINITE = std::numeric_limits<float>::infinity();

/// A sun makes every lobe look at all texels of its leaf: also in an environment whose texels are much finer
/// than leaves need to be, they hold no more than these.
constexpr unsigned int TEXELS_OF_LEAF = 32;

/// Leaves as a part of the narrowest lobe's width: a node of this size stands for its texels from 1.5 widths
/// on. With larger ones a lobe looks at each texel in a wide ring around it.
constexpr double LEAF_OF_LOBE = 1.0 / 3.0;

/// Parts of the environment that are made into trees by themselves, on all cores.
constexpr std::size_t BRANCHES = 64;

/// The share of its light by which a node's mean alone may be wrong. The variance makes up for nine tenths of
/// it.
constexpr double TOLERANCE = 0.04;

/// A node's radius over the distance, at most: farther texels than that are not told by the moments.
constexpr double OPENING = 0.25;

/// How much finer lights must be where a lobe ends at the horizon: its weight has a bend there.
constexpr float HORIZON_REACH = 4.0f;

/// Texels of more than so many times the mean light count by themselves where they stand on a horizon: half a
/// sun may be more than all the rest.
constexpr double BRIGHT = 8.0;

double distance(const Direction& a, const Direction& b) {
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

double dot(const Direction& a, const Direction& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// In the precision of the sums.
void setLight(PointLight& light, const Direction& direction, const std::array<double, COLOR_COUNT>& power) {
    for (std::size_t i = 0; i < COLOR_COUNT; ++i) {
        light.direction[i] = static_cast<float>(direction[i]);
        light.power[i] = static_cast<float>(power[i]);
    }
}

double sumOfColors(const float* light) {
    return double{light[0]} + light[1] + light[2];
}

/// Whether there is nothing to count, which a sum that is no number is, too.
bool isDark(const float* light) {
    const float sum = light[0] + light[1] + light[2];
    return std::isnan(sum) || sum <= 0.0f;
}

/// Directions have length 1, so that the shortness of their mean tells how far they are apart.
double varianceAround(const Direction& mean) {
    return std::max(0.0, 1.0 - dot(mean, mean));
}

/// Of all directions, the colours added.
double meanLightOf(const EnvironmentTexels& environment) {
    double light = 0.0;
    for (unsigned int row = 0; row < environment.getHeight(); ++row) {
        for (unsigned int column = 0; column < environment.getWidth(); ++column)
            light += environment.getSolidAngle(column, row) * sumOfColors(environment.getLight(column, row));
    }
    return light / (4.0 * std::numbers::pi);
}

} // namespace

double LightTree::Moments::getPower() const {
    return power[0] + power[1] + power[2];
}

Direction LightTree::Moments::getMean() const {
    const double all = getPower();
    Direction mean = {};
    for (std::size_t axis = 0; axis < mean.size() && all > 0.0; ++axis)
        mean[axis] = (directions[0][axis] + directions[1][axis] + directions[2][axis]) / all;
    return mean;
}

LightTree::LightTree(const EnvironmentTexels& environment, double narrowest)
    : _environment(environment)
    , _leafRows(LEAF_OF_LOBE * narrowest / environment.getTexelHeight())
    , _bright(BRIGHT * meanLightOf(environment)) {
    const ovMemory::Buffer<Block> blocks = _split();
    _branches.resize(blocks.size());
    ovCommon::parallelFor(blocks.size(), [&](std::size_t i) { _append(blocks[i], _branches[i]); });
}

/// Where a lobe falls like chord^-4, a colour whose mean lies `shift` from the common one is wrong by 4 shift
/// / chord of itself, and a spread around the common mean by 6 variance / chord^2. This solves for the chord
/// at which both make up the tolerance.
float LightTree::_reachOf(const Moments& moments) {
    const Direction mean = moments.getMean();
    double reach = moments.radius / OPENING;
    for (std::size_t color = 0; color < COLOR_COUNT; ++color) {
        if (moments.power[color] <= 0.0)
            continue;
        const Direction own = scaled(moments.directions[color], 1.0 / moments.power[color]);
        const double shift = distance(own, mean);
        const double variance = varianceAround(own) + shift * shift;
        const double root = std::sqrt(16.0 * shift * shift + 24.0 * variance * TOLERANCE);
        reach = std::max(reach, (4.0 * shift + root) / (2.0 * TOLERANCE));
    }
    return static_cast<float>(reach);
}

/// Halves the largest part again and again. A cube's faces are parts by themselves.
ovMemory::Buffer<LightTree::Block> LightTree::_split() const {
    const unsigned int width = _environment.getWidth();
    const unsigned int parts = _environment.isCube() ? ENVIRONMENT_FACES : 1;
    const unsigned int height = _environment.getHeight() / parts;
    ovMemory::Buffer<Block> blocks;
    for (unsigned int part = 0; part < parts; ++part)
        blocks.push_back({0, part * height, width, height});
    const auto texels = [](const Block& block) { return std::size_t{block.width} * block.height; };
    while (blocks.size() < BRANCHES) {
        const auto largest =
            std::max_element(blocks.begin(), blocks.end(),
                             [&](const Block& a, const Block& b) { return texels(a) < texels(b); });
        if (_isLeaf(*largest))
            break;
        const auto [first, second] = _halve(*largest);
        *largest = first;
        blocks.push_back(second);
    }
    return blocks;
}

bool LightTree::_isLeaf(const Block& block) const {
    const std::size_t texels = std::size_t{block.width} * block.height;
    if (texels <= 1 || texels > TEXELS_OF_LEAF)
        return texels <= 1;
    const double stretch = _environment.getStretch(block.row + block.height / 2);
    return std::max<double>(block.height, block.width * stretch) <= _leafRows;
}

std::array<LightTree::Block, 2> LightTree::_halve(const Block& block) const {
    Block first = block;
    Block second = block;
    // Across the longer side as it is seen: near the poles of a panorama many texels are next to nothing
    // wide.
    const double stretch = _environment.getStretch(block.row + block.height / 2);
    if (block.height == 1 || (block.width > 1 && block.width * stretch > block.height)) {
        first.width = block.width / 2;
        second.column += first.width;
        second.width -= first.width;
    } else {
        first.height = block.height / 2;
        second.row += first.height;
        second.height -= first.height;
    }
    return {first, second};
}

LightTree::Moments LightTree::_append(const Block& block, Branch& branch) const {
    const std::size_t number = branch.nodes.size();
    branch.nodes.emplace_back().texels = NO_TEXELS;
    Moments sum;
    if (_isLeaf(block)) {
        sum = _sumTexels(block);
        branch.nodes[number].texels = static_cast<unsigned int>(branch.leaves.size());
        branch.leaves.push_back(block);
    } else {
        const auto [first, second] = _halve(block);
        sum = _join({_append(first, branch), _append(second, branch)}); // braces keep the order
    }
    Node& node = branch.nodes[number];
    const Direction mean = sum.getMean();
    setLight(node.light, mean, sum.power);
    node.light.variance = static_cast<float>(0.5 * varianceAround(mean));
    node.reach = _reachOf(sum);
    node.horizonReach = sum.isBright ? INFINITE : HORIZON_REACH * node.reach;
    node.end = static_cast<unsigned int>(branch.nodes.size());
    return sum;
}

LightTree::Moments LightTree::_join(const std::array<Moments, 2>& halves) {
    Moments sum;
    for (const Moments& half : halves) {
        sum.isBright |= half.isBright;
        for (std::size_t color = 0; color < COLOR_COUNT; ++color) {
            sum.power[color] += half.power[color];
            for (std::size_t axis = 0; axis < 3; ++axis)
                sum.directions[color][axis] += half.directions[color][axis];
        }
    }
    const Direction mean = sum.getMean();
    for (const Moments& half : halves)
        if (half.getPower() > 0.0)
            sum.radius = std::max(sum.radius, distance(half.getMean(), mean) + half.radius);
    return sum;
}

LightTree::Moments LightTree::_sumTexels(const Block& block) const {
    Moments sum;
    const auto forEachTexel = [&](const auto& visit) {
        for (unsigned int row = block.row; row < block.row + block.height; ++row) {
            for (unsigned int column = block.column; column < block.column + block.width; ++column) {
                const float* light = _environment.getLight(column, row);
                if (!isDark(light))
                    visit(light, _environment.getDirection(column, row),
                          _environment.getSolidAngle(column, row));
            }
        }
    };
    forEachTexel([&](const float* light, const Direction& direction, double solidAngle) {
        sum.isBright |= sumOfColors(light) > _bright;
        for (std::size_t color = 0; color < COLOR_COUNT; ++color) {
            const double power = light[color] * solidAngle;
            sum.power[color] += power;
            for (std::size_t axis = 0; axis < 3; ++axis)
                sum.directions[color][axis] += power * direction[axis];
        }
    });
    const Direction mean = sum.getMean();
    forEachTexel([&](const float*, const Direction& direction, double) {
        sum.radius = std::max(sum.radius, distance(direction, mean));
    });
    return sum;
}

void LightTree::gather(const Direction& middle, double radius, double width,
                       ovMemory::Buffer<PointLight>& lights) const {
    const auto x = static_cast<float>(middle[0]);
    const auto y = static_cast<float>(middle[1]);
    const auto z = static_cast<float>(middle[2]);
    const auto nearest = static_cast<float>(radius);
    const auto softness = static_cast<float>(width * width);
    for (const Branch& branch : _branches) {
        for (unsigned int i = 0; i < branch.nodes.size();) {
            const Node& node = branch.nodes[i];
            const PointLight& light = node.light;
            if (isDark(light.power.data())) {
                i = node.end;
                continue;
            }
            const float dx = light.direction[0] - x;
            const float dy = light.direction[1] - y;
            const float dz = light.direction[2] - z;
            const float chord = std::max(0.0f, std::sqrt(dx * dx + dy * dy + dz * dz) - nearest);
            const float cosine = light.direction[0] * x + light.direction[1] * y + light.direction[2] * z;
            // Some of a node's texels may lie above a horizon that its mean is below.
            const bool isAtHorizon = std::abs(cosine) < nearest + static_cast<float>(OPENING) * node.reach;
            const float reach = isAtHorizon ? node.horizonReach : node.reach;
            if (reach * reach <= softness + chord * chord) {
                lights.push_back(light);
                i = node.end;
                continue;
            }
            if (node.texels != NO_TEXELS)
                _gatherTexels(branch.leaves[node.texels], lights);
            ++i; // to its children, or past a leaf
        }
    }
}

void LightTree::_gatherTexels(const Block& block, ovMemory::Buffer<PointLight>& lights) const {
    for (unsigned int row = block.row; row < block.row + block.height; ++row) {
        for (unsigned int column = block.column; column < block.column + block.width; ++column) {
            const float* light = _environment.getLight(column, row);
            if (isDark(light))
                continue;
            const double solidAngle = _environment.getSolidAngle(column, row);
            setLight(lights.emplace_back(), _environment.getDirection(column, row),
                     {light[0] * solidAngle, light[1] * solidAngle, light[2] * solidAngle});
        }
    }
}

} // namespace ovVeldris
