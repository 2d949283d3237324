#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsTypes.h>
#include <ovVeldris/scripts/graphicsWrap/SceneWrappers.h>

namespace ovGraphicsWrap {

using ovGraphics::Node;
using ovGraphics::RenderQueue;

void EntityWrapper::updateEnvironment(ovScripts::Environment* environment) {
    deviceTypeOf<ovGraphics::Entity>(environment);
}

void NodeWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<Node>(environment);
    addName<Node>(type);
    method(type, "getPosition", &Node::getPosition, {}, "Relative to the parent, metres.");
    method(type, "setPosition", &Node::setPosition, {"position"}, "Relative to the parent, metres.");
    method(type, "getOrientation", &Node::getOrientation, {}, "Relative to the parent.");
    method(type, "setOrientation", &Node::setOrientation, {"orientation"}, "Relative to the parent.");
    method(type, "getScale", &Node::getScale, {}, "Relative to the parent.");
    method(type, "setScale", &Node::setScale, {"scale"}, "Relative to the parent.");
    method(type, "getWorldMatrix", &Node::getWorldMatrix, {}, "From the node's space to the world.");
    method(type, "getParent", &Node::getParent, {}, "The node above, or nil.");
    method(type, "setParent", &Node::setParent, {"parent"},
           "Hangs the node below another; nil makes it a root. False for a node below this one.");
    method(type, "getFirstChild", &Node::getFirstChild, {}, "The first node below, or nil.");
    method(type, "getNextSibling", &Node::getNextSibling, {}, "The next node below the same parent, or nil.");
}

void RenderQueueWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = deviceTypeOf<RenderQueue>(environment);
    addName<RenderQueue>(type);
    method(type, "addEntity", &RenderQueue::addEntity, {"mesh", "shader", "node"},
           "A new entity at the end. Without mesh or shader it is not drawn; without node it is at the "
           "origin. Belongs to the queue.");
    method(type, "eraseEntity", &RenderQueue::eraseEntity, {"entity"},
           "Destroys an entity; false when it is not of this queue.");
    method(type, "clearQueue", &RenderQueue::clearQueue, {}, "Destroys all entities.");
    method(type, "getEntityCount", &RenderQueue::getEntityCount, {}, "How many entities there are.");
    method(type, "getEntity", &RenderQueue::getEntity, {"index"}, "The entity at a position from 0, or nil.");
}

} // namespace ovGraphicsWrap
