// The base of tests of ambient occlusion.
#pragma once

#include <ovGraphics/Managers.h>
#include <ovGraphics/resources/Camera.h>
#include <ovVeldris/effects/EffectFixture.h>
#include <ovVeldris/effects/SsaoEffect.h>
#include <ovVeldris/effects/SsaoReference.h>

namespace ssaoReference {

inline constexpr unsigned int WIDTH = 48;
inline constexpr unsigned int HEIGHT = 32;
inline const FloatPixel UNTOUCHED = {-1.0f, -2.0f, -3.0f, -4.0f};

/// Uneven ground: no two neighbours agree, which every sample of the kernel notices.
inline double roughZ(unsigned int x, unsigned int y) {
    return 4.0 + 0.12 * std::sin(1.7 * x + 0.3) * std::cos(1.3 * y) + 0.05 * std::sin(0.9 * x * y);
}

inline Point roughNormal(unsigned int x, unsigned int y) {
    return normalized({std::sin(0.7 * x + y), std::cos(1.1 * y - 0.2 * x), -1.2});
}

inline FloatPixel pixelOf(const Point& p) {
    return {float(p[0]), float(p[1]), float(p[2]), 1.0f};
}
inline Point pointOf(const FloatPixel& pixel) {
    return {pixel[0], pixel[1], pixel[2]};
}

class SsaoFixture : public EffectFixture {
protected:
    void SetUp() override {
        EffectFixture::SetUp();
        _camera = ovGraphics::Camera::create(&getGraphics());
        _camera->setPosition({10.0f, -20.0f, 30.0f}); // views do not depend on it
        _camera->lookAt({0.3f, -0.5f, 0.7f}, {0.1f, 1.0f, 0.2f});
        _camera->setPerspective(1.1f, float(WIDTH) / float(HEIGHT), 0.5f, 50.0f);
        getGraphics().getCameraManager()->setActiveRenderCamera(_camera.get());
    }
    void TearDown() override {
        getGraphics().getCameraManager()->setActiveRenderCamera(nullptr);
        _camera.reset();
        EffectFixture::TearDown();
    }

    ovGraphics::Camera& getCamera() { return *_camera; }
    View getView() { return {_camera.get(), WIDTH, HEIGHT}; }

    static void apply(const Settings& settings, ovVeldris::SsaoEffect& effect) {
        effect.setSamplingRadius(float(settings.radius));
        effect.setMaxOcclusionDistance(float(settings.maxDistance));
        effect.setStrength(float(settings.strength));
        effect.setDepthBias(float(settings.bias));
        effect.setKernelSampleCount(settings.samples);
    }

    ovMemory::UniquePtr<ovVeldris::SsaoEffect> makeEffect(const Settings& settings = {}) {
        auto effect = ovVeldris::SsaoEffect::create(getSystem());
        effect->setCamera(_camera.get());
        apply(settings, *effect);
        return effect;
    }

    FloatPicture drawLoaded(ovVeldris::SsaoEffect& effect) {
        EXPECT_TRUE(effect.load()) << getLog().getText() << getGraphicsLogger().getText();
        return draw(*effect.getShader(), WIDTH, HEIGHT);
    }

    /// Compares all pixels but those that a rounding decides, of which there must be few.
    static void expectOpenFractions(
        const FloatPicture& drawn,
        const std::function<std::optional<double>(unsigned int, unsigned int, bool& isSure)>& expected) {
        unsigned int unsure = 0;
        unsigned int wrong = 0;
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x) {
                bool isSure = true;
                const std::optional<double> open = expected(x, y, isSure);
                if (!isSure) {
                    ++unsure;
                    continue;
                }
                const FloatPixel& pixel = drawn.at(x, y);
                // Of sixteen sixteenths a rounding is left, and a power makes it larger.
                const double tolerance = open == 0.0 ? 2e-4 : 2e-6;
                const bool isRight = open ? std::abs(pixel[0] - *open) < tolerance && pixel[1] == pixel[0] &&
                                                pixel[2] == pixel[0] && pixel[3] == 1.0f
                                          : pixel == UNTOUCHED;
                if (!isRight && ++wrong <= 3)
                    ADD_FAILURE() << x << ", " << y << " is " << pixel[0] << " " << pixel[3] << " and not "
                                  << open.value_or(-1.0);
            }
        EXPECT_EQ(wrong, 0u);
        EXPECT_LT(unsure, WIDTH * HEIGHT / 5);
    }

    /// View-space positions over the screen, from view z.
    FloatPicture makePositions(const std::function<double(unsigned int, unsigned int)>& z) {
        FloatPicture picture(WIDTH, HEIGHT);
        for (unsigned int y = 0; y < HEIGHT; ++y)
            for (unsigned int x = 0; x < WIDTH; ++x)
                picture.at(x, y) = pixelOf(scaled(getView().directionOf(x, y), z(x, y)));
        return picture;
    }

    /// What a perspective camera's depth buffer holds at a view z.
    double toDepth(double z) {
        const ovMaths::Vector parameters = _camera->getProjectionParameters();
        return parameters.x + parameters.y * _camera->getFar() / z;
    }

    ovMemory::UniquePtr<ovGraphics::Camera> _camera;
};

inline FloatPicture makeNormals() {
    FloatPicture picture(WIDTH, HEIGHT);
    for (unsigned int y = 0; y < HEIGHT; ++y)
        for (unsigned int x = 0; x < WIDTH; ++x)
            picture.at(x, y) = pixelOf(scaled(roughNormal(x, y), 1.0 + 0.1 * x)); // of any length
    return picture;
}

} // namespace ssaoReference
