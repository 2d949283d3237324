#include <algorithm>
#include <cstring>
#include <ovExport/Node.h>
#include <ovExport/detail/NodeArena.h>
#include <ovExport/detail/NumberText.h>
#include <utility>

namespace ovExport {

namespace {

constexpr unsigned int SMALLEST_BLOCK = 4;
constexpr std::size_t LONGEST_TEXT = 0xffffffffu;

} // namespace

ovMemory::UniquePtr<Node> Node::create(NODE_NATURE nature) {
    auto arena = std::make_unique<detail::NodeArena>();
    Record record{};
    record.sourceIndex = NO_SOURCE_INDEX;
    record.nature = nature == NODE_NATURE::VALUE ? NODE_NATURE::UNKNOWN : nature;
    record.isRoot = true;
    // Every node knows its arena, so that it can add children without a look at its parents.
    record.arena = arena.get();
    ovMemory::UniquePtr<Node> root(new Node(record));
    static_cast<void>(arena.release()); // the root's now
    return root;
}

// Only the root frees anything. Destroying a tree is freeing its arena, however deep it is.
Node::~Node() {
    if (_record.isRoot)
        delete _record.arena;
}

ovMemory::Borrowable& Node::getTree() const {
    return *_record.arena;
}

std::size_t Node::getTreeBytes() const {
    return _record.arena->getBytes();
}

unsigned int Node::getArraySize() const {
    return isArray() ? _record.size : 0;
}

unsigned int Node::getMemberCount() const {
    return isObject() ? _record.size : 0;
}

Node* Node::_getChild(unsigned int index) const {
    // Each block is half as large as all before it, so their number grows with the logarithm of the children.
    for (detail::NodeBlock* block = _record.children; block; block = block->next) {
        if (index < block->count)
            return block->getNodes() + index;
        index -= block->count;
    }
    return nullptr;
}

Node* Node::getArrayElement(unsigned int index) {
    return isArray() ? _getChild(index) : nullptr;
}

const Node* Node::getArrayElement(unsigned int index) const {
    return isArray() ? _getChild(index) : nullptr;
}

Node* Node::getMemberValueIndex(unsigned int index) {
    return isObject() ? _getChild(index) : nullptr;
}

const Node* Node::getMemberValueIndex(unsigned int index) const {
    return isObject() ? _getChild(index) : nullptr;
}

ovMemory::StringView Node::getMemberKey(unsigned int index) const {
    const Node* const member = getMemberValueIndex(index);
    return member ? ovMemory::StringView(member->_record.name, member->_record.nameSize)
                  : ovMemory::StringView();
}

Node* Node::getMemberValue(ovMemory::StringView name) {
    return const_cast<Node*>(std::as_const(*this).getMemberValue(name));
}

// A linear search: objects of declarations have few members, and an index would cost every node memory.
const Node* Node::getMemberValue(ovMemory::StringView name) const {
    if (!isObject())
        return nullptr;
    for (detail::NodeBlock* block = _record.children; block; block = block->next)
        for (const Node& member : ovMemory::BufferView<Node>(block->getNodes(), block->count))
            if (ovMemory::StringView(member._record.name, member._record.nameSize) == name)
                return &member;
    return nullptr;
}

detail::Number Node::_getNumber() const {
    switch (_record.type) {
    case NODE_VALUE_TYPE::UNKNOWN:
        return {};
    case NODE_VALUE_TYPE::BOOL:
        return detail::Number::fromInteger(_record.boolean ? 1 : 0, NODE_VALUE_TYPE::INT);
    case NODE_VALUE_TYPE::STRING:
        return detail::readWholeNumber(getValueAsStringView());
    case NODE_VALUE_TYPE::FLOAT:
    case NODE_VALUE_TYPE::DOUBLE:
        return detail::Number::fromReal(_record.real, _record.type);
    default:
        return detail::Number::fromInteger(_record.integer, _record.type);
    }
}

ovMemory::String Node::getValueAsString() const {
    ovMemory::String text(getValueAsStringView());
    if (isBool())
        text = _record.boolean ? "true" : "false";
    else if (isValueTypeNumber())
        detail::appendNumber(text, _getNumber());
    return text;
}

ovMemory::StringView Node::getValueAsStringView() const {
    return isString() ? ovMemory::StringView(_record.text, _record.size) : ovMemory::StringView();
}

int Node::getValueAsInt() const {
    return detail::toInteger<std::int32_t>(_getNumber());
}

unsigned int Node::getValueAsUint() const {
    return detail::toInteger<std::uint32_t>(_getNumber());
}

std::int64_t Node::getValueAsInt64() const {
    return detail::toInteger<std::int64_t>(_getNumber());
}

std::uint64_t Node::getValueAsUint64() const {
    return detail::toInteger<std::uint64_t>(_getNumber());
}

float Node::getValueAsFloat() const {
    return detail::toFloat(_getNumber());
}

double Node::getValueAsDouble() const {
    return detail::toDouble(_getNumber());
}

bool Node::getValueAsBool() const {
    if (getValueAsStringView() == "true")
        return true;
    const double value = getValueAsDouble();
    return value < 0 || value > 0; // neither holds for NaN
}

Node* Node::addElement() {
    if (!isArray())
        setAsArray();
    return _addChild({});
}

Node* Node::addMember(ovMemory::StringView name) {
    // Lengths have 32 bits, so that a node stays at 40 bytes.
    name = name.substr(0, LONGEST_TEXT);
    if (!isObject())
        setAsObject();
    Node* const existing = getMemberValue(name);
    return existing ? existing : _addChild(name);
}

Node* Node::_addChild(ovMemory::StringView name) {
    detail::NodeBlock** link = &_record.children;
    // Only the last block may have room. Filling an earlier one would change the order of the children.
    while (*link && ((*link)->next || (*link)->count == (*link)->capacity))
        link = &(*link)->next;
    if (!*link)
        *link = detail::NodeBlock::create(*_record.arena, std::max(SMALLEST_BLOCK, _record.size / 2));
    Record child{};
    child.sourceIndex = NO_SOURCE_INDEX;
    child.arena = _record.arena;
    child.name = _record.arena->copyText(name);
    child.nameSize = static_cast<std::uint32_t>(name.size());
    ++_record.size;
    return (*link)->append(child);
}

void Node::_setValue(NODE_VALUE_TYPE type) {
    _record.nature = NODE_NATURE::VALUE;
    _record.type = type;
}

void Node::setAsString(ovMemory::StringView value) {
    value = value.substr(0, LONGEST_TEXT);
    // In place where it fits, so that setting a text over and over does not fill the arena. The text may be a
    // part of the one that it replaces.
    if (isString() && value.size() <= _record.size) {
        if (!value.empty())
            std::memmove(_record.text, value.data(), value.size());
        _record.text[value.size()] = '\0';
    } else {
        _record.text = _record.arena->copyText(value);
    }
    _record.size = static_cast<std::uint32_t>(value.size());
    _setValue(NODE_VALUE_TYPE::STRING);
}

void Node::setAsInt(int value) {
    _record.integer = value;
    _setValue(NODE_VALUE_TYPE::INT);
}

void Node::setAsUint(unsigned int value) {
    _record.unsignedValue = value;
    _setValue(NODE_VALUE_TYPE::UINT);
}

void Node::setAsInt64(std::int64_t value) {
    _record.integer = value;
    _setValue(NODE_VALUE_TYPE::INT64);
}

void Node::setAsUint64(std::uint64_t value) {
    _record.unsignedValue = value;
    _setValue(NODE_VALUE_TYPE::UINT64);
}

void Node::setAsFloat(float value) {
    _record.real = static_cast<double>(value);
    _setValue(NODE_VALUE_TYPE::FLOAT);
}

void Node::setAsDouble(double value) {
    _record.real = value;
    _setValue(NODE_VALUE_TYPE::DOUBLE);
}

void Node::setAsBool(bool value) {
    _record.boolean = value;
    _setValue(NODE_VALUE_TYPE::BOOL);
}

void Node::setAsObject() {
    _setEmpty(NODE_NATURE::OBJECT);
}

void Node::setAsArray() {
    _setEmpty(NODE_NATURE::ARRAY);
}

void Node::setAsNull() {
    _setEmpty(NODE_NATURE::UNKNOWN);
}

void Node::_setEmpty(NODE_NATURE nature) {
    _record.nature = nature;
    _record.type = NODE_VALUE_TYPE::UNKNOWN;
    // The children stay in the arena until the tree goes, because pointers to them stay valid.
    _record.children = nullptr;
    _record.size = 0;
}

} // namespace ovExport
