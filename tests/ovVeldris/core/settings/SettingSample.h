// A class with a setting of every kind.
#pragma once

#include <ovVeldris/core/settings/SettingRows.h>

namespace settingTesting {

using namespace ovVeldris;

enum class FRUIT { APPLE = 3, SOUR_CHERRY = 7 };

struct Fruit {
    FRUIT value;
    ovMemory::StringView text;
};
inline constexpr Fruit FRUITS[] = {{FRUIT::APPLE, "APPLE"}, {FRUIT::SOUR_CHERRY, "SOUR_CHERRY"}};

class SettingSample : public Configurable {
public:
    SettingSample()
        : Configurable(settings()) {}

    bool getIsOn() const { return isOn; }
    void setIsOn(bool value) { isOn = value; }
    ovMemory::StringView getTitle() const { return title; }
    void setTitle(ovMemory::StringView value) { title = value; }
    FRUIT getFruit() const { return fruit; }
    void setFruit(FRUIT value) { fruit = value; }

    template <auto MEMBER>
    static auto getter() {
        return [](const SettingSample& sample) { return sample.*MEMBER; };
    }
    template <auto MEMBER>
    static auto setter() {
        return [](SettingSample& sample, const auto& value) { sample.*MEMBER = value; };
    }
    static const SettingTable& settings() {
        using S = SettingSample;
        using Rows = SettingRows<SettingSample>;
        static const SettingTable TABLE = {
            Rows::flag("is-on", &S::getIsOn, &S::setIsOn, true, "whether it is on").atLoad(),
            Rows::enumeration("fruit", FRUITS, &S::getFruit, &S::setFruit, FRUIT::SOUR_CHERRY, "a fruit")
                .atLoad(),
            Rows::integer("count", getter<&S::count>(), setter<&S::count>(), 2, "how many")
                .in({.minimum = 1.0f, .maximum = 9.0f}),
            Rows::number("angle", getter<&S::angle>(), setter<&S::angle>(), 60.0f, "how wide")
                .in({.minimum = 1.0f, .maximum = 179.0f}, "degrees"),
            Rows::number("gamma", getter<&S::gamma>(), setter<&S::gamma>(), 1.0f, "the power")
                .in(POSITIVE)
                .with("fruit", "apple"),
            Rows::vector("offset", 2, getter<&S::offset>(), setter<&S::offset>(), {1.0f, 2.0f},
                         "where it stands"),
            Rows::vector("color", 3, getter<&S::color>(), setter<&S::color>(), {0.5f, 0.5f, 1.0f},
                         "its colour")
                .in(UNIT_RANGE),
            Rows::matrix("look", 3, getter<&S::look>(), setter<&S::look>(), ovMaths::Matrix(), "its look"),
            Rows::matrix("place", 4, getter<&S::place>(), setter<&S::place>(), ovMaths::Matrix(),
                         "its place"),
            Rows::text("title", &S::getTitle, &S::setTitle, "untitled", "its title"),
            Rows::texture("map", getter<&S::map>(), setter<&S::map>(), "its texture"),
            Rows::sampler("reader", getter<&S::reader>(), setter<&S::reader>(), "how it is read"),
            Rows::camera("eye", getter<&S::eye>(), setter<&S::eye>(), "who looks"),
            Rows::node("anchor", getter<&S::anchor>(), setter<&S::anchor>(), "what it hangs on"),
        };
        return TABLE;
    }

    bool isOn = true;
    FRUIT fruit = FRUIT::SOUR_CHERRY;
    int count = 2;
    float angle = 60.0f;
    float gamma = 1.0f;
    ovMaths::Vector offset{1.0f, 2.0f};
    ovMaths::Vector color{0.5f, 0.5f, 1.0f};
    ovMaths::Matrix look;
    ovMaths::Matrix place;
    ovMemory::String title = "untitled";
    ovGraphics::Texture* map = nullptr;
    ovGraphics::Sampler* reader = nullptr;
    ovGraphics::Camera* eye = nullptr;
    ovGraphics::Node* anchor = nullptr;
};

} // namespace settingTesting
