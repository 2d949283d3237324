// What the tests of scenes share: a program that draws meshes, a few meshes, and a small stage to draw them
// on.
#pragma once

#include <ovGraphics/Canvas.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <span>

/// Draws POSITION at the place of the instance; hands the world normal on.
inline constexpr ovMemory::StringView SCENE_VERTEX_TEXT = R"(
ovConstantBufferDecl(passConstants, 0) { ovFloat4x4 viewMat; ovFloat4x4 projMat; };
#ifdef OV_HLSL
struct VertexInput {
    float4 position : POSITION;
    float4 normal : NORMAL;
    float4x4 world : INSTANCE_WORLD_MATRIX;
    float4x4 invTranspose : INSTANCE_WORLD_MATRIX_INV_TRANSPOSE;
};
struct VertexOutput { float4 position : SV_POSITION; float3 normal : PIX_NORMAL; };
VertexOutput main(VertexInput input) {
    VertexOutput output;
    output.position = ovMul(projMat, ovMul(viewMat, ovMul(input.world, input.position)));
    output.normal = ovMul(input.invTranspose, float4(input.normal.xyz, 0.0)).xyz;
    return output;
}
#else
in vec4 POSITION;
in vec4 NORMAL;
in mat4 INSTANCE_WORLD_MATRIX;
in mat4 INSTANCE_WORLD_MATRIX_INV_TRANSPOSE;
out vec3 PIX_NORMAL;
void main() {
    gl_Position = ovMul(projMat, ovMul(viewMat, ovMul(INSTANCE_WORLD_MATRIX, POSITION)));
    PIX_NORMAL = ovMul(INSTANCE_WORLD_MATRIX_INV_TRANSPOSE, vec4(NORMAL.xyz, 0.0)).xyz;
}
#endif
)";

/// Returns a colour from constant buffer 1, plus the normal when addNormal is 1.
inline constexpr ovMemory::StringView SCENE_PIXEL_TEXT = R"(
ovConstantBufferDecl(constants, 1) { ovFloat4 colour; ovFloat4 addNormal; };
#ifdef OV_HLSL
struct PixelInput { float4 position : SV_POSITION; float3 normal : PIX_NORMAL; };
#define PIX_NORMAL input.normal
float4 main(PixelInput input) : SV_TARGET
#else
in vec3 PIX_NORMAL;
out vec4 OUT_COLOR;
void main()
#endif
{ ovReturn(colour + addNormal.x * ovFloat4(PIX_NORMAL, 0.0)); }
)";

/// A loaded shader of these texts.
struct SceneShader : TestShader {
    SceneShader(ovGraphics::System& system, const ovMaths::Vector& color, bool addNormal = false)
        : TestShader(system, SCENE_PIXEL_TEXT, SCENE_VERTEX_TEXT) {
        ovGraphics::ConstantBuffer* pass = shader->addConstantBuffer(0, 0);
        pass->addPassMemorySlot()->setAsViewMatrix();
        pass->addPassMemorySlot()->setAsProjectionMatrix();
        ovGraphics::ConstantBuffer* constants = shader->addConstantBuffer(1, 0);
        constants->addPassMemorySlot()->setFromVector(color);
        constants->addPassMemorySlot()->setFromVector({addNormal ? 1.0f : 0.0f, 0.0f});
        shader->addInstanceMemorySlot()->setAsWorldMatrix();
        shader->addInstanceMemorySlot()->setAsWorldMatrixInvTranspose();
        loaded = loaded && shader->load();
    }
};

inline ovGraphics::VertexComposition positionsAndNormals() {
    ovGraphics::VertexComposition composition;
    composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
    composition.addAttribute("NORMAL", ovGraphics::FORMAT::R32G32B32_FLOAT);
    return composition;
}

/// A loaded mesh of positions, each with the normal (0, 0, -1).
inline ovMemory::UniquePtr<ovGraphics::Mesh>
makeMesh(ovGraphics::System& system, std::span<const ovMaths::Vector> positions,
         ovMemory::Buffer<uint32_t> indices = {},
         ovGraphics::PRIMITIVE_TOPOLOGY topology = ovGraphics::PRIMITIVE_TOPOLOGY::TRIANGLELIST) {
    auto mesh = ovGraphics::Mesh::create(&system);
    mesh->setName("mesh");
    mesh->setVertexComposition(positionsAndNormals());
    mesh->setTopology(topology);
    ovMemory::Buffer<ovMaths::Vector> unpacked;
    for (const ovMaths::Vector& position : positions) {
        unpacked.push_back(position);
        unpacked.emplace_back(0.0f, 0.0f, -1.0f);
    }
    mesh->fillPackedFromUnpacked(unpacked);
    mesh->setNewIndexArray(std::move(indices));
    mesh->load();
    return mesh;
}

/// A square of side 1 around the origin that faces -z: clockwise seen from there.
inline ovMemory::UniquePtr<ovGraphics::Mesh> makeSquare(ovGraphics::System& system) {
    const ovMaths::Vector corners[] = {
        {-0.5f, -0.5f, 0.0f}, {-0.5f, 0.5f, 0.0f}, {0.5f, 0.5f, 0.0f}, {0.5f, -0.5f, 0.0f}};
    return makeMesh(system, corners, {0, 1, 2, 0, 2, 3});
}

/// A scene pass that draws a queue into a float target over black, seen from z = -10 without perspective: one
/// unit is as many texels as asked for, and the origin is the middle.
struct Stage {
    Stage(ovGraphics::System& graphics, ovGraphics::Texture& target, float units,
          ovGraphics::Texture* depth = nullptr)
        : canvas(graphics, &target)
        , queue(ovGraphics::RenderQueue::create(&graphics))
        , camera(ovGraphics::Camera::create(&graphics))
        , block(canvas.addBlock()) {
        block->setTarget(0, &target);
        if (depth)
            block->setDepthBuffer(depth);
        block->appendClearPass();
        pass = block->appendScenePass();
        pass->setRenderQueue(queue.get());
        pass->setCamera(camera.get());
        camera->setPosition({0.0f, 0.0f, -10.0f});
        camera->setOrthographic(units, units, 1.0f, 100.0f);
    }

    Canvas canvas;
    ovMemory::UniquePtr<ovGraphics::RenderQueue> queue;
    ovMemory::UniquePtr<ovGraphics::Camera> camera;
    ovGraphics::CompositorOperationsBlock* block;
    ovGraphics::ScenePass* pass;
};

/// A node at a position.
inline ovMemory::UniquePtr<ovGraphics::Node> makeNode(ovGraphics::System& system,
                                                      const ovMaths::Vector& position) {
    auto node = ovGraphics::Node::create(&system);
    node->setPosition(position);
    return node;
}
