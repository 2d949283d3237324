#include <ovGraphics/scene/Entity.h>

#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>

namespace ovGraphics {

Entity::Entity(RenderQueue* queue)
    : _queue(queue) {}

Entity::~Entity() {
    _leaveNode();
}

void Entity::setMesh(Mesh* mesh) {
    _mesh = mesh;
    _changed();
}

Mesh* Entity::getMesh() const {
    return _mesh.get();
}

void Entity::setShader(Shader* shader, unsigned int variant) {
    if (variant >= _shaders.size())
        return;
    _shaders[variant] = shader;
    _changed();
}

Shader* Entity::getShader(unsigned int variant) const {
    return variant < _shaders.size() ? _shaders[variant].get() : nullptr;
}

void Entity::setNode(Node* node) {
    _leaveNode();
    _node = node;
    if (node) {
        _nextAtNode = node->_firstEntity;
        if (_nextAtNode)
            _nextAtNode->_previousAtNode = this;
        node->_firstEntity = this;
        node->_keepFirstEntities();
    }
    _changed();
}

void Entity::_leaveNode() {
    if (!_node)
        return;
    (_previousAtNode ? _previousAtNode->_nextAtNode : _node->_firstEntity) = _nextAtNode;
    if (_nextAtNode)
        _nextAtNode->_previousAtNode = _previousAtNode;
    _node->_keepFirstEntities();
    _node = nullptr;
    _previousAtNode = _nextAtNode = nullptr;
}

void Entity::setVisible(bool visible) {
    _visible = visible;
    _changed();
}

void Entity::setDoubleSided(bool doubleSided) {
    _doubleSided = doubleSided;
    _changed();
}

void Entity::_changed(CHANGE change) const {
    _queue->_noteChange(_place, change);
}

} // namespace ovGraphics
