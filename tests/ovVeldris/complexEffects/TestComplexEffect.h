// A complex effect for tests of what owns complex effects.
#pragma once

#include <functional>
#include <ovVeldris/complexEffects/ComplexEffect.h>

/// Counts its living objects and its calls, and tells of its destruction.
class TestComplexEffect : public ovVeldris::ComplexEffect {
public:
    static inline int alive = 0;

    explicit TestComplexEffect(ovVeldris::COMPLEX_EFFECT_TYPE type, std::function<void()> onDestruction = {})
        : ComplexEffect(type)
        , _onDestruction(std::move(onDestruction)) {
        ++alive;
    }
    TestComplexEffect(const TestComplexEffect& other)
        : ComplexEffect(other) {
        ++alive;
    }
    TestComplexEffect& operator=(const TestComplexEffect&) = default;
    ~TestComplexEffect() override {
        if (_onDestruction)
            _onDestruction();
        --alive;
    }

    bool load() override {
        ++calls;
        return true;
    }
    void unload() override { ++calls; }
    ovGraphics::CompositorNode* getNode() const { return _getCompositorNode(); }

    int calls = 0; ///< of load() and unload()

private:
    std::function<void()> _onDestruction;
};
