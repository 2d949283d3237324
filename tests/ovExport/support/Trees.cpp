#include <bit>
#include <cmath>
#include <ovExport/support/Trees.h>

namespace ovExport {

namespace {

bool isReal(const Node& node) {
    return node.getNodeValueType() >= NODE_VALUE_TYPE::FLOAT;
}

bool haveEqualBits(double first, double second) {
    return (std::isnan(first) && std::isnan(second)) ||
           std::bit_cast<std::uint64_t>(first) == std::bit_cast<std::uint64_t>(second);
}

bool haveEqualNumbers(const Node& first, const Node& second) {
    if (first.getNodeValueType() == NODE_VALUE_TYPE::FLOAT)
        return haveEqualBits(first.getValueAsFloat(), second.getValueAsFloat());
    if (isReal(first))
        return haveEqualBits(first.getValueAsDouble(), second.getValueAsDouble());
    return !isReal(second) && first.getValueAsInt64() == second.getValueAsInt64() &&
           first.getValueAsUint64() == second.getValueAsUint64();
}

ovMemory::String compareValues(const Node& first, const Node& second, bool sameTypes) {
    if (first.getNodeNature() != second.getNodeNature())
        return "natures differ";
    if (sameTypes && first.getNodeValueType() != second.getNodeValueType())
        return "value types differ";
    if (first.isValueTypeNumber()) {
        const bool isReadable = second.isValueTypeNumber() || !std::isfinite(first.getValueAsDouble());
        return isReadable && haveEqualNumbers(first, second)
                   ? ""
                   : first.getValueAsString() + " became " + second.getValueAsString();
    }
    if (first.getNodeValueType() != second.getNodeValueType())
        return "value types differ";
    if (first.getValueAsString() != second.getValueAsString())
        return "'" + first.getValueAsString() + "' became '" + second.getValueAsString() + "'";
    const bool sameSizes =
        first.getMemberCount() == second.getMemberCount() && first.getArraySize() == second.getArraySize();
    return sameSizes ? "" : "numbers of children differ";
}

} // namespace

ovMemory::String findDifference(const Node& first, const Node& second, bool sameTypes) {
    struct Pair {
        const Node* first;
        const Node* second;
    };
    ovMemory::Buffer<Pair> open = {{&first, &second}};
    while (!open.empty()) {
        const Pair pair = open.back();
        open.pop_back();
        const ovMemory::String difference = compareValues(*pair.first, *pair.second, sameTypes);
        if (!difference.empty())
            return difference;
        for (unsigned int i = 0; i < pair.first->getArraySize(); ++i)
            open.push_back({pair.first->getArrayElement(i), pair.second->getArrayElement(i)});
        for (unsigned int i = 0; i < pair.first->getMemberCount(); ++i) {
            if (pair.first->getMemberKey(i) != pair.second->getMemberKey(i))
                return "names differ: " + ovMemory::String(pair.first->getMemberKey(i));
            open.push_back({pair.first->getMemberValueIndex(i), pair.second->getMemberValueIndex(i)});
        }
    }
    return {};
}

ovMemory::UniquePtr<Node> RandomTrees::makeTree(bool finiteOnly) {
    constexpr unsigned int DEPTH = 5;
    auto root = Node::create();
    _fill(*root, DEPTH, finiteOnly);
    return root;
}

void RandomTrees::_fill(Node& node, unsigned int depth, bool finiteOnly) {
    constexpr unsigned int MOST_CHILDREN = 8;
    switch (pick(depth > 0 ? 12 : 8)) {
    case 0:
        return node.setAsNull();
    case 1:
        return node.setAsBool(pick(2) == 0);
    case 2:
    case 3:
        return node.setAsString(_makeText());
    case 4:
    case 5:
    case 6:
    case 7:
        return _fillNumber(node, finiteOnly);
    case 8:
    case 9:
        node.setAsArray();
        for (unsigned int count = pick(MOST_CHILDREN); count > 0; --count)
            _fill(*node.addElement(), depth - 1, finiteOnly);
        return;
    default:
        node.setAsObject();
        for (unsigned int count = pick(MOST_CHILDREN); count > 0; --count)
            _fill(*node.addMember(_makeText()), depth - 1, finiteOnly);
    }
}

void RandomTrees::_fillNumber(Node& node, bool finiteOnly) {
    // All exponents, and all widths of integers.
    const std::uint64_t bits = _random() >> pick(64);
    switch (pick(8)) {
    case 0:
        return node.setAsInt(static_cast<int>(bits));
    case 1:
        return node.setAsUint(static_cast<unsigned int>(bits));
    case 2:
        return node.setAsInt64(static_cast<std::int64_t>(pick(2) == 0 ? bits : ~bits));
    case 3:
        return node.setAsUint64(bits);
    case 4:
        return node.setAsDouble(static_cast<double>(pick(2000000)) / 1000.0 - 1000.0);
    case 5:
        return node.setAsFloat(static_cast<float>(pick(2000000)) / 1000.0f - 1000.0f);
    case 6: {
        const auto value = std::bit_cast<double>(_random());
        return node.setAsDouble(finiteOnly && !std::isfinite(value) ? -0.0 : value);
    }
    default: {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(_random()));
        return node.setAsFloat(finiteOnly && !std::isfinite(value) ? -0.0f : value);
    }
    }
}

ovMemory::String RandomTrees::_makeText() {
    static const ovMemory::String PIECES[] = {"a",
                                              "name",
                                              " ",
                                              "\"",
                                              "\\",
                                              "/",
                                              "\n",
                                              "\t",
                                              "\x01",
                                              "\x1f",
                                              "\x7f",
                                              "\xc3\xa9",
                                              "\xdf\xbf",
                                              "\xe2\x82\xac",
                                              "\xef\xbf\xbf",
                                              "\xf0\x9f\x98\x80",
                                              "\xf4\x8f\xbf\xbf",
                                              "\\u0041",
                                              "0123456789abcdef",
                                              ovMemory::String(1, '\0')};
    ovMemory::String text;
    for (unsigned int count = pick(12); count > 0; --count)
        text += PIECES[pick(std::size(PIECES))];
    return text;
}

} // namespace ovExport
