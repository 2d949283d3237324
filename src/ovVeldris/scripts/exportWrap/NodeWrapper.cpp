#include <ovExport/Node.h>
#include <ovVeldris/scripts/commonWrap/Bind.h>
#include <ovVeldris/scripts/exportWrap/NodeWrapper.h>

namespace ovExportWrap {

namespace {

using namespace ovCommonWrap;
using ovExport::Node;
using ovMemory::StringView;

void declareStructure(ovScripts::UserType& type) {
    method(type, "getNodeNature", &Node::getNodeNature, {}, "0 nothing, 1 a value, 2 an object, 3 an array.");
    method(type, "getNodeValueType", &Node::getNodeValueType, {},
           "0 no value, 1 bool, 2 string, 3 int, 4 uint, 5 int64, 6 uint64, 7 float, 8 double.");
    method(type, "getArraySize", &Node::getArraySize);
    method(type, "isValueTypeNumber", &Node::isValueTypeNumber);
    const ArgumentNames index = {"index"};
    method(
        type, "getArrayElement", [](Node& self, unsigned int i) { return self.getArrayElement(i); }, index,
        "The first is 0; nil past the end.");
    method(type, "getMemberCount", &Node::getMemberCount);
    method(type, "getMemberKey", &Node::getMemberKey, index, "The name of a member; empty past the end.");
    method(
        type, "getMemberValue", [](Node& self, StringView name) { return self.getMemberValue(name); },
        {"name"}, "Nil when there is none of that name.");
    method(
        type, "getMemberValueIndex", [](Node& self, unsigned int i) { return self.getMemberValueIndex(i); },
        index, "The first is 0; nil past the end.");
}

void declareValues(ovScripts::UserType& type) {
    method(type, "getValueAsString", &Node::getValueAsString);
    method(type, "getValueAsInt", &Node::getValueAsInt);
    method(type, "getValueAsUint", &Node::getValueAsUint);
    method(type, "getValueAsFloat", &Node::getValueAsFloat);
    method(type, "getValueAsDouble", &Node::getValueAsDouble);
    method(type, "getValueAsBool", &Node::getValueAsBool);
    method(type, "addElement", &Node::addElement, {}, "A new element at the end; makes this an array.");
    method(type, "addMember", &Node::addMember, {"name"},
           "The member of that name, new at the end when there was none; makes this an object.");
    const ArgumentNames value = {"value"};
    method(type, "setAsString", &Node::setAsString, value);
    method(type, "setAsInt", &Node::setAsInt, value);
    method(type, "setAsUint", &Node::setAsUint, value);
    method(type, "setAsFloat", &Node::setAsFloat, value);
    method(type, "setAsDouble", &Node::setAsDouble, value);
    method(type, "setAsBool", &Node::setAsBool, value);
}

} // namespace

void NodeWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = *environment->getUserType(TYPE_NAME<Node>);
    type.setHelp("A node of a tree, which it keeps alive: a value, an object or an array.");
    declareStructure(type);
    declareValues(type);
}

} // namespace ovExportWrap
