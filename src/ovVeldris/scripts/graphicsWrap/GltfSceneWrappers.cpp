#include <ovGraphics/gltf/GltfScene.h>
#include <ovVeldris/scripts/graphicsWrap/GltfSceneWrappers.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsTypes.h>
#include <ovVeldris/scripts/memoryWrap/MemoryTypeNames.h>

namespace ovGraphicsWrap {

using namespace ovGraphics;

namespace {

/// "getMeshCount" and "getMesh" for a field of several records, which are parts of their owner.
template <typename Owner, typename T>
void addRecords(ovScripts::UserType& type, const ovMemory::String& name, ovMemory::Buffer<T> Owner::*field) {
    method(
        type, "get" + name + "Count", [field](Owner& self) { return (self.*field).size(); }, {}, "How many.");
    method(
        type, "get" + name,
        [field](Owner& self, std::size_t index) {
            return index < (self.*field).size() ? &(self.*field)[index] : nullptr;
        },
        {"index"}, "The one of a number; the first is 0. Nil past the end.");
}

/// The same for numbers and texts.
template <typename Owner, typename T>
void addValues(ovScripts::UserType& type, const ovMemory::String& name, ovMemory::Buffer<T> Owner::*field) {
    method(
        type, "get" + name + "Count", [field](Owner& self) { return (self.*field).size(); }, {}, "How many.");
    method(
        type, "get" + name,
        [field](Owner& self, std::size_t index) {
            return index < (self.*field).size() ? std::optional(T((self.*field)[index])) : std::nullopt;
        },
        {"index"}, "The one of a number; the first is 0. Nil past the end.");
}

/// The elements of a part, which the view keeps alive.
template <typename Element, typename T>
ovScripts::FunctionParameter viewOf(ovMemory::Buffer<T>& elements) {
    using View = ovMemory::BufferView<Element>;
    auto view = std::make_unique<View>(reinterpret_cast<Element*>(elements.data()), elements.size());
    return ovCommonWrap::toScript(std::move(view)).keeping(0);
}

template <typename C, typename T>
void addField(ovScripts::UserType& type, ovMemory::StringView name, T C::*member,
              ovMemory::StringView help = {}) {
    readOnlyField(type, name, member)->help = help;
}

constexpr ovMemory::StringView TEXTURE_INDEX = "Number of a texture of the scene; -1: none.";

void addMetallicRoughness(ovScripts::UserType& type) {
    addField(type, "metallic", &GltfMaterial::metallic, "0 to 1.");
    addField(type, "roughness", &GltfMaterial::roughness, "0 to 1, perceptual.");
    addField(type, "metallicRoughnessTexture", &GltfMaterial::metallicRoughnessTexture, TEXTURE_INDEX);
}

void addSpecularGlossiness(ovScripts::UserType& type) {
    addField(type, "specular", &GltfMaterial::specular, "Each 0 to 1.");
    addField(type, "glossiness", &GltfMaterial::glossiness, "0 to 1; 1 - perceptual roughness.");
    addField(type, "specularGlossinessTexture", &GltfMaterial::specularGlossinessTexture, TEXTURE_INDEX);
}

} // namespace

void GltfSceneWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfScene>(environment);
    type.setHelp("What a glTF file holds, left-handed, +y up, metres. Numbers of other records begin at 0.");
    addField(type, "boundingBox", &GltfScene::boundingBox, "Of all meshes that the roots reach.");
    readOnlyProperty<GltfScene>(type, "light", [](GltfScene& self) {
        return self.light ? &*self.light : nullptr;
    })->help = "A GltfDirectionalLight, or nil.";
    addRecords(type, "Mesh", &GltfScene::meshes);
    addRecords(type, "Material", &GltfScene::materials);
    addRecords(type, "Texture", &GltfScene::textures);
    addRecords(type, "Image", &GltfScene::images);
    addRecords(type, "Node", &GltfScene::nodes);
    addRecords(type, "Camera", &GltfScene::cameras);
    addValues(type, "Root", &GltfScene::roots);
    addValues(type, "Warning", &GltfScene::warnings);
}

void GltfMeshWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfMesh>(environment);
    addField(type, "name", &GltfMesh::name);
    addRecords(type, "Primitive", &GltfMesh::primitives);
}

void GltfPrimitiveWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfPrimitive>(environment);
    type.setHelp("Vertices of one material.");
    addField(type, "composition", &GltfPrimitive::composition, "What a vertex is made of.");
    addField(type, "vertexCount", &GltfPrimitive::vertexCount);
    addField(type, "topology", &GltfPrimitive::topology, "A PRIMITIVE_TOPOLOGY.");
    addField(type, "material", &GltfPrimitive::material, "Number of a material; -1: the default one.");
    addField(type, "boundingBox", &GltfPrimitive::boundingBox, "Of the vertices.");
    method(
        type, "getVertices", [](GltfPrimitive& self) { return viewOf<unsigned char>(self.vertices); }, {},
        "The bytes of the vertices, as the composition lays them out.")
        .setResult(ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA,
                   TYPE_NAME<ovMemory::BufferView<unsigned char>>);
    method(
        type, "getIndices", [](GltfPrimitive& self) { return viewOf<int>(self.indices); }, {},
        "The indices; none when the vertices are drawn in their order.")
        .setResult(ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA, TYPE_NAME<ovMemory::BufferView<int>>);
}

void GltfMaterialWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfMaterial>(environment);
    type.setHelp("A surface. Colours are linear, and multiply what is read of the texture beside them.");
    addField(type, "name", &GltfMaterial::name);
    addField(type, "workflow", &GltfMaterial::workflow, "A GLTF_WORKFLOW.");
    addField(type, "baseColor", &GltfMaterial::baseColor, "Colour and alpha, each 0 to 1.");
    addField(type, "baseColorTexture", &GltfMaterial::baseColorTexture, TEXTURE_INDEX);
    addMetallicRoughness(type);
    addSpecularGlossiness(type);
    addField(type, "normalTexture", &GltfMaterial::normalTexture, TEXTURE_INDEX);
    addField(type, "normalScale", &GltfMaterial::normalScale);
    addField(type, "occlusionTexture", &GltfMaterial::occlusionTexture, TEXTURE_INDEX);
    addField(type, "occlusionStrength", &GltfMaterial::occlusionStrength, "0 to 1.");
    addField(type, "emissive", &GltfMaterial::emissive, "Emitted colour, at least 0.");
    addField(type, "emissiveTexture", &GltfMaterial::emissiveTexture, TEXTURE_INDEX);
    addField(type, "alphaMode", &GltfMaterial::alphaMode, "A GLTF_ALPHA_MODE.");
    addField(type, "alphaCutoff", &GltfMaterial::alphaCutoff);
    addField(type, "doubleSided", &GltfMaterial::doubleSided);
    addField(type, "unlit", &GltfMaterial::unlit);
}

void GltfTextureWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfTexture>(environment);
    type.setHelp("How a picture is read. Several textures may share one image.");
    addField(type, "name", &GltfTexture::name);
    addField(type, "image", &GltfTexture::image, "Number of an image of the scene; -1: missing.");
    addField(type, "filter", &GltfTexture::filter, "A FILTER.");
    addField(type, "mipmapped", &GltfTexture::mipmapped);
    addField(type, "addressU", &GltfTexture::addressU, "A TEXTURE_ADDRESS.");
    addField(type, "addressV", &GltfTexture::addressV, "A TEXTURE_ADDRESS.");
    addField(type, "usedAsColor", &GltfTexture::usedAsColor, "Whether a material reads it as a colour.");
    addField(type, "usedAsData", &GltfTexture::usedAsData, "Whether a material reads it as numbers.");
}

void GltfImageWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfImage>(environment);
    type.setHelp("A picture as the file holds it.");
    addField(type, "name", &GltfImage::name);
    method(type, "isMissing", &GltfImage::isMissing, {}, "Whether the file lacks it, as a warning tells.");
    method(
        type, "getBytes", [](GltfImage& self) { return viewOf<unsigned char>(self.bytes); }, {},
        "The encoded picture.")
        .setResult(ovScripts::FUNCTION_PARAMETER_TYPE::USER_DATA,
                   TYPE_NAME<ovMemory::BufferView<unsigned char>>);
    const std::size_t limit = environment->getOptions().memoryLimit;
    method(
        type, "decode",
        [limit](GltfImage& self, bool isColor) {
            const std::size_t most = limit > 0 ? limit : ovImages::MAX_IMAGE_BYTES;
            ovImages::DecodeResult result = self.decode(
                isColor ? ovImages::COLOR_ENCODING::SRGB : ovImages::COLOR_ENCODING::LINEAR, most);
            if (!result)
                throw ovCommonWrap::ArgumentError(result.error);
            return std::move(result.image);
        },
        {"isColor"}, "A new image: of colours in sRGB, else of numbers. An error when it cannot be read.");
}

void GltfNodeWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfNode>(environment);
    addField(type, "name", &GltfNode::name);
    addField(type, "parent", &GltfNode::parent, "Number of a node; -1: none.");
    addField(type, "position", &GltfNode::position, "Relative to the parent, metres.");
    addField(type, "orientation", &GltfNode::orientation, "Relative to the parent.");
    addField(type, "scale", &GltfNode::scale, "Relative to the parent.");
    addField(type, "localMatrix", &GltfNode::local, "From the node's space to its parent's.");
    addField(type, "worldMatrix", &GltfNode::world, "From the node's space to the scene's.");
    addField(type, "mesh", &GltfNode::mesh, "Number of a mesh; -1: none.");
    addField(type, "camera", &GltfNode::camera, "Number of a camera; -1: none.");
    addValues(type, "Child", &GltfNode::children);
}

void GltfCameraWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfCamera>(environment);
    addField(type, "name", &GltfCamera::name);
    addField(type, "orthographic", &GltfCamera::orthographic);
    addField(type, "verticalFov", &GltfCamera::verticalFov, "Radians, of a perspective.");
    addField(type, "aspect", &GltfCamera::aspect, "Width over height; 0: that of the target.");
    addField(type, "height", &GltfCamera::height, "Metres, of an orthographic view.");
    addField(type, "nearPlane", &GltfCamera::nearPlane, "Metres.");
    addField(type, "farPlane", &GltfCamera::farPlane, "Metres.");
}

void GltfDirectionalLightWrapper::updateEnvironment(ovScripts::Environment* environment) {
    ovScripts::UserType& type = typeOf<GltfDirectionalLight>(environment);
    addField(type, "name", &GltfDirectionalLight::name);
    addField(type, "node", &GltfDirectionalLight::node, "Number of its node.");
    addField(type, "direction", &GltfDirectionalLight::direction, "Where the light travels to, unit length.");
    addField(type, "color", &GltfDirectionalLight::color, "Linear colour times illuminance, lux.");
}

} // namespace ovGraphicsWrap
