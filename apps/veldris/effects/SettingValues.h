// Settings of effects: what there are, and the values given for them.
#pragma once

#include <map>
#include <ovMaths/Matrix.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Memory.h>
#include <veldris/effects/EffectSpec.h>

namespace veldris {

enum class SETTING_KIND {
    BOOLEAN,    ///< true, false, 1, 0
    NUMBER,     ///< one number
    VECTOR,     ///< three numbers
    MATRIX,     ///< nine numbers, three rows of three
    ENUMERATION ///< one of the choices
};

/// One setting of an effect.
struct SettingDescription {
    ovMemory::StringView name; ///< the setter's name in lower case with dashes
    SETTING_KIND kind;
    ovMemory::StringView defaultText;
    ovMemory::StringView help;
    ovMemory::Buffer<ovMemory::StringView> choices; ///< of an ENUMERATION
};

/// The values of an effect's settings: those given, the defaults for the rest.
class SettingValues {
public:
    /// Checks names and values against the descriptions.
    /// @return false with one line in error that lists what would be right
    static bool parse(const EffectSpec& effect, const ovMemory::Buffer<SettingDescription>& descriptions,
                      SettingValues& values, ovMemory::String& error);

    bool wasGiven(ovMemory::StringView name) const;

    // The name must be one of the descriptions and of the matching kind.
    bool getBoolean(ovMemory::StringView name) const;
    float getNumber(ovMemory::StringView name) const;
    ovMaths::Vector getVector(ovMemory::StringView name) const;
    ovMaths::Matrix getMatrix(ovMemory::StringView name) const;
    const ovMemory::String& getText(ovMemory::StringView name) const;

private:
    struct Value {
        ovMemory::String text;
        ovMemory::Buffer<float> numbers;
        bool given = false;
    };

    static bool _parseValue(const SettingDescription& description, ovMemory::StringView text, Value& value);
    const Value& _get(ovMemory::StringView name) const;

    std::map<ovMemory::String, Value, std::less<>> _values;
};

} // namespace veldris
