#include <ovGraphics/scene/Node.h>

#include <cmath>
#include <ovGraphics/System.h>
#include <ovGraphics/scene/Entity.h>
#include <ovGraphics/scene/RenderQueue.h>

namespace ovGraphics {

using ovMaths::Matrix;
using ovMaths::Vector;

namespace {

/// The product of transformations, whose last rows are (0, 0, 0, 1).
Matrix affineProduct(const Matrix& a, const Matrix& b) {
    Matrix product;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column)
            product.m[row][column] = a.m[row][0] * b.m[0][column] + a.m[row][1] * b.m[1][column] +
                                     a.m[row][2] * b.m[2][column] + (column == 3 ? a.m[row][3] : 0.0f);
    }
    return product;
}

/// The transposed inverse of a transformation by its cofactors.
void setToAffineInvTranspose(Matrix& result, const Matrix& matrix) {
    const auto& m = matrix.m;
    // Spelled out: compilers make slow vector instructions of loops over rows and columns here.
    const auto minor = [&m](int a, int b, int c, int d) { return m[a][c] * m[b][d] - m[a][d] * m[b][c]; };
    const float cofactors[3][3] = {{minor(1, 2, 1, 2), minor(1, 2, 2, 0), minor(1, 2, 0, 1)},
                                   {minor(2, 0, 1, 2), minor(2, 0, 2, 0), minor(2, 0, 0, 1)},
                                   {minor(0, 1, 1, 2), minor(0, 1, 2, 0), minor(0, 1, 0, 1)}};
    const float inverse =
        1.0f / (m[0][0] * cofactors[0][0] + m[0][1] * cofactors[0][1] + m[0][2] * cofactors[0][2]);
    const float factor = std::isfinite(inverse) ? inverse : 1.0f;
    auto& r = result.m;
    for (int column = 0; column < 3; ++column) {
        for (int row = 0; row < 3; ++row)
            r[row][column] = cofactors[row][column] * factor;
        r[column][3] = 0.0f;
    }
    r[3][3] = 1.0f;
    Node::moveInvTranspose(result, matrix.getPositionComponent());
}

} // namespace

ovMemory::UniquePtr<Node> Node::create(System* system) {
    return std::make_unique<Node>(system);
}

Node::Node(System* system)
    : Resource(system, "node") {}

Node::~Node() {
    // Entities and children may outlive the node: none of them may point to it any more.
    while (_firstEntity)
        _firstEntity->setNode(nullptr);
    while (_firstChild) {
        Node* child = _firstChild;
        child->_unlink();
        child->_changeWorld(false);
    }
    _unlink();
}

void Node::setPosition(const Vector& position) {
    _position = position;
    if (!_localIsCurrent || !_localIsComposed)
        return _changeLocal();
    _local.setPositionComponent(position); // rotation and scale need no computing
    _changeWorld(true);
}

void Node::setOrientation(const ovMaths::Quaternion& orientation) {
    _orientation = orientation;
    _changeLocal();
}

void Node::setScale(const Vector& scale) {
    _scale = scale;
    _changeLocal();
}

void Node::setLocalMatrix(const Matrix& matrix) {
    // The matrix itself is kept too: one with shear is not what its parts would give.
    matrix.getDecomposed(_position, _scale, _orientation);
    _changeLocal();
    _local = matrix;
    _localIsCurrent = true;
    _localIsComposed = false;
}

const Matrix& Node::getLocalMatrix() const {
    if (!_localIsCurrent) {
        _local.setToTransformation(_position, _scale, _orientation);
        _localIsCurrent = _localIsComposed = true;
    }
    return _local;
}

bool Node::setParent(Node* parent) {
    ovMemory::StringView reason;
    if (parent && parent->getSystem() != getSystem())
        reason = "it belongs to another graphics system; create both on the same one.";
    for (const Node* above = parent; above && reason.empty(); above = above->_parent) {
        if (above == this)
            reason = "it lies below this node, and a node cannot hang below itself.";
    }
    if (!reason.empty()) {
        _logFailure("give the parent '" + ovMemory::String(parent->getName()) + "' to", reason);
        return false;
    }
    _unlink();
    _parent = parent;
    if (parent) {
        _previousSibling = parent->_lastChild;
        (parent->_lastChild ? parent->_lastChild->_nextSibling : parent->_firstChild) = this;
        parent->_lastChild = this;
    }
    _changeWorld(false);
    return true;
}

void Node::_unlink() {
    if (!_parent)
        return;
    (_previousSibling ? _previousSibling->_nextSibling : _parent->_firstChild) = _nextSibling;
    (_nextSibling ? _nextSibling->_previousSibling : _parent->_lastChild) = _previousSibling;
    _parent = _previousSibling = _nextSibling = nullptr;
}

void Node::reset() {
    Resource::reset();
    setParent(nullptr);
    _position = {};
    _scale = {1.0f, 1.0f, 1.0f};
    _orientation = {};
    _changeLocal();
}

void Node::_changeLocal() {
    _localIsCurrent = false;
    _changeWorld(false);
}

// Marks this node and all below it. Trees may be of any depth, so that nothing here calls itself. Entities of
// a stale node were told when it became stale, and nobody has drawn them since, as that reads the world
// matrix.
void Node::_changeWorld(bool positionOnly) {
    Node* node = this;
    while (node) {
        const bool isNews = positionOnly ? node->_worldIsCurrent : node->_turnIsCurrent;
        if (isNews)
            node->_tellEntities(positionOnly);
        node->_worldIsCurrent = node->_invTransposeIsCurrent = false;
        node->_turnIsCurrent = node->_turnIsCurrent && positionOnly;
        node = node->_nextInTree(this, isNews); // what is no news here is none below either
    }
}

// Most nodes have one entity, and it is told without being fetched from memory.
void Node::_tellEntities(bool positionOnly) const {
    const Entity::CHANGE change = positionOnly ? Entity::CHANGE::MOVED : Entity::CHANGE::TURNED;
    if (_firstQueue)
        _firstQueue->_noteChange(_firstPlace, change);
    for (const Entity* entity = _secondEntity; entity; entity = entity->_nextAtNode)
        entity->_changed(change);
}

void Node::_keepFirstEntities() {
    _firstQueue = _firstEntity ? _firstEntity->_queue : nullptr;
    _firstPlace = _firstEntity ? _firstEntity->_place : 0;
    _secondEntity = _firstEntity ? _firstEntity->_nextAtNode : nullptr;
}

Node* Node::_nextInTree(const Node* root, bool descend) const {
    if (descend && _firstChild)
        return _firstChild;
    for (const Node* node = this; node != root; node = node->_parent) {
        if (node->_nextSibling)
            return node->_nextSibling;
    }
    return nullptr;
}

const Matrix& Node::getWorldMatrix() const {
    if (!_worldIsCurrent)
        _updateWorld();
    return _getKeptWorld();
}

void Node::_updateWorld() const {
    const Node* top = this;
    top->_waitingChild = nullptr;
    // The way up is kept in the nodes themselves: no call for each level, and no memory to allocate.
    while (top->_parent && !top->_parent->_worldIsCurrent) {
        top->_parent->_waitingChild = top;
        top = top->_parent;
    }
    for (const Node* node = top; node; node = node->_waitingChild) {
        const Matrix& local = node->getLocalMatrix();
        if (node->_parent)
            node->_world = affineProduct(node->_parent->_getKeptWorld(), local);
        node->_worldIsCurrent = node->_turnIsCurrent = true;
    }
}

const Matrix& Node::getWorldMatrixInvTranspose() const {
    const Matrix& world = getWorldMatrix();
    if (!_invTransposeIsCurrent) {
        setToAffineInvTranspose(_worldInvTranspose, world);
        _invTransposeIsCurrent = true;
    }
    return _worldInvTranspose;
}

void Node::computeWorldMatrixInvTranspose(Matrix& result) const {
    setToAffineInvTranspose(result, getWorldMatrix());
}

void Node::moveInvTranspose(Matrix& invTranspose, const Vector& position) {
    auto& r = invTranspose.m;
    for (int column = 0; column < 3; ++column)
        r[3][column] = -(r[0][column] * position.x + r[1][column] * position.y + r[2][column] * position.z);
}

bool Node::isMirrored() const {
    const auto& m = getWorldMatrix().m;
    const auto minor = [&m](int a, int b) {
        return static_cast<double>(m[1][a]) * m[2][b] - static_cast<double>(m[1][b]) * m[2][a];
    };
    // In double precision: small scales would make the determinant underflow, and the sign is all that
    // counts.
    return m[0][0] * minor(1, 2) - m[0][1] * minor(0, 2) + m[0][2] * minor(0, 1) < 0.0;
}

} // namespace ovGraphics
