#include <ovVeldris/environment/light/EnvironmentPrefilter.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <ovCommon/ParallelFor.h>
#include <ovVeldris/environment/light/EnvironmentDrawing.h>
#include <ovVeldris/environment/light/detail/GgxLobe.h>
#include <ovVeldris/environment/light/detail/LightTree.h>

namespace ovVeldris {

namespace {

constexpr unsigned int SMALLEST_SIDE = 4;
constexpr unsigned int FILTERED_CHANNELS = 4;

/// Texels that share their lights: a square, as many as the innermost loop has lanes.
constexpr unsigned int TILE = 4;
static_assert(TILE * TILE == LOBE_LANES);

/// A row of tiles of a mip.
struct TileRow {
    ovImages::Image* mip;
    const GgxLobe* lobe;
    unsigned int face;
    unsigned int top; ///< row of the face
};

/// The texels of a tile. Lanes beyond the edge of the face repeat its last texels.
struct Tile {
    LobeSums sums;
    Direction middle = {};
    double radius = 0.0; ///< chord from the middle to the farthest
};

Tile placeTile(const TileRow& tiles, unsigned int left) {
    const unsigned int side = tiles.mip->getWidth();
    std::array<Direction, LOBE_LANES> normals;
    Tile tile;
    for (unsigned int lane = 0; lane < LOBE_LANES; ++lane) {
        const unsigned int column = std::min(left + lane % TILE, side - 1);
        const unsigned int row = std::min(tiles.top + lane / TILE, side - 1);
        normals[lane] = directionOfCubeTexel(side, column, tiles.face * side + row);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            tile.sums.normals[axis][lane] = static_cast<float>(normals[lane][axis]);
            tile.middle[axis] += normals[lane][axis];
        }
    }
    const double length = std::hypot(tile.middle[0], tile.middle[1], tile.middle[2]);
    for (double& part : tile.middle)
        part /= length;
    for (const Direction& normal : normals)
        tile.radius = std::max(tile.radius, std::hypot(normal[0] - tile.middle[0], normal[1] - tile.middle[1],
                                                       normal[2] - tile.middle[2]));
    return tile;
}

void storeTile(const Tile& tile, const TileRow& tiles, unsigned int left) {
    const unsigned int side = tiles.mip->getWidth();
    auto* const texels = reinterpret_cast<float*>(tiles.mip->getBytes().data());
    for (unsigned int lane = 0; lane < LOBE_LANES; ++lane) {
        const unsigned int column = left + lane % TILE;
        const unsigned int row = tiles.top + lane / TILE;
        if (column >= side || row >= side)
            continue;
        float* const texel =
            texels + (std::size_t{tiles.face * side + row} * side + column) * FILTERED_CHANNELS;
        for (std::size_t color = 0; color < 3; ++color)
            texel[color] = static_cast<float>(tile.sums.sums[color][lane] / tiles.lobe->integral);
        texel[3] = 1.0f;
    }
}

void filterTiles(const LightTree& tree, const TileRow& tiles) {
    const AddLights addLights = lobeSumOf(canLobeSumUseAvx2());
    const LobeShape shape = {static_cast<float>(tiles.lobe->flatness),
                             static_cast<float>(tiles.lobe->steepness)};
    ovMemory::Buffer<PointLight> lights;
    for (unsigned int left = 0; left < tiles.mip->getWidth(); left += TILE) {
        Tile tile = placeTile(tiles, left);
        lights.clear();
        tree.gather(tile.middle, tile.radius, tiles.lobe->width, lights);
        addLights(lights, shape, tile.sums);
        storeTile(tile, tiles, left);
    }
}

/// Whether sums over texels are as smooth as the lobe. Texels a third of its half width apart are.
bool isFineEnough(const EnvironmentTexels& environment, double lobeWidth) {
    const unsigned int equator = environment.getHeight() / 2;
    const double widest = environment.getTexelHeight() * std::max(1.0, environment.getStretch(equator));
    return widest <= lobeWidth / 3.0;
}

} // namespace

unsigned int countPrefilteredMips(unsigned int side) {
    unsigned int mips = 0;
    for (; side >= SMALLEST_SIDE; side /= 2)
        ++mips;
    return mips;
}

ovMemory::Buffer<ovImages::Image> prefilterEnvironment(const EnvironmentTexels& environment,
                                                       unsigned int side,
                                                       const ovCommon::WorkProgress& progress) {
    const unsigned int mipCount = countPrefilteredMips(side);
    if (mipCount == 0)
        return {};
    ovMemory::Buffer<ovImages::Image> mips;
    mips.push_back(drawEnvironmentCube(environment, side));
    ovMemory::Buffer<GgxLobe> lobes(mipCount);
    for (unsigned int mip = 1; mip < mipCount; ++mip) {
        lobes[mip] = ggxLobeOf(static_cast<double>(mip) / (mipCount - 1));
        const unsigned int mipSide = side >> mip;
        mips.emplace_back(mipSide, mipSide * ENVIRONMENT_FACES, FILTERED_CHANNELS,
                          ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    }
    if (std::ranges::any_of(mips, [](const ovImages::Image& mip) { return mip.isEmpty(); }))
        return {};
    if (mipCount == 1)
        return mips;
    ovMemory::Buffer<TileRow> work;
    for (unsigned int mip = 1; mip < mipCount; ++mip) {
        for (unsigned int face = 0; face < ENVIRONMENT_FACES; ++face) {
            for (unsigned int top = 0; top < mips[mip].getWidth(); top += TILE)
                work.push_back({&mips[mip], &lobes[mip], face, top});
        }
    }
    // Of a coarse environment the texels would show as spots: its interpolation is summed instead.
    const EnvironmentTexels interpolated(mips.front().view(), true);
    const LightTree tree(isFineEnough(environment, lobes[1].width) ? environment : interpolated,
                         lobes[1].width);
    ovCommon::parallelFor(work.size(), progress, [&](std::size_t i) { filterTiles(tree, work[i]); });
    return mips;
}

} // namespace ovVeldris
