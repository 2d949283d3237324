// A glTF model with physically based materials, drawn under one light. Without a model it draws a triangle of
// its own with a material made in code.
//
//     DrawModel OUTPUT.png [MODEL.glb]
#include <cstdio>
#include <ovGraphics/Managers.h>
#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/compositor/RenderContext.h>
#include <ovGraphics/compositor/ScenePass.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Shader.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/RenderQueue.h>
#include <ovImages/CompositeEncoder.h>
#include <ovLog/ConsoleLogger.h>
#include <ovVeldris/System.h>
#include <ovVeldris/content/ModelLoader.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/materials/MaterialManager.h>
#include <ovVeldris/materials/PbsMaterial.h>

namespace {

using ovMaths::Vector;

const Vector LIGHT_DIRECTION(-0.5f, -0.8f, 0.6f);

// A loaded mesh of one triangle that faces the camera: clockwise as seen from -z.
ovGraphics::Mesh* makeTriangle(ovGraphics::System& graphics) {
    ovGraphics::VertexComposition composition;
    composition.addAttribute("POSITION", ovGraphics::FORMAT::R32G32B32_FLOAT);
    composition.addAttribute("NORMAL", ovGraphics::FORMAT::R32G32B32_FLOAT);
    const Vector towardsCamera(0.0f, 0.0f, -1.0f);
    ovGraphics::Mesh* mesh = graphics.getMeshManager()->createOrRetrieve("triangle");
    mesh->setVertexComposition(composition);
    mesh->fillPackedFromUnpacked(ovMemory::Buffer<Vector>{{-1.0f, -0.8f, 0.0f},
                                                          towardsCamera,
                                                          {0.0f, 0.9f, 0.0f},
                                                          towardsCamera,
                                                          {1.0f, -0.8f, 0.0f},
                                                          towardsCamera});
    return mesh->load() ? mesh : nullptr;
}

// Adds the triangle to a queue. False when anything failed; the log says what.
bool addTriangle(ovVeldris::System& system, ovGraphics::System& graphics, ovGraphics::RenderQueue& queue) {
    auto* material = static_cast<ovVeldris::PbsMaterial*>(
        system.getMaterialManager()->createOrRetrieve("clay", ovVeldris::MATERIAL_TYPE::PBS));
    material->setAlbedoColor({0.6f, 0.25f, 0.15f});
    material->setSpecularColor({0.04f, 0.04f, 0.04f}); // what dielectrics reflect
    material->setMetalness(1.0f);                      // of the specular colour, all of it
    material->setRoughnessGlossiness(0.35f);
    material->setLightDirection(LIGHT_DIRECTION);
    ovGraphics::Mesh* mesh = makeTriangle(graphics);
    if (!mesh || !material->load())
        return false;
    queue.addEntity(mesh, material->getShader(), nullptr);
    return true;
}

// Lights the model's materials, loads them and adds its parts. Both kinds of parts go into one queue here; a
// scene with glass draws the blended ones in a pass of their own, from back to front.
bool addModel(ovVeldris::Model& model, ovGraphics::RenderQueue& queue) {
    for (const ovVeldris::ModelMaterial& own : model.getMaterials()) {
        own.material->setLightDirection(LIGHT_DIRECTION);
        own.material->setLightColor({3.0f, 3.0f, 3.0f});
        own.material->setEnvironmentColor({0.3f, 0.3f, 0.3f});
    }
    if (!model.loadMaterials())
        return false;
    model.addTo(queue, queue);
    return true;
}

ovGraphics::Texture* makeTarget(ovGraphics::System& graphics, const char* name, ovGraphics::FORMAT format) {
    ovGraphics::Texture* texture = graphics.getTextureManager()->createOrRetrieve(name);
    texture->setWidth(512);
    texture->setHeight(512);
    texture->setFormat(format);
    texture->setUsableAsRenderTarget(true);
    return texture->load() ? texture : nullptr;
}

// Draws a queue as seen from the front of what the box holds. Null when anything failed.
ovMemory::UniquePtr<ovImages::Image> draw(ovGraphics::System& graphics, ovGraphics::RenderQueue& queue,
                                          const ovGraphics::BoundingBox& box) {
    // sRGB, so that the linear colours of the materials are encoded as a screen wants them.
    ovGraphics::Texture* target = makeTarget(graphics, "picture", ovGraphics::FORMAT::R8G8B8A8_UNORM_SRGB);
    ovGraphics::Texture* depth = makeTarget(graphics, "depth", ovGraphics::FORMAT::D32_FLOAT);
    if (!target || !depth)
        return nullptr;
    const float radius = 0.5f * box.getSize().getLengthVec3();
    ovGraphics::Camera* camera = graphics.getCameraManager()->createOrRetrieve("eye");
    camera->setPosition(box.getCenter() + Vector(0.0f, 0.0f, -3.0f * radius));
    camera->setPerspective(0.7f, 1.0f, radius, 5.0f * radius);

    ovGraphics::Compositor* compositor = graphics.getCompositorManager()->createOrRetrieve("scene");
    ovGraphics::CompositorOperationsBlock* block = compositor->appendNode()->appendOperationsBlock();
    block->setTarget(0, target);
    block->setDepthBuffer(depth);
    block->appendClearPass()->setColor(0, 0.05f, 0.05f, 0.06f, 1.0f);
    ovGraphics::ScenePass* pass = block->appendScenePass();
    pass->setRenderQueue(&queue);
    pass->setCamera(camera);
    ovGraphics::RenderContext* context =
        graphics.getRenderContextManager()->createOrRetrieve("scene", {.texture = target});
    context->setCompositor(compositor);
    return graphics.frame(context) ? target->convertToImage() : nullptr;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: DrawModel OUTPUT.png [MODEL.glb]\n");
        return 1;
    }
    ovLog::ConsoleLogger logger;
    ovVeldris::System system;
    ovVeldris::Configuration configuration;
    configuration.graphicsConfiguration.logger = &logger;
    system.getLogManager()->setReceiver(&logger);
    if (!system.initialize(configuration))
        return 1;
    ovGraphics::System& graphics = *system.getGraphicsEngine()->getGraphicsSystem();
    ovGraphics::RenderQueue* queue = graphics.getRenderQueueManager()->createOrRetrieve("scene");

    ovGraphics::BoundingBox box = ovGraphics::BoundingBox::newCube({}, 1.5f);
    ovVeldris::ModelLoadResult loaded; // the model must live as long as it is drawn
    if (argc == 3) {
        loaded = ovVeldris::ModelLoader(&system).load(argv[2]);
        if (!loaded) {
            std::fprintf(stderr, "%s\n", loaded.error.c_str());
            return 1;
        }
        box = loaded.model->getBoundingBox();
    }
    const bool added = loaded ? addModel(*loaded.model, *queue) : addTriangle(system, graphics, *queue);
    const auto image = added ? draw(graphics, *queue, box) : nullptr;
    if (!image)
        return 1;
    const ovMemory::Result written = ovImages::CompositeEncoder().encodeFile(argv[1], image->view());
    if (written)
        return 0;
    std::fprintf(stderr, "%s\n", written.error.c_str());
    return 1;
}
