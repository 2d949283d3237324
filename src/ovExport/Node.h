// Trees of named values: what JSON documents are read into and written from.
#pragma once

#include <cstdint>
#include <ovCommon/Api.h>
#include <ovMemory/Borrowed.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Memory.h>

namespace ovExport {

namespace detail {
class JsonReader;
class NodeArena;
struct NodeBlock;
struct Number;
} // namespace detail

/// What a node is. The numbers are fixed: scripts see them.
enum class NODE_NATURE : unsigned int {
    UNKNOWN = 0, ///< nothing was put in: null in JSON
    VALUE = 1,   ///< a string, a number or a bool; getNodeValueType() tells which
    OBJECT = 2,  ///< named members, in order
    ARRAY = 3    ///< elements, in order
};

inline constexpr ovMemory::EnumEntry<NODE_NATURE> NODE_NATURE_ENTRIES[] = {
    {NODE_NATURE::UNKNOWN, "UNKNOWN"},
    {NODE_NATURE::VALUE, "VALUE"},
    {NODE_NATURE::OBJECT, "OBJECT"},
    {NODE_NATURE::ARRAY, "ARRAY"},
};
constexpr ovMemory::EnumTable<NODE_NATURE> enumTable(NODE_NATURE) {
    return {"NODE_NATURE", NODE_NATURE_ENTRIES};
}

/// What a node of the nature VALUE holds. The numbers are fixed: scripts see them.
///
/// Reading a text gives a whole number the first of INT, UINT, INT64, UINT64 that holds it; a number that is
/// written with a point or an exponent, -0, and a whole number beyond all four give DOUBLE.
enum class NODE_VALUE_TYPE : unsigned int {
    UNKNOWN = 0, ///< the node is not of the nature VALUE
    BOOL = 1,
    STRING = 2,
    INT = 3,    ///< 32 bits, signed
    UINT = 4,   ///< 32 bits, unsigned
    INT64 = 5,  ///< 64 bits, signed
    UINT64 = 6, ///< 64 bits, unsigned
    FLOAT = 7,  ///< never read from a text, only set
    DOUBLE = 8
};

inline constexpr ovMemory::EnumEntry<NODE_VALUE_TYPE> NODE_VALUE_TYPE_ENTRIES[] = {
    {NODE_VALUE_TYPE::UNKNOWN, "UNKNOWN"}, {NODE_VALUE_TYPE::BOOL, "BOOL"},
    {NODE_VALUE_TYPE::STRING, "STRING"},   {NODE_VALUE_TYPE::INT, "INT"},
    {NODE_VALUE_TYPE::UINT, "UINT"},       {NODE_VALUE_TYPE::INT64, "INT64"},
    {NODE_VALUE_TYPE::UINT64, "UINT64"},   {NODE_VALUE_TYPE::FLOAT, "FLOAT"},
    {NODE_VALUE_TYPE::DOUBLE, "DOUBLE"},
};
constexpr ovMemory::EnumTable<NODE_VALUE_TYPE> enumTable(NODE_VALUE_TYPE) {
    return {"NODE_VALUE_TYPE", NODE_VALUE_TYPE_ENTRIES};
}

/// One node of a tree: a value, an object of named members or an array of elements.
///
/// The root owns the whole tree: whoever holds the UniquePtr from create() or from a reader owns all, and
/// every Node* below it stays valid, at the same address, until the root is destroyed (also when its parent
/// becomes something else: then it is only no longer part of the tree). Nodes below the root are never
/// deleted by hand. All memory of a tree, that of nodes added later included, comes from one arena that is
/// freed as a whole with the root; what is replaced stays in it until then.
///
/// A node changes its nature by what is done to it: setAs...() makes it a value, addMember() an object,
/// addElement() an array; what it held before is dropped.
///
/// Trees may be of any depth: no operation recurses. Several threads may read one tree at once; changing any
/// of its nodes must not run beside anything else on that tree.
class OV_API Node {
public:
    /// getSourceIndex() of a node that does not come from a text.
    static constexpr std::uint32_t NO_SOURCE_INDEX = 0xffffffffu;

    /// A new root.
    /// @param nature OBJECT or ARRAY, empty; UNKNOWN, and VALUE, which has no value yet, hold nothing (null)
    static ovMemory::UniquePtr<Node> create(NODE_NATURE nature = NODE_NATURE::OBJECT);

    /// Frees the whole tree; roots only.
    ~Node();
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    /// What is destroyed together with the whole tree; BorrowedNode hangs on it.
    ovMemory::Borrowable& getTree() const;

    NODE_NATURE getNodeNature() const { return _record.nature; }
    /// UNKNOWN unless the nature is VALUE.
    NODE_VALUE_TYPE getNodeValueType() const { return _record.type; }
    bool isObject() const { return _record.nature == NODE_NATURE::OBJECT; }
    bool isArray() const { return _record.nature == NODE_NATURE::ARRAY; }
    bool isString() const { return _record.type == NODE_VALUE_TYPE::STRING; }
    bool isBool() const { return _record.type == NODE_VALUE_TYPE::BOOL; }
    /// Whether the node holds a number of any width.
    bool isValueTypeNumber() const { return _record.type >= NODE_VALUE_TYPE::INT; }

    /// Where the node's text begins, in bytes from the beginning of the text that it was read from, 4 GiB at
    /// most; for a member that is its value, not its name. NO_SOURCE_INDEX for nodes that were added by hand.
    /// findTextPosition() makes a line and a column of it.
    std::uint32_t getSourceIndex() const { return _record.sourceIndex; }

    /// Bytes that the memory of the whole tree takes.
    std::size_t getTreeBytes() const;

    /// Number of elements; 0 if this is not an array.
    unsigned int getArraySize() const;
    /// An element, or null if this is not an array or has no such element. Takes logarithmic time in the
    /// number of elements that were added by hand, constant time in those that were read.
    Node* getArrayElement(unsigned int index);
    const Node* getArrayElement(unsigned int index) const;

    /// Number of members, those with equal names included; 0 if this is not an object.
    unsigned int getMemberCount() const;
    /// Name of a member; empty if this is not an object or has no such member. Valid as long as the tree.
    ovMemory::StringView getMemberKey(unsigned int index) const;
    /// A member by its name, compared byte for byte; null if this is not an object or lacks the name. Of
    /// several with one name, as a text may have them, the first. Takes linear time in the number of members.
    Node* getMemberValue(ovMemory::StringView name);
    const Node* getMemberValue(ovMemory::StringView name) const;
    /// A member by its place in the order; null if this is not an object or has no such member.
    Node* getMemberValueIndex(unsigned int index);
    const Node* getMemberValueIndex(unsigned int index) const;

    /// The value as text: a string as it is, a bool as "true" or "false", a number as a JSON text would have
    /// it (NaN and infinities as "NaN", "Infinity" and "-Infinity"). Empty if this is not a value.
    ovMemory::String getValueAsString() const;
    /// The characters of a string without a copy, valid until this node is changed; empty if this is none.
    ovMemory::StringView getValueAsStringView() const;

    /// The value as a number: a fraction is cut off towards zero; what lies beyond the type's range becomes
    /// the nearest number of it; NaN becomes 0. Bools are 0 or 1. A string counts as the number that its
    /// whole text is, written as in JSON, or as NaN, Infinity or -Infinity; any other string is 0, and so is
    /// a node that is not a value.
    int getValueAsInt() const;
    unsigned int getValueAsUint() const;
    std::int64_t getValueAsInt64() const;
    std::uint64_t getValueAsUint64() const;
    /// The same without cutting: rounded to the nearest number of the type. A finite value beyond float's
    /// range becomes its largest or lowest number. Infinities and NaN stay.
    float getValueAsFloat() const;
    double getValueAsDouble() const;
    /// A bool as it is; the string "true" is true; anything else is true if it counts as a number other than
    /// 0 and NaN.
    bool getValueAsBool() const;

    /// Appends an empty element; makes this an array first if it is not one. The pointer belongs to the tree.
    Node* addElement();
    /// The member of that name as it stands if there is one (so that a derived class may set again what its
    /// base has set), or else a new empty one at the end; makes this an object first if it is not one. The
    /// name is copied. The pointer belongs to the tree.
    Node* addMember(ovMemory::StringView name);

    /// Copies the text, which may hold any bytes, NUL included. As in names, what lies beyond 4 GiB is cut
    /// off.
    void setAsString(ovMemory::StringView value);
    void setAsInt(int value);
    void setAsUint(unsigned int value);
    void setAsInt64(std::int64_t value);
    void setAsUint64(std::uint64_t value);
    void setAsFloat(float value);
    void setAsDouble(double value);
    void setAsBool(bool value);
    /// Makes this an object without members, an array without elements, or nothing (null in JSON).
    void setAsObject();
    void setAsArray();
    void setAsNull();

private:
    friend class detail::JsonReader;
    friend struct detail::NodeBlock;

    /// Everything a node is. Trivial, so that readers may move it about before the node has its place.
    struct Record {
        union {
            bool boolean;
            std::int64_t integer;        // INT, INT64
            std::uint64_t unsignedValue; // UINT, UINT64
            double real;                 // FLOAT, DOUBLE
            char* text; // STRING: size bytes, and one behind them that no number goes on with
            detail::NodeBlock* children; // OBJECT, ARRAY: the first of a list of blocks, null if empty
        };
        detail::NodeArena* arena;
        const char* name;
        std::uint32_t nameSize;
        std::uint32_t size; // of the text in bytes, or the number of children
        std::uint32_t sourceIndex;
        NODE_NATURE nature : 8;
        NODE_VALUE_TYPE type : 8;
        bool isRoot;
    };

    explicit Node(const Record& record)
        : _record(record) {}

    Node* _getChild(unsigned int index) const;
    Node* _addChild(ovMemory::StringView name);
    void _setValue(NODE_VALUE_TYPE type);
    void _setEmpty(NODE_NATURE nature);
    detail::Number _getNumber() const;

    Record _record;
};

} // namespace ovExport
