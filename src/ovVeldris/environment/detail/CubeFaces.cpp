#include <ovVeldris/environment/detail/CubeFaces.h>

#include <ovGraphics/compositor/Compositor.h>
#include <ovGraphics/resources/Camera.h>

namespace ovVeldris {

namespace {
constexpr float RIGHT_ANGLE = 1.5707964f; // radians
}

CubeFaceCameras makeCubeFaceCameras(ovGraphics::System* graphicsSystem, const CubeFaceViews& views) {
    CubeFaceCameras cameras;
    for (unsigned int face = 0; face < CUBE_FACE_COUNT; ++face) {
        cameras[face] = ovGraphics::Camera::create(graphicsSystem);
        ovGraphics::Camera& camera = *cameras[face];
        camera.setName(views[face].cameraName);
        // Tools of applications list cameras; those of a tool that ran for a moment are none of theirs.
        camera.setHidden(true);
        camera.setPerspective(RIGHT_ANGLE, 1.0f, camera.getNear(), camera.getFar());
        camera.lookAt(views[face].direction, views[face].up);
    }
    return cameras;
}

void appendCubeFaces(ovGraphics::CompositorNode& node, ovGraphics::Texture& cube, unsigned int mip,
                     const CubeFaceCameras& cameras, ovGraphics::Shader& shader) {
    for (unsigned int face = 0; face < CUBE_FACE_COUNT; ++face) {
        ovGraphics::CompositorOperationsBlock* block = node.appendOperationsBlock();
        block->setTarget(0, &cube, face, mip);
        ovGraphics::PostProcessPass* pass = block->appendPostProcessPass();
        pass->setShader(&shader);
        pass->setCamera(cameras[face].get());
    }
}

} // namespace ovVeldris
