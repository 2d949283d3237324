// Places in the world, one inside another.
#pragma once

#include <cstdint>
#include <ovGraphics/resources/Resource.h>
#include <ovMaths/Matrix.h>
#include <ovMaths/Quaternion.h>

namespace ovGraphics {

class Entity;
class RenderQueue;

/// A place relative to a parent's. New: at the parent's place, without a parent.
///
/// World matrices are computed when they are asked for and kept until a place above changes.
class OV_API Node : public Resource {
public:
    static ovMemory::UniquePtr<Node> create(System* system);
    explicit Node(System* system);
    /// The children become roots and keep their place relative to the parent that they lose.
    ~Node() override;

    // Relative to the parent: scaled, then rotated, then moved.
    void setPosition(const ovMaths::Vector& position);
    void setOrientation(const ovMaths::Quaternion& orientation);
    void setScale(const ovMaths::Vector& scale);
    /// Position, orientation and scale at once, and also shear, which they cannot express. The components are
    /// then what Matrix::getDecomposed gives, and setting one of them drops the shear.
    void setLocalMatrix(const ovMaths::Matrix& matrix);
    const ovMaths::Vector& getPosition() const { return _position; }
    const ovMaths::Quaternion& getOrientation() const { return _orientation; }
    const ovMaths::Vector& getScale() const { return _scale; }
    /// Node to parent.
    const ovMaths::Matrix& getLocalMatrix() const;

    /// Hangs the node below another of the same system; null makes it a root.
    /// @return false after one log line, changing nothing, for a node below this one, this one itself, and
    /// one of another system
    bool setParent(Node* parent);
    Node* getParent() const { return _parent; }
    /// Children in the order in which they came; null at the end.
    Node* getFirstChild() const { return _firstChild; }
    Node* getNextSibling() const { return _nextSibling; }

    /// Node to world.
    const ovMaths::Matrix& getWorldMatrix() const;
    /// The transposed inverse of the world matrix. A world matrix without an inverse gives the transposed
    /// adjugate, which still turns normals in the right direction.
    const ovMaths::Matrix& getWorldMatrixInvTranspose() const;
    /// Writes the same to a place of the caller's, and keeps nothing: for what is written once and sent away.
    void computeWorldMatrixInvTranspose(ovMaths::Matrix& result) const;
    /// Brings a transposed inverse up to date after its world matrix moved and neither turned nor changed its
    /// size. @param position of the world matrix
    static void moveInvTranspose(ovMaths::Matrix& invTranspose, const ovMaths::Vector& position);
    /// Asks for what a world matrix is made of to be brought near, as it will be read soon.
    void prefetch() const {
        __builtin_prefetch(&_scale);
        __builtin_prefetch(&_position);
        __builtin_prefetch(&_local);
        __builtin_prefetch(&_local.m[3]);
    }
    /// Whether the world matrix turns left into right, so that front faces run the other way.
    bool isMirrored() const;

    void reset() override;

private:
    friend class Entity;

    void _changeLocal();
    void _changeWorld(bool positionOnly);
    void _tellEntities(bool positionOnly) const;
    /// To be called after the list of entities has changed.
    void _keepFirstEntities();
    void _unlink();
    void _updateWorld() const;
    /// The world matrix while it is current; a root's is its local one.
    const ovMaths::Matrix& _getKeptWorld() const { return _parent ? _world : _local; }
    Node* _nextInTree(const Node* root, bool descend) const;

    // What every turn looks at lies together, and what every move looks at is the end of that: nodes lie
    // further away than the cache.
    ovMaths::Vector _scale{1.0f, 1.0f, 1.0f};
    ovMaths::Quaternion _orientation;
    ovMaths::Vector _position;
    const RenderQueue* _firstQueue = nullptr; ///< the queue of the first entity that stands here
    Entity* _secondEntity = nullptr;
    Node* _parent = nullptr;
    Node* _firstChild = nullptr;
    uint32_t _firstPlace = 0; ///< of the first entity, in its queue
    mutable bool _localIsCurrent = true;
    mutable bool _localIsComposed = true; ///< of the components, and was not set
    mutable bool _worldIsCurrent = true;  ///< false implies false in every node below
    mutable bool _turnIsCurrent =
        true; ///< false: more than the world position is out of date, here and below
    mutable bool _invTransposeIsCurrent = true;
    mutable ovMaths::Matrix _local;
    mutable ovMaths::Matrix _world;
    mutable ovMaths::Matrix _worldInvTranspose;

    Entity* _firstEntity = nullptr; ///< of those that stand here
    Node* _lastChild = nullptr;
    Node* _previousSibling = nullptr;
    Node* _nextSibling = nullptr;
    mutable const Node* _waitingChild = nullptr; ///< while world matrices are computed from the top down
};

} // namespace ovGraphics
