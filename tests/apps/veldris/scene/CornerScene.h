// A scene of which every point is known, for tests of effects that read scenes.
#pragma once

#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Camera.h>
#include <ovGraphics/resources/Texture.h>
#include <ovGraphics/scene/Mesh.h>
#include <ovGraphics/scene/Node.h>
#include <ovGraphics/scene/Shapes.h>
#include <ovVeldris/effects/SsaoReference.h>
#include <support/FloatPicture.h>
#include <veldris/SessionTesting.h>
#include <veldris/scene/ScenePicture.h>

/// A ground on y = 0 and a wall that faces -z at z = WALL, both 16 m wide, seen from EYE along +z without any
/// turn: the space of the view is the world's, moved by EYE.
class CornerScene : public testing::TestWithParam<const char*> {
protected:
    static constexpr unsigned int SIDE = 32; // pixels
    static constexpr double WALL = 2.0;
    static constexpr double EYE_HEIGHT = 1.0;
    static constexpr double EYE_Z = -3.0;
    static constexpr float NEAR_PLANE = 0.5f;
    static constexpr float FAR_PLANE = 20.0f;

    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session, {.language = GetParam()}));
        _settings.width = SIDE;
        _settings.height = SIDE;
        _settings.background = {0.25f, 0.5f, 0.75f};
        _settings.lightDirection = ovMaths::Vector(0.0f, -1.0f, 0.5f);
        _settings.lightColor = ovMaths::Vector(2.0f, 2.0f, 2.0f);
        _plane = ovGraphics::makePlane(_session.getGraphics());
        _box = ovGraphics::makeBox(_session.getGraphics());
        _ground = ovGraphics::Node::create(&_session.getGraphics());
        _ground->setScale({8.0f, 1.0f, 8.0f});
        _wall = ovGraphics::Node::create(&_session.getGraphics());
        _wall->setScale({8.0f, _wallHeight, 1.0f});
        _wall->setPosition({0.0f, 0.0f, float(WALL) + 1.0f});
    }

    /// @param effects as --effects has them; empty: none
    void setEffects(const ovMemory::String& effects) {
        _settings.effects.clear();
        ovMemory::String error;
        EXPECT_TRUE(effects.empty() || veldris::planEffects(effects, _settings.effects, error)) << error;
    }

    /// A picture of the scene with these effects, ready to be drawn.
    ovMemory::UniquePtr<veldris::ScenePicture> makePicture(const ovMemory::String& effects) {
        setEffects(effects);
        ovMemory::String error;
        auto picture = veldris::ScenePicture::create(_session, _settings, error);
        EXPECT_TRUE(picture) << error;
        if (!picture)
            return nullptr;
        _material = ovVeldris::PbsMaterial::create(&_session.getSystem());
        _material->setReconstructBinormals(false);
        _material->setAlbedoColor({0.8f, 0.5f, 0.3f});
        _material->setMetalness(0.0f);
        _material->setRoughnessGlossiness(1.0f);
        _material->setEmissiveColor({0.1f, 0.2f, 0.3f});
        picture->light(*_material);
        EXPECT_TRUE(_material->load());
        picture->getSolid().addEntity(_plane.get(), _material->getShader(), _ground.get());
        picture->getSolid().addEntity(_box.get(), _material->getShader(), _wall.get());
        EXPECT_TRUE(picture->prepareSurface(*_material, ovGraphics::GLTF_ALPHA_MODE::OPAQUE));
        picture->fitShadow(ovGraphics::BoundingBox::newBox({0.0f, 1.0f, 0.0f}, {12.0f, 6.0f, 12.0f}));
        lookAtCorner(picture->getCamera());
        return picture;
    }

    static void lookAtCorner(ovGraphics::Camera& camera) {
        camera.setPosition({0.0f, float(EYE_HEIGHT), float(EYE_Z)});
        camera.lookAt({0.0f, 0.0f, 1.0f}, {});
        camera.setPerspective(1.0f, 1.0f, NEAR_PLANE, FAR_PLANE);
    }

    static FloatPicture toFloats(ovGraphics::Texture& texture) {
        const auto image = texture.convertToImage();
        FloatPicture picture(image->getWidth(), image->getHeight());
        for (unsigned int y = 0; y < picture.height; ++y)
            for (unsigned int x = 0; x < picture.width; ++x)
                for (unsigned int channel = 0; channel < 4; ++channel)
                    picture.at(x, y)[channel] = image->getComponent(x, y, channel);
        return picture;
    }
    FloatPicture draw(veldris::ScenePicture& picture) {
        ovMemory::String error;
        _warning.clear();
        const auto drawn = picture.draw(_warning, error);
        EXPECT_TRUE(drawn) << error;
        return drawn ? toFloats(*drawn) : FloatPicture();
    }
    FloatPicture drawWith(const ovMemory::String& effects) {
        const auto picture = makePicture(effects);
        return picture ? draw(*picture) : FloatPicture();
    }

    /// What is seen along a direction of the view with z = 1: view z and the normal; z = 0 for nothing.
    ssaoReference::Hit hit(const ssaoReference::Point& direction) const {
        using namespace ssaoReference;
        const Hit ground = hitPlane(direction, {0.0, -EYE_HEIGHT, 0.0}, {0.0, 1.0, 0.0});
        const Hit wall = hitPlane(direction, {0.0, 0.0, WALL - EYE_Z}, {0.0, 0.0, -1.0});
        const bool meetsWall = direction[1] * wall.z + EYE_HEIGHT < double(_wallHeight);
        return meetsWall ? nearer(ground, wall) : direction[1] < 0.0 ? ground : Hit{};
    }

    veldris::Session _session;
    veldris::SceneSettings _settings;
    float _wallHeight = 8.0f; ///< metres above the ground
    ovMemory::UniquePtr<ovGraphics::Mesh> _plane;
    ovMemory::UniquePtr<ovGraphics::Mesh> _box;
    ovMemory::UniquePtr<ovGraphics::Node> _ground;
    ovMemory::UniquePtr<ovGraphics::Node> _wall;
    ovMemory::UniquePtr<ovVeldris::PbsMaterial> _material;
    ovMemory::String _warning;
};
