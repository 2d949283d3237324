#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <ovExport/Node.h>
#include <type_traits>

namespace {

using namespace ovExport;

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr float LARGEST_FLOAT = std::numeric_limits<float>::max();
constexpr std::int64_t LOWEST_INT64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t LARGEST_INT64 = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t LARGEST_UINT64 = std::numeric_limits<std::uint64_t>::max();

static_assert(static_cast<int>(NODE_NATURE::UNKNOWN) == 0 && static_cast<int>(NODE_NATURE::VALUE) == 1 &&
              static_cast<int>(NODE_NATURE::OBJECT) == 2 && static_cast<int>(NODE_NATURE::ARRAY) == 3);
static_assert(static_cast<int>(NODE_VALUE_TYPE::UNKNOWN) == 0 &&
              static_cast<int>(NODE_VALUE_TYPE::BOOL) == 1 &&
              static_cast<int>(NODE_VALUE_TYPE::STRING) == 2 && static_cast<int>(NODE_VALUE_TYPE::INT) == 3 &&
              static_cast<int>(NODE_VALUE_TYPE::UINT) == 4 && static_cast<int>(NODE_VALUE_TYPE::INT64) == 5 &&
              static_cast<int>(NODE_VALUE_TYPE::UINT64) == 6 &&
              static_cast<int>(NODE_VALUE_TYPE::FLOAT) == 7 &&
              static_cast<int>(NODE_VALUE_TYPE::DOUBLE) == 8);
static_assert(!std::is_copy_constructible_v<Node> && !std::is_copy_assignable_v<Node>);

TEST(NodeTest, createGivesAnEmptyRootOfItsNature) {
    EXPECT_TRUE(Node::create()->isObject());
    for (const NODE_NATURE nature : {NODE_NATURE::OBJECT, NODE_NATURE::ARRAY, NODE_NATURE::UNKNOWN}) {
        const auto root = Node::create(nature);
        EXPECT_EQ(root->getNodeNature(), nature);
        EXPECT_EQ(root->getNodeValueType(), NODE_VALUE_TYPE::UNKNOWN);
        EXPECT_EQ(root->getSourceIndex(), Node::NO_SOURCE_INDEX);
        EXPECT_EQ(root->getArraySize() + root->getMemberCount(), 0u);
    }
    EXPECT_EQ(Node::create(NODE_NATURE::VALUE)->getNodeNature(), NODE_NATURE::UNKNOWN);
}

TEST(NodeTest, membersAreFoundByNameAndByPlace) {
    const auto root = Node::create();
    const ovMemory::String names[] = {"b", "a", "", ovMemory::String("a\0b", 3), "A"};
    for (unsigned int i = 0; i < std::size(names); ++i)
        root->addMember(names[i])->setAsUint(i);
    const Node& tree = *root;
    ASSERT_EQ(tree.getMemberCount(), std::size(names));
    for (unsigned int i = 0; i < std::size(names); ++i) {
        EXPECT_EQ(tree.getMemberKey(i), names[i]);
        ASSERT_NE(tree.getMemberValue(names[i]), nullptr);
        EXPECT_EQ(tree.getMemberValue(names[i])->getValueAsUint(), i);
        EXPECT_EQ(tree.getMemberValueIndex(i), tree.getMemberValue(names[i]));
        EXPECT_EQ(root->getMemberValueIndex(i), root->getMemberValue(names[i]));
    }
    EXPECT_EQ(tree.getMemberValue("c"), nullptr);
    EXPECT_EQ(tree.getMemberValueIndex(std::size(names)), nullptr);
    EXPECT_EQ(tree.getMemberKey(std::size(names)), "");
    EXPECT_EQ(tree.getArraySize(), 0u);
    EXPECT_EQ(tree.getArrayElement(0), nullptr);
    EXPECT_EQ(root->getArrayElement(0), nullptr);
}

TEST(NodeTest, addMemberOfAnExistingNameGivesTheExistingOneAsItIs) {
    const auto root = Node::create();
    Node* const first = root->addMember("type");
    first->setAsString("base");
    root->addMember("other");
    Node* const again = root->addMember("type");
    EXPECT_EQ(again, first);
    EXPECT_EQ(again->getValueAsString(), "base");
    EXPECT_EQ(root->getMemberCount(), 2u);
}

TEST(NodeTest, elementsKeepTheirOrderAndTheirAddresses) {
    constexpr unsigned int COUNT = 10000;
    const auto root = Node::create(NODE_NATURE::ARRAY);
    ovMemory::Buffer<Node*> added;
    for (unsigned int i = 0; i < COUNT; ++i) {
        added.push_back(root->addElement());
        added.back()->setAsUint(i);
    }
    const Node& tree = *root;
    ASSERT_EQ(tree.getArraySize(), COUNT);
    for (unsigned int i = 0; i < COUNT; ++i) {
        ASSERT_EQ(tree.getArrayElement(i), added[i]);
        ASSERT_EQ(added[i]->getValueAsUint(), i);
    }
    EXPECT_EQ(tree.getArrayElement(COUNT), nullptr);
    EXPECT_EQ(tree.getMemberCount(), 0u);
    EXPECT_EQ(tree.getMemberValue(""), nullptr);
    EXPECT_EQ(tree.getMemberValueIndex(0), nullptr);
    EXPECT_EQ(tree.getMemberKey(0), "");
}

TEST(NodeTest, whatIsDoneToANodeDecidesItsNature) {
    const auto root = Node::create();
    Node* const node = root->addMember("node");
    EXPECT_EQ(node->getNodeNature(), NODE_NATURE::UNKNOWN);
    struct Case {
        void (*change)(Node&);
        NODE_NATURE nature;
        NODE_VALUE_TYPE type;
    };
    const Case cases[] = {
        {[](Node& changed) { changed.addElement(); }, NODE_NATURE::ARRAY, NODE_VALUE_TYPE::UNKNOWN},
        {[](Node& changed) { changed.addMember("a"); }, NODE_NATURE::OBJECT, NODE_VALUE_TYPE::UNKNOWN},
        {[](Node& changed) { changed.setAsString("a"); }, NODE_NATURE::VALUE, NODE_VALUE_TYPE::STRING},
        {[](Node& changed) { changed.setAsInt(1); }, NODE_NATURE::VALUE, NODE_VALUE_TYPE::INT},
        {[](Node& changed) { changed.setAsUint(1); }, NODE_NATURE::VALUE, NODE_VALUE_TYPE::UINT},
        {[](Node& changed) { changed.setAsInt64(1); }, NODE_NATURE::VALUE, NODE_VALUE_TYPE::INT64},
        {[](Node& changed) { changed.setAsUint64(1); }, NODE_NATURE::VALUE, NODE_VALUE_TYPE::UINT64},
        {[](Node& changed) { changed.setAsFloat(1); }, NODE_NATURE::VALUE, NODE_VALUE_TYPE::FLOAT},
        {[](Node& changed) { changed.setAsDouble(1); }, NODE_NATURE::VALUE, NODE_VALUE_TYPE::DOUBLE},
        {[](Node& changed) { changed.setAsBool(true); }, NODE_NATURE::VALUE, NODE_VALUE_TYPE::BOOL},
        {[](Node& changed) { changed.setAsObject(); }, NODE_NATURE::OBJECT, NODE_VALUE_TYPE::UNKNOWN},
        {[](Node& changed) { changed.setAsArray(); }, NODE_NATURE::ARRAY, NODE_VALUE_TYPE::UNKNOWN},
        {[](Node& changed) { changed.setAsNull(); }, NODE_NATURE::UNKNOWN, NODE_VALUE_TYPE::UNKNOWN},
    };
    // From each to each.
    for (std::size_t before = 0; before < std::size(cases); ++before)
        for (std::size_t after = 0; after < std::size(cases); ++after) {
            cases[before].change(*node);
            cases[after].change(*node);
            EXPECT_EQ(node->getNodeNature(), cases[after].nature) << before << " to " << after;
            EXPECT_EQ(node->getNodeValueType(), cases[after].type) << before << " to " << after;
            EXPECT_EQ(node->isObject(), cases[after].nature == NODE_NATURE::OBJECT);
            EXPECT_EQ(node->isArray(), cases[after].nature == NODE_NATURE::ARRAY);
            EXPECT_EQ(node->isString(), cases[after].type == NODE_VALUE_TYPE::STRING);
            EXPECT_EQ(node->isBool(), cases[after].type == NODE_VALUE_TYPE::BOOL);
            EXPECT_EQ(node->isValueTypeNumber(), cases[after].type >= NODE_VALUE_TYPE::INT);
            const unsigned int most = after == before ? 2 : 1;
            EXPECT_LE(node->getArraySize() + node->getMemberCount(), most) << before << " to " << after;
        }
    EXPECT_EQ(root->getMemberValue("node"), node);
}

TEST(NodeTest, childrenOfAReplacedNodeStayUsable) {
    const auto root = Node::create();
    Node* const child = root->addMember("list")->addElement();
    child->setAsString("kept");
    root->getMemberValue("list")->setAsInt(1);
    EXPECT_EQ(child->getValueAsString(), "kept");
    EXPECT_EQ(root->getMemberValue("list")->getArraySize(), 0u);
}

TEST(NodeTest, stringsAreCopiedAlsoFromTheirOwnNode) {
    const auto root = Node::create(NODE_NATURE::UNKNOWN);
    const ovMemory::String longText(100000, 'x');
    for (const ovMemory::String& text :
         {ovMemory::String(), ovMemory::String("short"), longText, ovMemory::String("a\0b\0", 4),
          ovMemory::String("\xff\xfe"), ovMemory::String("longer than before")}) {
        ovMemory::String source = text;
        root->setAsString(source);
        source.assign(source.size(), '!');
        EXPECT_EQ(root->getValueAsStringView(), text);
        EXPECT_EQ(root->getValueAsString(), text);
    }
    root->setAsString(root->getValueAsStringView().substr(7, 4));
    EXPECT_EQ(root->getValueAsString(), "than");
    root->setAsString(ovMemory::StringView());
    EXPECT_TRUE(root->isString());
    EXPECT_EQ(root->getValueAsString(), "");
}

struct Conversion {
    const char* label;
    void (*set)(Node&);
    ovMemory::String text;
    int asInt;
    unsigned int asUint;
    std::int64_t asInt64;
    std::uint64_t asUint64;
    float asFloat;
    double asDouble;
    bool asBool;
};

void expectConversions(const Conversion& row) {
    SCOPED_TRACE(row.label);
    const auto node = Node::create(NODE_NATURE::UNKNOWN);
    row.set(*node);
    EXPECT_EQ(node->getValueAsString(), row.text);
    EXPECT_EQ(node->getValueAsStringView(), node->isString() ? row.text : "");
    EXPECT_EQ(node->getValueAsInt(), row.asInt);
    EXPECT_EQ(node->getValueAsUint(), row.asUint);
    EXPECT_EQ(node->getValueAsInt64(), row.asInt64);
    EXPECT_EQ(node->getValueAsUint64(), row.asUint64);
    EXPECT_EQ(node->getValueAsBool(), row.asBool);
    EXPECT_EQ(std::isnan(node->getValueAsFloat()), std::isnan(row.asFloat));
    EXPECT_EQ(std::isnan(node->getValueAsDouble()), std::isnan(row.asDouble));
    if (std::isnan(row.asDouble))
        return;
    EXPECT_EQ(node->getValueAsFloat(), row.asFloat);
    EXPECT_EQ(node->getValueAsDouble(), row.asDouble);
    EXPECT_EQ(std::signbit(node->getValueAsDouble()), std::signbit(row.asDouble));
}

TEST(NodeTest, numbersConvertToTheNearestOfTheOtherType) {
    constexpr int MIN = std::numeric_limits<int>::min();
    constexpr int MAX = std::numeric_limits<int>::max();
    constexpr unsigned int UMAX = std::numeric_limits<unsigned int>::max();
    const Conversion rows[] = {
        {"0", [](Node& n) { n.setAsInt(0); }, "0", 0, 0, 0, 0, 0, 0, false},
        {"-1", [](Node& n) { n.setAsInt(-1); }, "-1", -1, 0, -1, 0, -1, -1, true},
        {"int min", [](Node& n) { n.setAsInt(MIN); }, "-2147483648", MIN, 0, MIN, 0, -2147483648.0f,
         -2147483648.0, true},
        {"uint max", [](Node& n) { n.setAsUint(UMAX); }, "4294967295", MAX, UMAX, UMAX, UMAX, 4294967296.0f,
         4294967295.0, true},
        {"int64 min", [](Node& n) { n.setAsInt64(LOWEST_INT64); }, "-9223372036854775808", MIN, 0,
         LOWEST_INT64, 0, -9223372036854775808.0f, -9223372036854775808.0, true},
        {"int64 max", [](Node& n) { n.setAsInt64(LARGEST_INT64); }, "9223372036854775807", MAX, UMAX,
         LARGEST_INT64, 9223372036854775807ull, 9223372036854775808.0f, 9223372036854775808.0, true},
        {"uint64 max", [](Node& n) { n.setAsUint64(LARGEST_UINT64); }, "18446744073709551615", MAX, UMAX,
         LARGEST_INT64, LARGEST_UINT64, 18446744073709551616.0f, 18446744073709551616.0, true},
        // Rounded once: by way of a double, this would become 2^60.
        {"2^60 + 2^36 + 1", [](Node& n) { n.setAsInt64((1ll << 60) + (1ll << 36) + 1); },
         "1152921573326323713", MAX, UMAX, (1ll << 60) + (1ll << 36) + 1, (1ull << 60) + (1ull << 36) + 1,
         1152921642045800448.0f, 1152921573326323712.0, true},
        {"2.9", [](Node& n) { n.setAsDouble(2.9); }, "2.9", 2, 2, 2, 2, 2.9f, 2.9, true},
        {"-2.9", [](Node& n) { n.setAsDouble(-2.9); }, "-2.9", -2, 0, -2, 0, -2.9f, -2.9, true},
        {"-0.0", [](Node& n) { n.setAsDouble(-0.0); }, "-0.0", 0, 0, 0, 0, -0.0f, -0.0, false},
        {"0.1f", [](Node& n) { n.setAsFloat(0.1f); }, "0.1", 0, 0, 0, 0, 0.1f, double(0.1f), true},
        {"2^53 + 2", [](Node& n) { n.setAsDouble(9007199254740994.0); }, "9.007199254740994e+15", MAX, UMAX,
         9007199254740994, 9007199254740994, 9007199254740992.0f, 9007199254740994.0, true},
        {"2^63", [](Node& n) { n.setAsDouble(9223372036854775808.0); }, "9.223372036854776e+18", MAX, UMAX,
         LARGEST_INT64, 1ull << 63, 9223372036854775808.0f, 9223372036854775808.0, true},
        {"1e300", [](Node& n) { n.setAsDouble(1e300); }, "1e+300", MAX, UMAX, LARGEST_INT64, LARGEST_UINT64,
         LARGEST_FLOAT, 1e300, true},
        {"-1e300", [](Node& n) { n.setAsDouble(-1e300); }, "-1e+300", MIN, 0, LOWEST_INT64, 0, -LARGEST_FLOAT,
         -1e300, true},
        {"smallest double", [](Node& n) { n.setAsDouble(5e-324); }, "5e-324", 0, 0, 0, 0, 0, 5e-324, true},
        {"infinity", [](Node& n) { n.setAsDouble(INFINITE); }, "Infinity", MAX, UMAX, LARGEST_INT64,
         LARGEST_UINT64, float(INFINITE), INFINITE, true},
        {"-infinity", [](Node& n) { n.setAsFloat(float(-INFINITE)); }, "-Infinity", MIN, 0, LOWEST_INT64, 0,
         float(-INFINITE), -INFINITE, true},
        {"NaN", [](Node& n) { n.setAsDouble(NOT_A_NUMBER); }, "NaN", 0, 0, 0, 0, float(NOT_A_NUMBER),
         NOT_A_NUMBER, false},
    };
    for (const Conversion& row : rows)
        expectConversions(row);
}

TEST(NodeTest, whatIsNoNumberConvertsToo) {
    const Conversion rows[] = {
        {"true", [](Node& n) { n.setAsBool(true); }, "true", 1, 1, 1, 1, 1, 1, true},
        {"false", [](Node& n) { n.setAsBool(false); }, "false", 0, 0, 0, 0, 0, 0, false},
        {"null", [](Node&) {}, "", 0, 0, 0, 0, 0, 0, false},
        {"array", [](Node& n) { n.addElement()->setAsInt(1); }, "", 0, 0, 0, 0, 0, 0, false},
        {"object", [](Node& n) { n.addMember("a")->setAsInt(1); }, "", 0, 0, 0, 0, 0, 0, false},
        {"text", [](Node& n) { n.setAsString("gold"); }, "gold", 0, 0, 0, 0, 0, 0, false},
        {"empty", [](Node& n) { n.setAsString(""); }, "", 0, 0, 0, 0, 0, 0, false},
        {"'true'", [](Node& n) { n.setAsString("true"); }, "true", 0, 0, 0, 0, 0, 0, true},
        {"'0.5'", [](Node& n) { n.setAsString("0.5"); }, "0.5", 0, 0, 0, 0, 0.5f, 0.5, true},
        {"'-3'", [](Node& n) { n.setAsString("-3"); }, "-3", -3, 0, -3, 0, -3, -3, true},
        {"'0'", [](Node& n) { n.setAsString("0"); }, "0", 0, 0, 0, 0, 0, 0, false},
        {"'9007199254740993'", [](Node& n) { n.setAsString("9007199254740993"); }, "9007199254740993",
         std::numeric_limits<int>::max(), std::numeric_limits<unsigned int>::max(), 9007199254740993,
         9007199254740993, 9007199254740992.0f, 9007199254740992.0, true},
        {"'1 '", [](Node& n) { n.setAsString("1 "); }, "1 ", 0, 0, 0, 0, 0, 0, false},
        {"'+1'", [](Node& n) { n.setAsString("+1"); }, "+1", 0, 0, 0, 0, 0, 0, false},
        {"'1e400'", [](Node& n) { n.setAsString("1e400"); }, "1e400", 0, 0, 0, 0, 0, 0, false},
        {"'NaN'", [](Node& n) { n.setAsString("NaN"); }, "NaN", 0, 0, 0, 0, float(NOT_A_NUMBER), NOT_A_NUMBER,
         false},
        {"'-Infinity'", [](Node& n) { n.setAsString("-Infinity"); }, "-Infinity",
         std::numeric_limits<int>::min(), 0, LOWEST_INT64, 0, float(-INFINITE), -INFINITE, true},
    };
    for (const Conversion& row : rows)
        expectConversions(row);
}

} // namespace
