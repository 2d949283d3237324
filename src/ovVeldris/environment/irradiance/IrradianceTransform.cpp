#include <ovVeldris/environment/irradiance/IrradianceTransform.h>

#include <optional>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovVeldris/environment/irradiance/detail/IrradianceKernels.h>

namespace ovVeldris {

struct IrradianceTransform::Detail {
    Detail(const IrradianceMapLayout& layout, bool avx2)
        : useAvx2(avx2)
        , components(irradianceComponentsOf(layout.format))
        , row{layout.width, components.channels, components.texelSize, components.scale}
        , kernels(irradianceKernelsOf(components.component, components.channels, avx2)) {}

    const IrradianceDirections& getDirections(const IrradianceMapLayout& layout) {
        // Only when bytes are there: an object made to ask for a problem or a pitch must not compute tables
        // of megabytes.
        if (!directions)
            directions.emplace(layout.isCube, layout.width, layout.height, useAvx2);
        return *directions;
    }

    bool useAvx2;
    IrradianceComponents components;
    RowLayout row;
    IrradianceKernels kernels;
    std::optional<IrradianceDirections> directions; ///< made when the bytes of a slice are there
};

namespace {

constexpr unsigned int CUBE_FACES = 6;
constexpr std::size_t CHANNELS = 3;

/// The whole sphere; four times pi as a 32-bit float holds it.
constexpr double SPHERE = 12.566370964050293;

ovMemory::StringView problemOf(const IrradianceMapLayout& layout, const IrradianceComponents& components) {
    if (layout.width == 0 || layout.height == 0 || layout.slices == 0)
        return "Its width, height and number of slices must be 1 or more.";
    if (layout.isCube && layout.slices != CUBE_FACES)
        return "A cube must have 6 slices.";
    if (ovGraphics::TextureUtils::isFormatCompressed(layout.format))
        return "Its format is compressed; decompress it first.";
    if (components.channels == 0)
        return "Its format has no texels of their own; convert it to another one first.";
    return {};
}

} // namespace

IrradianceTransform::IrradianceTransform(const IrradianceMapLayout& layout,
                                         IRRADIANCE_INSTRUCTIONS instructions)
    : _layout(layout)
    , _detail(std::make_unique<Detail>(layout, instructions == IRRADIANCE_INSTRUCTIONS::BEST &&
                                                   canIrradianceUseAvx2())) {
    _problem = problemOf(_layout, _detail->components);
}

IrradianceTransform::~IrradianceTransform() = default;

bool IrradianceTransform::isFormatListed() const {
    return _detail->components.isListed;
}

std::size_t IrradianceTransform::getTightPitch() const {
    return _detail->row.texelSize * _layout.width;
}

bool IrradianceTransform::project(unsigned int slice, ovMemory::BufferView<const unsigned char> bytes,
                                  std::size_t rowPitch, IrradianceCoefficients& coefficients) {
    if (!_isSlice(slice, bytes.size(), rowPitch))
        return false;
    const IrradianceDirections& directions = _detail->getDirections(_layout);
    BasisValues sums = {};
    RowLayout layout = _detail->row;
    for (unsigned int row = 0; row < _layout.height; ++row) {
        layout.ahead = row + 1 < _layout.height ? rowPitch : 0;
        _detail->kernels.project(bytes.data() + row * rowPitch, layout, directions.getTerms(row),
                                 directions.getBasis(slice, row), sums);
    }
    const double scale = _detail->components.scale;
    const double texels = static_cast<double>(_layout.slices) * _layout.height * _layout.width;
    for (std::size_t k = 0; k < sums.size(); ++k)
        for (std::size_t channel = 0; channel < CHANNELS; ++channel)
            coefficients.values[k][channel] += sums[k][channel] * (SPHERE / texels / scale);
    return true;
}

bool IrradianceTransform::evaluate(const IrradianceCoefficients& coefficients, unsigned int slice,
                                   ovMemory::BufferView<unsigned char> bytes, std::size_t rowPitch) {
    if (!_isSlice(slice, bytes.size(), rowPitch))
        return false;
    const IrradianceDirections& directions = _detail->getDirections(_layout);
    const double scale = _detail->components.scale;
    BasisValues factors = {};
    for (std::size_t k = 0; k < factors.size(); ++k)
        for (std::size_t channel = 0; channel < CHANNELS; ++channel)
            factors[k][channel] = IRRADIANCE_BAND_FACTORS[k] * coefficients.values[k][channel] * scale;
    for (unsigned int row = 0; row < _layout.height; ++row)
        _detail->kernels.evaluate(bytes.data() + row * rowPitch, _detail->row, directions.getTerms(row),
                                  directions.getBasis(slice, row), factors);
    return true;
}

bool IrradianceTransform::_isSlice(unsigned int slice, std::size_t size, std::size_t& rowPitch) const {
    const std::size_t rowSize = getTightPitch();
    if (rowPitch == 0)
        rowPitch = rowSize;
    return _problem.empty() && slice < _layout.slices && rowPitch >= rowSize && size >= rowSize &&
           (size - rowSize) / rowPitch >= _layout.height - 1;
}

} // namespace ovVeldris
