// Numbers as JSON texts have them. Internal to the library.
#pragma once

#include <cstdint>
#include <ovExport/Node.h>

namespace ovExport::detail {

/// A number of any width.
struct Number {
    NODE_VALUE_TYPE type = NODE_VALUE_TYPE::INT;
    union {
        std::int64_t integer = 0;    // INT, INT64
        std::uint64_t unsignedValue; // UINT, UINT64
        double real;                 // FLOAT, DOUBLE
    };

    static Number fromInteger(std::int64_t value, NODE_VALUE_TYPE type);
    static Number fromReal(double value, NODE_VALUE_TYPE type);
};

enum class NUMBER_STATUS { SOUND, DIGIT_MISSING, LEADING_ZERO, TOO_LARGE };

/// What readNumber() found.
struct NumberReading {
    NUMBER_STATUS status;
    const char* end; ///< behind the number; where it goes wrong if it does
    Number number;
};

/// Reads a number by JSON's grammar.
/// @param text its first byte; the text goes on, after the number, with a byte that is none of 0-9.eE
NumberReading readNumber(const char* text);

/// The number that a whole text is, NaN, Infinity and -Infinity included, or 0.
/// @param text followed by a byte that is none of 0-9.eE
Number readWholeNumber(ovMemory::StringView text);

/// Appends a number so that it reads back as the same one; NaN, Infinity or -Infinity for what JSON lacks.
void appendNumber(ovMemory::String& text, const Number& number);

/// The nearest value of the type, fractions cut off; NaN becomes 0.
template <typename INTEGER>
INTEGER toInteger(const Number& number);
/// The nearest value of the type; finite ones stay finite.
float toFloat(const Number& number);
double toDouble(const Number& number);

} // namespace ovExport::detail
