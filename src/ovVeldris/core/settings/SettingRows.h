// Makes the rows of a table of settings.
#pragma once

#include <ovVeldris/core/settings/Configurable.h>

namespace ovVeldris {

/// Makes rows for a class T that derives from Configurable. Each takes how to get and how to set: member
/// functions of T, or anything that is called as get(const T&) and set(T&, value). T must be complete.
///
///     using Rows = SettingRows<MyEffect>;
///     static const SettingTable TABLE = {
///         Rows::flag("use-it", &MyEffect::getUseIt, &MyEffect::setUseIt, true, "use it").atLoad(),
///         Rows::number("size", &MyEffect::getSize, &MyEffect::setSize, 2.0f, "its size")
///             .in(POSITIVE, "pixels"),
///     };
template <typename T>
class SettingRows {
public:
    template <typename Get, typename Set>
    static Setting flag(ovMemory::StringView name, Get get, Set set, bool byDefault,
                        ovMemory::StringView help) {
        return _row<bool>(SETTING_KIND::FLAG, name, get, set, byDefault, help);
    }

    template <typename Get, typename Set>
    static Setting integer(ovMemory::StringView name, Get get, Set set, int byDefault,
                           ovMemory::StringView help) {
        return _row<int>(SETTING_KIND::INTEGER, name, get, set, byDefault, help);
    }

    template <typename Get, typename Set>
    static Setting number(ovMemory::StringView name, Get get, Set set, float byDefault,
                          ovMemory::StringView help) {
        return _row<float>(SETTING_KIND::NUMBER, name, get, set, byDefault, help);
    }

    /// @param components 2 to 4; the others are handed on as they come and read from text as 0
    template <typename Get, typename Set>
    static Setting vector(ovMemory::StringView name, unsigned int components, Get get, Set set,
                          const ovMaths::Vector& byDefault, ovMemory::StringView help) {
        Setting row = _row<ovMaths::Vector>(SETTING_KIND::VECTOR, name, get, set, byDefault, help);
        row.components = components;
        return row;
    }

    /// @param side 3 or 4: rows and columns; the others are handed on as they come and read from text as the
    ///             identity's
    template <typename Get, typename Set>
    static Setting matrix(ovMemory::StringView name, unsigned int side, Get get, Set set,
                          const ovMaths::Matrix& byDefault, ovMemory::StringView help) {
        Setting row = _row<ovMaths::Matrix>(SETTING_KIND::MATRIX, name, get, set, byDefault, help);
        row.components = side;
        return row;
    }

    /// @param enumerators records of a value and its text, all that the setting may take
    template <typename Enum, typename Enumerators, typename Get, typename Set>
    static Setting enumeration(ovMemory::StringView name, const Enumerators& enumerators, Get get, Set set,
                               Enum byDefault, ovMemory::StringView help) {
        using Choices = ovMemory::Buffer<std::pair<Enum, ovMemory::String>>;
        Choices choices;
        for (const auto& enumerator : enumerators)
            choices.emplace_back(enumerator.value, toSettingText(enumerator.text));
        const auto textOf = [choices](Enum value) {
            for (const auto& choice : choices)
                if (choice.first == value)
                    return choice.second;
            return ovMemory::String();
        };
        const auto getText = [get, textOf](const T& object) { return textOf(std::invoke(get, object)); };
        const auto setText = [set, choices](T& object, const ovMemory::String& text) {
            for (const auto& choice : choices)
                if (choice.second == text)
                    std::invoke(set, object, choice.first);
        };
        Setting row = _row<ovMemory::String>(SETTING_KIND::ENUMERATION, name, getText, setText,
                                             textOf(byDefault), help);
        for (const auto& choice : choices)
            row.choices.push_back(choice.second);
        return row;
    }

    template <typename Get, typename Set>
    static Setting text(ovMemory::StringView name, Get get, Set set, ovMemory::StringView byDefault,
                        ovMemory::StringView help) {
        return _row<ovMemory::String>(SETTING_KIND::TEXT, name, get, set, ovMemory::String(byDefault), help);
    }

    // What is borrowed is null in a new object.

    template <typename Get, typename Set>
    static Setting texture(ovMemory::StringView name, Get get, Set set, ovMemory::StringView help) {
        return _row<ovGraphics::Texture*>(SETTING_KIND::TEXTURE, name, get, set, nullptr, help);
    }
    template <typename Get, typename Set>
    static Setting sampler(ovMemory::StringView name, Get get, Set set, ovMemory::StringView help) {
        return _row<ovGraphics::Sampler*>(SETTING_KIND::SAMPLER, name, get, set, nullptr, help);
    }
    template <typename Get, typename Set>
    static Setting camera(ovMemory::StringView name, Get get, Set set, ovMemory::StringView help) {
        return _row<ovGraphics::Camera*>(SETTING_KIND::CAMERA, name, get, set, nullptr, help);
    }
    template <typename Get, typename Set>
    static Setting node(ovMemory::StringView name, Get get, Set set, ovMemory::StringView help) {
        return _row<ovGraphics::Node*>(SETTING_KIND::NODE, name, get, set, nullptr, help);
    }

private:
    template <typename Value, typename Get, typename Set>
    static Setting _row(SETTING_KIND kind, ovMemory::StringView name, Get get, Set set,
                        const Value& byDefault, ovMemory::StringView help) {
        Setting row;
        row.name = name;
        row.kind = kind;
        row.defaultValue = byDefault;
        row.help = help;
        row.get = [get](const Configurable& object) -> SettingValue {
            return Value(std::invoke(get, static_cast<const T&>(object)));
        };
        row.set = [set](Configurable& object, const SettingValue& value) {
            std::invoke(set, static_cast<T&>(object), std::get<Value>(value));
        };
        return row;
    }
};

} // namespace ovVeldris
