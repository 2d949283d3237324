#include <ovImages/detail/HdrHeader.h>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace ovImages::detail {

namespace {

constexpr double MIN_FACTOR = 1e-30;
constexpr double MAX_FACTOR = 1e30;
constexpr std::size_t MAX_LINE_BYTES = 64 * 1024;
constexpr ovMemory::StringView RGBE_FORMAT = "32-bit_rle_rgbe";

using Text = ovMemory::StringView;

class LineReader {
public:
    explicit LineReader(ovMemory::BufferView<const unsigned char> bytes)
        : _text(reinterpret_cast<const char*>(bytes.data()), bytes.size()) {}

    // False at the end of the data or when the line is absurdly long.
    bool next(Text& line) {
        const std::size_t end = _text.substr(_offset, MAX_LINE_BYTES).find('\n');
        if (end == Text::npos)
            return false;
        line = _text.substr(_offset, end);
        _offset += end + 1;
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        return true;
    }

    std::size_t getOffset() const { return _offset; }

private:
    Text _text;
    std::size_t _offset = 0;
};

Text trim(Text text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == Text::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

// Splits the first word off a text.
Text takeWord(Text& text) {
    text = trim(text);
    const std::size_t end = std::min(text.find_first_of(" \t"), text.size());
    const Text word = text.substr(0, end);
    text = trim(text.substr(end));
    return word;
}

template <typename NUMBER>
bool parse(Text word, NUMBER& number) {
    // Not strtod, whose decimal point depends on the locale of the host program.
    const auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), number);
    return status == std::errc() && end == word.data() + word.size();
}

// A factor that can be divided by without leaving the range of float altogether.
bool parseFactor(Text word, double& factor) {
    return parse(word, factor) && factor >= MIN_FACTOR && factor <= MAX_FACTOR;
}

ovMemory::String readFactor(Text key, Text value, double& product) {
    double factor = 0.0;
    if (!parseFactor(trim(value), factor))
        return fmt::format("bad header: {}={} is no positive number", key, value);
    product *= factor;
    return {};
}

ovMemory::String readColorFactors(Text value, std::array<double, 3>& products) {
    Text rest = value;
    for (double& product : products) {
        const ovMemory::String fault = readFactor("COLORCORR", takeWord(rest), product);
        if (!fault.empty())
            return fault;
    }
    return {};
}

ovMemory::String readVariable(Text line, HdrHeader& header) {
    const std::size_t equals = line.find('=');
    if (equals == Text::npos || line.front() == '#')
        return {};
    const Text key = trim(line.substr(0, equals));
    const Text value = trim(line.substr(equals + 1));
    // The other format that the manual names is XYZ, which would need a conversion of primaries.
    if (key == "FORMAT" && value != RGBE_FORMAT)
        return fmt::format("the pixel format is {}: only {} can be read", value, RGBE_FORMAT);
    if (key == "GAMMA")
        return readFactor(key, value, header.gamma);
    if (key == "COLORCORR")
        return readColorFactors(value, header.exposure);
    if (key != "EXPOSURE")
        return {};
    double exposure = 1.0;
    const ovMemory::String fault = readFactor(key, value, exposure);
    // Every EXPOSURE counts: programs append one for each step of their work.
    for (double& product : header.exposure)
        product *= exposure;
    return fault;
}

// "-Y 480 +X 640": the first axis counts the scanlines, the second the pixels along one. -Y runs from the top
// down, +X from left to right.
ovMemory::String readResolution(Text line, HdrHeader& header) {
    // In the order of EXIF's orientations, so that one function turns both.
    constexpr std::array<Text, 8> ORDERS = {"-Y+X", "-Y-X", "+Y-X", "+Y+X", "+X-Y", "-X-Y", "-X+Y", "+X+Y"};
    Text rest = line;
    const Text firstAxis = takeWord(rest);
    const Text firstSize = takeWord(rest);
    const Text secondAxis = takeWord(rest);
    const Text secondSize = takeWord(rest);
    const ovMemory::String order = ovMemory::String(firstAxis) + ovMemory::String(secondAxis);
    const auto found = std::find(ORDERS.begin(), ORDERS.end(), order);
    const bool isRead = found != ORDERS.end() && parse(firstSize, header.scanlines) &&
                        parse(secondSize, header.scanlineLength) && rest.empty();
    if (!isRead)
        return fmt::format("bad header: \"{}\" is no resolution such as \"-Y 480 +X 640\"",
                           line.substr(0, 80));
    header.orientation = static_cast<unsigned>(found - ORDERS.begin()) + 1;
    return {};
}

} // namespace

ovMemory::String readHdrHeader(ovMemory::BufferView<const unsigned char> bytes, HdrHeader& header) {
    constexpr Text ENDS_EARLY = "bad header: the data ends within it";
    LineReader lines(bytes);
    Text line;
    do {
        if (!lines.next(line))
            return ovMemory::String(ENDS_EARLY);
        const ovMemory::String fault = line.empty() ? ovMemory::String() : readVariable(line, header);
        if (!fault.empty())
            return fault;
    } while (!line.empty());
    if (!lines.next(line))
        return ovMemory::String(ENDS_EARLY);
    header.size = lines.getOffset();
    // Gammas of this range keep every pixel within double; real ones are near 1 or 2.2.
    if (header.gamma < 0.2 || header.gamma > 5.0)
        return fmt::format("bad header: the gamma is {}: expected 0.2 to 5", header.gamma);
    for (const double exposure : header.exposure)
        if (exposure < MIN_FACTOR || exposure > MAX_FACTOR)
            return fmt::format("bad header: the exposure is {:g} in all: expected {:g} to {:g}", exposure,
                               MIN_FACTOR, MAX_FACTOR);
    return readResolution(line, header);
}

} // namespace ovImages::detail
