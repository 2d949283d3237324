// Trees to test with: compared, made at random.
#pragma once

#include <ovExport/Node.h>
#include <random>

namespace ovExport {

/// Where two trees differ first, or an empty text. Values must be equal bit for bit (NaN equals NaN), names
/// and orders too; does not recurse.
/// @param sameTypes false when second was read from the text of first: a number of first then only has to
///        come back as that number, and NaN and infinities as strings that stand for them
ovMemory::String findDifference(const Node& first, const Node& second, bool sameTypes);

/// Makes trees of all natures, value types and kinds of text from a fixed seed.
class RandomTrees {
public:
    explicit RandomTrees(unsigned int seed)
        : _random(seed) {}

    /// @param finiteOnly no NaN and no infinities
    ovMemory::UniquePtr<Node> makeTree(bool finiteOnly);

    /// A number in [0, limit).
    unsigned int pick(unsigned int limit) { return static_cast<unsigned int>(_random() % limit); }

private:
    void _fill(Node& node, unsigned int depth, bool finiteOnly);
    void _fillNumber(Node& node, bool finiteOnly);
    ovMemory::String _makeText();

    std::mt19937_64 _random;
};

} // namespace ovExport
