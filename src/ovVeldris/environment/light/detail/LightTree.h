// Environments as lights: few where they are far, every texel where it matters.
#pragma once

#include <ovVeldris/environment/light/EnvironmentTexels.h>
#include <ovVeldris/environment/light/detail/LobeSum.h>

namespace ovVeldris {

/// A tree over the texels of an environment (J. Barnes, P. Hut: A Hierarchical O(N log N) Force-Calculation
/// Algorithm, 1986). A node knows the light of its texels, and the mean and the variance of their directions
/// by light. From far enough it stands for all of them. When one sun is most of its light, it stands for them
/// exactly.
///
/// Its size follows from the lobes: 9 MB for the mips of a cube of 256, and 3 bytes a texel of larger
/// environments. Black parts take part in nothing.
class OV_API LightTree {
public:
    /// @param environment kept by reference: it must outlive the tree
    /// @param narrowest the width of the narrowest lobe that will be gathered for, see GgxLobe: what is much
    ///        smaller needs no node
    LightTree(const EnvironmentTexels& environment, double narrowest);

    /// Appends the lights by which a lobe may be summed around every direction within a chord of another.
    /// @param middle of length 1
    /// @param radius chord around the middle that holds all normals
    /// @param width the lobe's, see GgxLobe
    void gather(const Direction& middle, double radius, double width,
                ovMemory::Buffer<PointLight>& lights) const;

private:
    /// A rectangle of texels.
    struct Block {
        unsigned int column;
        unsigned int row;
        unsigned int width;
        unsigned int height;
    };
    /// What the texels of a block add up to.
    struct Moments {
        std::array<double, 3> power = {};         ///< of each colour
        std::array<Direction, 3> directions = {}; ///< of each colour: power times direction
        double radius = 0.0;     ///< of a ball around the mean direction that holds all texels with light
        bool isBright = false;   ///< some texel
        double getPower() const; ///< of all colours
        Direction getMean() const;
    };
    struct Node {
        PointLight light = {};
        float reach = 0.0f;        ///< chord from which on the node stands for its texels
        float horizonReach = 0.0f; ///< the same where the lobe ends among them
        unsigned int end = 0;      ///< number of the node that follows its subtree
        unsigned int texels = 0;   ///< number of its block when it is a leaf, else NO_TEXELS
    };
    /// The subtree of a part of the environment, each node before its children.
    struct Branch {
        ovMemory::Buffer<Node> nodes;
        ovMemory::Buffer<Block> leaves;
    };

    static float _reachOf(const Moments& moments);
    ovMemory::Buffer<Block> _split() const;
    bool _isLeaf(const Block& block) const;
    std::array<Block, 2> _halve(const Block& block) const;
    Moments _append(const Block& block, Branch& branch) const;
    static Moments _join(const std::array<Moments, 2>& halves);
    Moments _sumTexels(const Block& block) const;
    void _gatherTexels(const Block& block, ovMemory::Buffer<PointLight>& lights) const;

    const EnvironmentTexels& _environment;
    double _leafRows; ///< a leaf is at most so high, and so wide as it is seen
    double _bright;   ///< the light of a texel, its colours added, from which on it is bright
    ovMemory::Buffer<Branch> _branches;
};

} // namespace ovVeldris
