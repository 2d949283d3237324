// A material for tests of what owns materials.
#pragma once

#include <ovGraphics/resources/Shader.h>
#include <ovVeldris/materials/Material.h>

/// Counts its living objects and its calls.
class TestMaterial : public ovVeldris::Material {
public:
    static inline int alive = 0;

    explicit TestMaterial(ovVeldris::MATERIAL_TYPE type)
        : Material(type) {
        ++alive;
    }
    ~TestMaterial() override { --alive; }

    bool load() override {
        ++calls;
        return true;
    }
    void unload() override { ++calls; }
    void giveShader(ovMemory::UniquePtr<ovGraphics::Shader> shader) { _setShader(std::move(shader)); }

    int calls = 0; ///< of load() and unload()
};
