// The base of tests of the atmosphere.
#pragma once

#include <cstring>
#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/Camera.h>
#include <ovImages/Half.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/atmosphere/AtmosphereEffect.h>
#include <ovVeldris/effects/atmosphere/AtmosphereReference.h>

class AtmosphereFixture : public EffectFixture {
protected:
    void SetUp() override {
        EffectFixture::SetUp();
        _camera = ovGraphics::Camera::create(&getGraphics());
        getGraphics().getCameraManager()->setActiveRenderCamera(_camera.get());
    }
    void TearDown() override {
        getGraphics().getCameraManager()->setActiveRenderCamera(nullptr);
        _camera.reset();
        EffectFixture::TearDown();
    }

    /// The camera that renders.
    ovGraphics::Camera& getCamera() { return *_camera; }

    ovMemory::UniquePtr<ovVeldris::AtmosphereEffect> makeEffect() {
        return ovVeldris::AtmosphereEffect::create(getSystem());
    }

    FloatPicture drawEffect(const ovVeldris::AtmosphereEffect& effect, unsigned int width,
                            unsigned int height) {
        return draw(*effect.getShader(), width, height);
    }

    /// The unit direction of a pixel.
    atmosphereReference::Three directionOf(unsigned int x, unsigned int y, unsigned int width,
                                           unsigned int height) {
        const ovMaths::Vector direction = _camera->getDirectionAtPixelWorld(
            (float(x) + 0.5f) / float(width), (float(y) + 0.5f) / float(height));
        return atmosphereReference::normalized(atmosphereReference::three(direction));
    }

private:
    ovMemory::UniquePtr<ovGraphics::Camera> _camera;
};

/// A direction towards the sun. @param elevation, azimuth in degrees; 0, 0 is +z
inline ovMaths::Vector sunAt(double elevation, double azimuth = 0.0) {
    const double e = elevation * std::numbers::pi / 180.0;
    const double a = azimuth * std::numbers::pi / 180.0;
    return {float(std::cos(e) * std::sin(a)), float(std::sin(e)), float(std::cos(e) * std::cos(a))};
}

/// Settings as unlike the defaults as they may be, and unlike each other in every channel.
inline void useStrangeAir(ovVeldris::AtmosphereEffect& effect) {
    effect.setPlanetAlbedo({0.3f, 0.5f, 0.7f});
    effect.setRayleighScattering({12.0f, 7.0f, 21.0f});
    effect.setRayleighExtinction({14.0f, 9.0f, 23.0f});
    effect.setRayleighAbsorb({3.0f, 1.0f, 2.0f});
    effect.setMieScattering({6.0f, 3.0f, 4.5f});
    effect.setMieExtinction({7.0f, 8.0f, 6.0f});
    effect.setMieAbsorb({1.0f, 5.0f, 2.5f});
    effect.setOzoneScattering({0.4f, 0.2f, 0.9f});
    effect.setOzoneExtinction({1.4f, 2.2f, 0.6f});
    effect.setOzoneAbsorb({1.1f, 0.7f, 0.3f});
    effect.setMieG(0.55f);
    effect.setRayleighHeightDensityFactor(0.8f);
    effect.setMieHeightDensityFactor(0.6f);
    effect.setOzoneHeightDensityFactor(1.3f);
}

/// The settings that an effect has now.
inline ovVeldris::AtmosphereEffectInfo infoOf(const ovVeldris::AtmosphereEffect& effect) {
    ovVeldris::AtmosphereEffectInfo info;
    info.sunPosition = effect.getSunPosition();
    info.planetAlbedo = effect.getPlanetAlbedo();
    info.rayleigh = {effect.getRayleighScattering(), effect.getRayleighExtinction(),
                     effect.getRayleighAbsorb(), effect.getRayleighHeightDensityFactor()};
    info.mie = {effect.getMieScattering(), effect.getMieExtinction(), effect.getMieAbsorb(),
                effect.getMieHeightDensityFactor()};
    info.ozone = {effect.getOzoneScattering(), effect.getOzoneExtinction(), effect.getOzoneAbsorb(),
                  effect.getOzoneHeightDensityFactor()};
    info.mieG = effect.getMieG();
    info.distanceFactor = effect.getDistanceFactor();
    info.sunIlluminanceFactor = effect.getSunIlluminanceFactor();
    info.sunAngularRadius = effect.getSunAngularRadius();
    info.sunLutSampleCount = effect.getSunLutSampleCount();
    info.multiScatteringLutSphereSampleCount = effect.getMultiScatteringLutSphereSampleCount();
    info.multiScatteringLutMarchSampleCount = effect.getMultiScatteringLutMarchSampleCount();
    info.raymarchSampleCount = effect.getRaymarchSampleCount();
    return info;
}
