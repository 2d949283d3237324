// The base of tests that may leave singletons behind.
#pragma once

#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovVeldris/System.h>
#include <ovVeldris/complexEffects/ComplexEffectManager.h>
#include <ovVeldris/core/LogManager.h>
#include <ovVeldris/effects/EffectManager.h>
#include <ovVeldris/materials/MaterialManager.h>

/// Each test starts and ends without any singleton of the library or the graphics system.
class SingletonTest : public testing::Test {
protected:
    SingletonTest() { _killAll(); }
    ~SingletonTest() override { _killAll(); }

    /// Which singletons exist, such as "System LogManager".
    static ovMemory::String getExisting() {
        ovMemory::String names;
        const auto add = [&names](const void* instance, ovMemory::StringView name) {
            if (instance)
                names.append(names.empty() ? "" : " ").append(name);
        };
        add(ovVeldris::System::getInstanceIfExisting(), "System");
        add(ovVeldris::LogManager::getInstanceIfExisting(), "LogManager");
        add(ovVeldris::ComplexEffectManager::getInstanceIfExisting(), "ComplexEffectManager");
        add(ovVeldris::EffectManager::getInstanceIfExisting(), "EffectManager");
        add(ovVeldris::MaterialManager::getInstanceIfExisting(), "MaterialManager");
        add(ovGraphics::System::getInstanceIfExisting(), "Graphics");
        return names;
    }

private:
    static void _killAll() {
        ovVeldris::ComplexEffectManager::kill();
        ovVeldris::EffectManager::kill();
        ovVeldris::MaterialManager::kill();
        ovVeldris::System::kill();
        ovVeldris::LogManager::kill();
        ovGraphics::System::kill();
    }
};
