#include <ovGraphics/scene/Entity.h>

#include <ovGraphics/System.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>

namespace ovGraphics {

Entity::Entity(RenderQueue* queue)
    : _queue(queue) {}

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
    _node = node;
    _changed();
}

Node* Entity::getNode() const {
    return _node.get();
}

void Entity::setVisible(bool visible) {
    _visible = visible;
    _changed();
}

void Entity::setDoubleSided(bool doubleSided) {
    _doubleSided = doubleSided;
    _changed();
}

void Entity::_changed() const {
    if (System* system = _queue->getSystem())
        system->noteSceneChange();
}

} // namespace ovGraphics
