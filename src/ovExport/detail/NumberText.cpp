#include <charconv>
#include <cmath>
#include <limits>
#include <ovExport/detail/NumberText.h>
#include <system_error>
#include <type_traits>
#include <utility>

namespace ovExport::detail {

namespace {

// Doubles hold the product of a whole number up to 2^53 and one of these without rounding in between
// (Clinger, "How to read floating point numbers accurately").
constexpr double POWERS_OF_TEN[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::int64_t LARGEST_EXACT_POWER = 22;
constexpr std::uint64_t LARGEST_EXACT_MANTISSA = std::uint64_t{1} << 53;
// 64 bits hold any number of so many digits.
constexpr std::ptrdiff_t SAFE_DIGITS = 19;
// Exponents count up to here: more than any text has digits, little enough to be added to.
constexpr std::int64_t EXPONENT_LIMIT = 1'000'000'000'000;

bool isDigit(char character) {
    return static_cast<unsigned char>(character - '0') < 10;
}

/// The parts of a number's text.
struct Parts {
    const char* begin;
    const char* integerBegin; // behind the sign
    const char* integerEnd;
    const char* fractionEnd; // integerEnd without a fraction
    const char* end;
    std::uint64_t mantissa = 0; // of all digits; wraps around beyond SAFE_DIGITS
    std::int64_t exponent = 0;

    bool isNegative() const { return integerBegin != begin; }
    bool isWhole() const { return end == integerEnd; }
    std::ptrdiff_t countFraction() const {
        return fractionEnd == integerEnd ? 0 : fractionEnd - integerEnd - 1;
    }
    std::ptrdiff_t countDigits() const { return integerEnd - integerBegin + countFraction(); }
};

const char* readDigits(const char* at, std::uint64_t& value) {
    for (; isDigit(*at); ++at)
        value = 10 * value + static_cast<unsigned char>(*at - '0');
    return at;
}

const char* readExponent(const char* at, std::int64_t& exponent) {
    const bool isNegative = *at == '-';
    if (isNegative || *at == '+')
        ++at;
    for (; isDigit(*at); ++at)
        if (exponent < EXPONENT_LIMIT)
            exponent = 10 * exponent + (*at - '0');
    if (isNegative)
        exponent = -exponent;
    return at;
}

// One pass finds where the parts are and their value, because most numbers are short and exact and then
// nothing else is needed.
NUMBER_STATUS readParts(const char* text, Parts& parts) {
    parts.begin = text;
    parts.integerBegin = text + (*text == '-' ? 1 : 0);
    const char* at = readDigits(parts.integerBegin, parts.mantissa);
    parts.integerEnd = parts.fractionEnd = parts.end = at;
    if (at == parts.integerBegin)
        return NUMBER_STATUS::DIGIT_MISSING;
    if (*parts.integerBegin == '0' && at - parts.integerBegin > 1) {
        parts.end = parts.integerBegin + 1;
        return NUMBER_STATUS::LEADING_ZERO;
    }
    if (*at == '.') {
        at = readDigits(parts.integerEnd + 1, parts.mantissa);
        parts.fractionEnd = parts.end = at;
        if (!isDigit(at[-1]))
            return NUMBER_STATUS::DIGIT_MISSING;
    }
    if (*at == 'e' || *at == 'E') {
        parts.end = at = readExponent(at + 1, parts.exponent);
        if (!isDigit(at[-1]))
            return NUMBER_STATUS::DIGIT_MISSING;
    }
    return NUMBER_STATUS::SOUND;
}

/// Sets a whole number that 64 bits hold.
bool setWhole(const Parts& parts, Number& number) {
    std::uint64_t magnitude = parts.mantissa;
    // The mantissa has wrapped round; from_chars notices what 64 bits do not hold.
    if (parts.countDigits() > SAFE_DIGITS &&
        std::from_chars(parts.integerBegin, parts.integerEnd, magnitude).ec != std::errc())
        return false;
    constexpr std::uint64_t LOWEST = std::uint64_t{1} << 63;
    if (!parts.isNegative()) {
        number.unsignedValue = magnitude;
        number.type = magnitude <= std::numeric_limits<std::int32_t>::max()    ? NODE_VALUE_TYPE::INT
                      : magnitude <= std::numeric_limits<std::uint32_t>::max() ? NODE_VALUE_TYPE::UINT
                      : magnitude < LOWEST                                     ? NODE_VALUE_TYPE::INT64
                                                                               : NODE_VALUE_TYPE::UINT64;
        return true;
    }
    // Integers have no -0.
    if (magnitude == 0 || magnitude > LOWEST)
        return false;
    const auto value = static_cast<std::int64_t>(~magnitude + 1);
    number = Number::fromInteger(value, value >= std::numeric_limits<std::int32_t>::min()
                                            ? NODE_VALUE_TYPE::INT
                                            : NODE_VALUE_TYPE::INT64);
    return true;
}

/// Power of ten of the first digit that is not 0, counted from the exponent.
std::int64_t findLeadingPower(const Parts& parts) {
    const char* at = parts.integerBegin;
    while (*at == '0' || *at == '.')
        ++at;
    return at < parts.integerEnd ? parts.integerEnd - at - 1 : parts.integerEnd - at;
}

bool hasOnlyZeros(const Parts& parts) {
    for (const char* at = parts.integerBegin; at != parts.fractionEnd; ++at)
        if (*at != '0' && *at != '.')
            return false;
    return true;
}

/// The double nearest to the number; false beyond the largest.
bool findNearestDouble(const Parts& parts, double& value) {
    const double zero = parts.isNegative() ? -0.0 : 0.0;
    value = zero;
    if (hasOnlyZeros(parts))
        return true;
    const auto result = std::from_chars(parts.begin, parts.end, value);
    if (result.ec == std::errc() && std::isfinite(value))
        return true;
    // Out of range at which end?
    value = zero;
    return parts.exponent + findLeadingPower(parts) < 0;
}

bool setReal(const Parts& parts, Number& number) {
    number.type = NODE_VALUE_TYPE::DOUBLE;
    const std::int64_t power = parts.exponent - parts.countFraction();
    // Outside the range of Clinger's fast path the exact and slower function of the library takes over.
    if (parts.countDigits() > SAFE_DIGITS || parts.mantissa > LARGEST_EXACT_MANTISSA ||
        power < -LARGEST_EXACT_POWER || power > LARGEST_EXACT_POWER)
        return findNearestDouble(parts, number.real);
    const auto mantissa = static_cast<double>(parts.mantissa);
    const double value = power < 0 ? mantissa / POWERS_OF_TEN[-power] : mantissa * POWERS_OF_TEN[power];
    number.real = parts.isNegative() ? -value : value;
    return true;
}

constexpr ovMemory::StringView NOT_A_NUMBER = "NaN";
constexpr ovMemory::StringView INFINITE = "Infinity";
constexpr ovMemory::StringView NEGATIVE_INFINITE = "-Infinity";

template <typename VALUE, typename... OPTIONS>
ovMemory::StringView print(char (&digits)[32], VALUE value, OPTIONS... options) {
    return {digits, static_cast<std::size_t>(
                        std::to_chars(digits, digits + sizeof(digits), value, options...).ptr - digits)};
}

/// The fewest digits that give the number back, with an exponent only where there would be many zeros.
template <typename REAL>
ovMemory::StringView printReal(char (&digits)[32], REAL value) {
    // Beyond it, digits without an exponent would be more than the fewest.
    constexpr REAL LARGEST_PLAIN = std::is_same_v<REAL, float> ? REAL(1e7) : REAL(1e15);
    constexpr REAL SMALLEST_PLAIN = REAL(1e-5);
    const REAL magnitude = std::abs(value);
    const bool isPlain = magnitude == 0 || (magnitude >= SMALLEST_PLAIN && magnitude < LARGEST_PLAIN);
    return print(digits, value, isPlain ? std::chars_format::fixed : std::chars_format::scientific);
}

void appendReal(ovMemory::String& text, const Number& number) {
    if (std::isnan(number.real)) {
        text.append(NOT_A_NUMBER);
        return;
    }
    if (std::isinf(number.real)) {
        text.append(number.real < 0 ? NEGATIVE_INFINITE : INFINITE);
        return;
    }
    char digits[32];
    ovMemory::StringView printed;
    if (number.type == NODE_VALUE_TYPE::FLOAT) {
        // Readers round to a double first: very few floats come back as their neighbour, and need the
        // double's digits.
        const auto value = static_cast<float>(number.real);
        printed = printReal(digits, value);
        double readBack = 0;
        std::from_chars(printed.data(), printed.data() + printed.size(), readBack);
        if (static_cast<float>(readBack) != value)
            printed = {};
    }
    if (printed.empty())
        printed = printReal(digits, number.real);
    text.append(printed);
    // A number without either would come back as an integer.
    if (printed.find_first_of(".e") == printed.npos)
        text.append(".0");
}

/// The nearest value of the type.
template <typename INTEGER, typename WHOLE>
INTEGER clampWhole(WHOLE value) {
    if (std::cmp_less(value, std::numeric_limits<INTEGER>::min()))
        return std::numeric_limits<INTEGER>::min();
    return std::cmp_greater(value, std::numeric_limits<INTEGER>::max()) ? std::numeric_limits<INTEGER>::max()
                                                                        : static_cast<INTEGER>(value);
}

} // namespace

Number Number::fromInteger(std::int64_t value, NODE_VALUE_TYPE type) {
    Number number;
    number.type = type;
    number.integer = value;
    return number;
}

Number Number::fromReal(double value, NODE_VALUE_TYPE type) {
    Number number;
    number.type = type;
    number.real = value;
    return number;
}

NumberReading readNumber(const char* text) {
    NumberReading reading;
    Parts parts;
    reading.status = readParts(text, parts);
    reading.end = parts.end;
    if (reading.status != NUMBER_STATUS::SOUND)
        return reading;
    if (parts.isWhole() && setWhole(parts, reading.number))
        return reading;
    if (!setReal(parts, reading.number)) {
        reading.status = NUMBER_STATUS::TOO_LARGE;
        reading.end = parts.begin;
    }
    return reading;
}

Number readWholeNumber(ovMemory::StringView text) {
    if (text == NOT_A_NUMBER)
        return Number::fromReal(std::numeric_limits<double>::quiet_NaN(), NODE_VALUE_TYPE::DOUBLE);
    if (text == INFINITE || text == NEGATIVE_INFINITE) {
        const double infinity = std::numeric_limits<double>::infinity();
        return Number::fromReal(text == INFINITE ? infinity : -infinity, NODE_VALUE_TYPE::DOUBLE);
    }
    if (text.empty())
        return {};
    const NumberReading reading = readNumber(text.data());
    const bool isWhole = reading.status == NUMBER_STATUS::SOUND && reading.end == text.data() + text.size();
    return isWhole ? reading.number : Number();
}

void appendNumber(ovMemory::String& text, const Number& number) {
    char digits[32];
    switch (number.type) {
    case NODE_VALUE_TYPE::FLOAT:
    case NODE_VALUE_TYPE::DOUBLE:
        appendReal(text, number);
        return;
    case NODE_VALUE_TYPE::UINT:
    case NODE_VALUE_TYPE::UINT64:
        text.append(print(digits, number.unsignedValue));
        return;
    default:
        text.append(print(digits, number.integer));
    }
}

template <typename INTEGER>
INTEGER toInteger(const Number& number) {
    constexpr INTEGER LOWEST = std::numeric_limits<INTEGER>::min();
    constexpr INTEGER LARGEST = std::numeric_limits<INTEGER>::max();
    switch (number.type) {
    case NODE_VALUE_TYPE::FLOAT:
    case NODE_VALUE_TYPE::DOUBLE:
        if (std::isnan(number.real))
            return 0;
        // As doubles the limits of 64 bits are the powers of two behind them.
        if (number.real <= static_cast<double>(LOWEST))
            return LOWEST;
        return number.real >= static_cast<double>(LARGEST) ? LARGEST : static_cast<INTEGER>(number.real);
    case NODE_VALUE_TYPE::UINT:
    case NODE_VALUE_TYPE::UINT64:
        return clampWhole<INTEGER>(number.unsignedValue);
    default:
        return clampWhole<INTEGER>(number.integer);
    }
}

template std::int32_t toInteger(const Number&);
template std::uint32_t toInteger(const Number&);
template std::int64_t toInteger(const Number&);
template std::uint64_t toInteger(const Number&);

double toDouble(const Number& number) {
    switch (number.type) {
    case NODE_VALUE_TYPE::FLOAT:
    case NODE_VALUE_TYPE::DOUBLE:
        return number.real;
    case NODE_VALUE_TYPE::UINT:
    case NODE_VALUE_TYPE::UINT64:
        return static_cast<double>(number.unsignedValue);
    default:
        return static_cast<double>(number.integer);
    }
}

float toFloat(const Number& number) {
    switch (number.type) {
    case NODE_VALUE_TYPE::FLOAT:
    case NODE_VALUE_TYPE::DOUBLE: {
        constexpr double LARGEST = std::numeric_limits<float>::max();
        if (std::isfinite(number.real) && std::abs(number.real) > LARGEST)
            return static_cast<float>(std::copysign(LARGEST, number.real));
        return static_cast<float>(number.real);
    }
    // Straight from the integer: by way of a double it would be rounded twice.
    case NODE_VALUE_TYPE::UINT:
    case NODE_VALUE_TYPE::UINT64:
        return static_cast<float>(number.unsignedValue);
    default:
        return static_cast<float>(number.integer);
    }
}

} // namespace ovExport::detail
