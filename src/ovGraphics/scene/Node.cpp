#include <ovGraphics/scene/Node.h>

#include <cmath>
#include <ovGraphics/System.h>

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

Vector cross(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

float dot(const Vector& a, const Vector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

/// The transposed inverse of a transformation by its cofactors.
Matrix affineInvTranspose(const Matrix& matrix) {
    const auto& m = matrix.m;
    const Vector rows[3] = {
        {m[0][0], m[0][1], m[0][2]}, {m[1][0], m[1][1], m[1][2]}, {m[2][0], m[2][1], m[2][2]}};
    const Vector cofactors[3] = {cross(rows[1], rows[2]), cross(rows[2], rows[0]), cross(rows[0], rows[1])};
    const float determinant = dot(rows[0], cofactors[0]);
    const float inverse = 1.0f / determinant;
    const float factor = determinant != 0.0f && std::isfinite(inverse) ? inverse : 1.0f;
    const Vector a = cofactors[0] * factor;
    const Vector b = cofactors[1] * factor;
    const Vector c = cofactors[2] * factor;
    const Vector position(m[0][3], m[1][3], m[2][3]);
    const Vector columns[3] = {{a.x, b.x, c.x}, {a.y, b.y, c.y}, {a.z, b.z, c.z}};
    return Matrix::newMat4(a.x, a.y, a.z, 0.0f, b.x, b.y, b.z, 0.0f, c.x, c.y, c.z, 0.0f,
                           -dot(columns[0], position), -dot(columns[1], position), -dot(columns[2], position),
                           1.0f);
}

} // namespace

ovMemory::UniquePtr<Node> Node::create(System* system) {
    return std::make_unique<Node>(system);
}

Node::Node(System* system)
    : Resource(system, "node") {}

Node::~Node() {
    _noteSceneChange();
    while (_firstChild) {
        Node* child = _firstChild;
        child->_unlink();
        child->_changeWorld();
    }
    _unlink();
}

void Node::setPosition(const Vector& position) {
    _position = position;
    _changeLocal();
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
    matrix.getDecomposed(_position, _scale, _orientation);
    _changeLocal();
    _local = matrix;
    _localIsCurrent = true;
}

const Matrix& Node::getLocalMatrix() const {
    if (!_localIsCurrent) {
        _local.setToTransformation(_position, _scale, _orientation);
        _localIsCurrent = true;
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
    _changeWorld();
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
    _changeWorld();
}

// Marks this node and all below it. Trees may be of any depth, so that nothing here calls itself.
void Node::_changeWorld() {
    if (getSystem())
        getSystem()->noteTransformChange();
    Node* node = this;
    while (node) {
        const bool wasCurrent = node->_worldIsCurrent;
        ++node->_worldRevision;
        node->_worldIsCurrent = node->_invTransposeIsCurrent = false;
        node = node->_nextInTree(this, wasCurrent); // below a stale node everything is stale
    }
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
    return _world;
}

void Node::_updateWorld() const {
    const Node* top = this;
    top->_waitingChild = nullptr;
    while (top->_parent && !top->_parent->_worldIsCurrent) {
        top->_parent->_waitingChild = top;
        top = top->_parent;
    }
    for (const Node* node = top; node; node = node->_waitingChild) {
        const Matrix& local = node->getLocalMatrix();
        node->_world = node->_parent ? affineProduct(node->_parent->_world, local) : local;
        node->_worldIsCurrent = true;
    }
}

const Matrix& Node::getWorldMatrixInvTranspose() const {
    const Matrix& world = getWorldMatrix();
    if (!_invTransposeIsCurrent) {
        _worldInvTranspose = affineInvTranspose(world);
        _invTransposeIsCurrent = true;
    }
    return _worldInvTranspose;
}

bool Node::isMirrored() const {
    return getWorldMatrix().getDeterminantMat3() < 0.0f;
}

} // namespace ovGraphics
