#include <ovVeldris/environment/irradiance/detail/IrradianceKernels.h>

#include <ovVeldris/environment/irradiance/detail/IrradianceKernelBody.h>

namespace ovVeldris {

namespace {

/// The loops with the instructions that every processor of the architecture has.
template <typename Component, unsigned int Channels>
struct PlainKernels {
    static void project(const unsigned char* row, const RowLayout& layout, const ColumnTerms* terms,
                        const RowBasis& basis, BasisValues& sums) {
        irradianceKernels::projectRow<Component, Channels>(row, layout, terms, basis, sums);
    }
    static void evaluate(unsigned char* row, const RowLayout& layout, const ColumnTerms* terms,
                         const RowBasis& basis, const BasisValues& factors) {
        irradianceKernels::evaluateRow<Component, Channels>(row, layout, terms, basis, factors);
    }
};

#ifdef __x86_64__

// One body for both. The attribute makes the compiler emit AVX2 for these functions only, so that the library
// still runs on processors without it; a file compiled with -mavx2 could leak such code into shared inline
// functions.
/// The same loops with four 64-bit floats an instruction.
template <typename Component, unsigned int Channels>
struct Avx2Kernels {
    [[gnu::target("avx2,fma")]] static void project(const unsigned char* row, const RowLayout& layout,
                                                    const ColumnTerms* terms, const RowBasis& basis,
                                                    BasisValues& sums) {
        irradianceKernels::projectRow<Component, Channels>(row, layout, terms, basis, sums);
    }
    [[gnu::target("avx2,fma")]] static void evaluate(unsigned char* row, const RowLayout& layout,
                                                     const ColumnTerms* terms, const RowBasis& basis,
                                                     const BasisValues& factors) {
        irradianceKernels::evaluateRow<Component, Channels>(row, layout, terms, basis, factors);
    }
};

[[gnu::target("avx2,fma")]] void fillFaceRowAvx2(ovMemory::BufferView<const double> a, double b,
                                                 ColumnTerms* terms) {
    irradianceKernels::fillFaceRow(a, b, terms);
}

bool detectAvx2() {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
}

#else

template <typename Component, unsigned int Channels>
using Avx2Kernels = PlainKernels<Component, Channels>;

void fillFaceRowAvx2(ovMemory::BufferView<const double> a, double b, ColumnTerms* terms) {
    irradianceKernels::fillFaceRow(a, b, terms);
}

bool detectAvx2() {
    return false;
}

#endif

template <typename Kernels>
IrradianceKernels kernelsOf() {
    return {Kernels::project, Kernels::evaluate};
}

// Three and four channels are the common cases, and a constant number lets the compiler unroll.
template <template <typename, unsigned int> typename Kernels, typename Component>
IrradianceKernels chooseChannels(unsigned int channels) {
    if (channels == 4)
        return kernelsOf<Kernels<Component, 4>>();
    if (channels == 3)
        return kernelsOf<Kernels<Component, 3>>();
    return kernelsOf<Kernels<Component, 0>>();
}

template <template <typename, unsigned int> typename Kernels>
IrradianceKernels chooseComponent(IRRADIANCE_COMPONENT component, unsigned int channels) {
    switch (component) {
    case IRRADIANCE_COMPONENT::FLOAT32:
        return chooseChannels<Kernels, float>(channels);
    case IRRADIANCE_COMPONENT::UINT32:
        return chooseChannels<Kernels, uint32_t>(channels);
    case IRRADIANCE_COMPONENT::SINT32:
        return chooseChannels<Kernels, int32_t>(channels);
    case IRRADIANCE_COMPONENT::SINT8:
        return chooseChannels<Kernels, int8_t>(channels);
    case IRRADIANCE_COMPONENT::UINT8:
        break;
    }
    return chooseChannels<Kernels, uint8_t>(channels);
}

} // namespace

void fillFaceRow(ovMemory::BufferView<const double> a, double b, ColumnTerms* terms, bool useAvx2) {
    if (useAvx2)
        return fillFaceRowAvx2(a, b, terms);
    irradianceKernels::fillFaceRow(a, b, terms);
}

bool canIrradianceUseAvx2() {
    static const bool CAN = detectAvx2();
    return CAN;
}

IrradianceKernels irradianceKernelsOf(IRRADIANCE_COMPONENT component, unsigned int channels, bool useAvx2) {
    return useAvx2 ? chooseComponent<Avx2Kernels>(component, channels)
                   : chooseComponent<PlainKernels>(component, channels);
}

} // namespace ovVeldris
