// One setting of an effect or a material, described.
#pragma once

#include <functional>
#include <limits>
#include <ovCommon/Api.h>
#include <ovMaths/Matrix.h>
#include <ovMaths/Vector.h>
#include <ovMemory/Enumeration.h>
#include <ovMemory/Result.h>
#include <variant>

namespace ovGraphics {
class Camera;
class Node;
class Sampler;
class Texture;
} // namespace ovGraphics

namespace ovVeldris {

class Configurable;

/// What a setting holds. The alternative of a SettingValue follows from it.
enum class SETTING_KIND : unsigned int {
    FLAG,        ///< bool
    INTEGER,     ///< int
    NUMBER,      ///< float
    VECTOR,      ///< ovMaths::Vector, its first Setting::components count
    MATRIX,      ///< ovMaths::Matrix, its upper left Setting::components rows and columns count
    ENUMERATION, ///< ovMemory::String, one of Setting::choices
    TEXT,        ///< ovMemory::String, any
    TEXTURE,     ///< ovGraphics::Texture*, borrowed, may be null; so are the three below
    SAMPLER,
    CAMERA,
    NODE
};

inline constexpr ovMemory::EnumEntry<SETTING_KIND> SETTING_KIND_ENTRIES[] = {
    {SETTING_KIND::FLAG, "FLAG"},       {SETTING_KIND::INTEGER, "INTEGER"},
    {SETTING_KIND::NUMBER, "NUMBER"},   {SETTING_KIND::VECTOR, "VECTOR"},
    {SETTING_KIND::MATRIX, "MATRIX"},   {SETTING_KIND::ENUMERATION, "ENUMERATION"},
    {SETTING_KIND::TEXT, "TEXT"},       {SETTING_KIND::TEXTURE, "TEXTURE"},
    {SETTING_KIND::SAMPLER, "SAMPLER"}, {SETTING_KIND::CAMERA, "CAMERA"},
    {SETTING_KIND::NODE, "NODE"},
};
constexpr ovMemory::EnumTable<SETTING_KIND> enumTable(SETTING_KIND) {
    return {"SETTING_KIND", SETTING_KIND_ENTRIES};
}

/// Whether a kind holds an object of the graphics system.
constexpr bool isResource(SETTING_KIND kind) {
    return kind >= SETTING_KIND::TEXTURE;
}

/// A value of any kind.
using SettingValue =
    std::variant<bool, int, float, ovMaths::Vector, ovMaths::Matrix, ovMemory::String, ovGraphics::Texture*,
                 ovGraphics::Sampler*, ovGraphics::Camera*, ovGraphics::Node*>;

/// Where the numbers of a setting mean something: an integer's, a number's, or each component of a vector.
struct SettingRange {
    float minimum = -std::numeric_limits<float>::infinity();
    float maximum = std::numeric_limits<float>::infinity();
    bool includesMinimum = true;
    bool includesMaximum = true;

    bool holds(double number) const {
        return (includesMinimum ? number >= minimum : number > minimum) &&
               (includesMaximum ? number <= maximum : number < maximum);
    }
};

/// 0 to 1, both included.
inline constexpr SettingRange UNIT_RANGE = {.minimum = 0.0f, .maximum = 1.0f};
/// 0 and above.
inline constexpr SettingRange NOT_NEGATIVE = {.minimum = 0.0f};
/// Above 0.
inline constexpr SettingRange POSITIVE = {.minimum = 0.0f, .includesMinimum = false};

/// Another setting that must have a value for a setting to mean anything.
struct SettingCondition {
    ovMemory::StringView setting; ///< empty: no condition
    ovMemory::StringView value;   ///< as text
};

/// A row of a table of settings. Made by SettingRows; whoever shows, reads or writes settings needs nothing
/// else. Views are of text that lives as long as the program.
struct OV_API Setting {
    ovMemory::StringView name; ///< the setter's name in lower case with dashes
    SETTING_KIND kind = SETTING_KIND::FLAG;
    SettingValue defaultValue; ///< of a new object
    ovMemory::StringView help; ///< one sentence, without a full stop
    SettingRange range;
    ovMemory::StringView unit;                  ///< of the numbers, in the plural; empty for none
    unsigned int components = 1;                ///< of a vector 2 to 4, of a matrix 3 or 4
    ovMemory::Buffer<ovMemory::String> choices; ///< of an enumeration
    bool waitsForLoad = false;                  ///< false: reaches a loaded object at once
    SettingCondition onlyWith;

    /// Read and write it on an object of the table's class. The value is of the setting's kind and accepted.
    std::function<SettingValue(const Configurable& object)> get;
    std::function<void(Configurable& object, const SettingValue& value)> set;

    // For tables: each changes the row and hands it on.

    Setting in(const SettingRange& usefulRange, ovMemory::StringView unitName = {}) &&;
    Setting atLoad() &&;
    Setting with(ovMemory::StringView setting, ovMemory::StringView value) &&;
};

/// Whether a setting can take a value: of its kind, finite, in its range, one of its choices. An integer is
/// accepted for a number and becomes one; a choice may be written in upper case and with underscores, and
/// becomes the choice.
/// @return a failure that says what the setting, its place, takes; the value is then unchanged
OV_API ovMemory::Result acceptSettingValue(const Setting& setting, SettingValue& value);

/// The text of an enumerator as settings write it: "TONE_MAPPING" is "tone-mapping".
OV_API ovMemory::String toSettingText(ovMemory::StringView enumerator);

} // namespace ovVeldris
