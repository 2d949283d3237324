#include <ovImages/detail/Components.h>

#include <ovImages/Half.h>

#include <cmath>
#include <cstdint>
#include <cstring>

namespace ovImages::detail {

namespace {

template <typename STORED, typename CONVERT>
void loadAll(const unsigned char* source, ovMemory::BufferView<float> values, CONVERT convert) {
    for (float& value : values) {
        // Through memcpy, because the bytes of a view need not be aligned for the type.
        STORED stored;
        std::memcpy(&stored, source, sizeof(STORED));
        value = convert(stored);
        source += sizeof(STORED);
    }
}

template <typename STORED, typename CONVERT>
void storeAll(ovMemory::BufferView<const float> values, unsigned char* target, CONVERT convert) {
    for (const float value : values) {
        const STORED stored = convert(value);
        std::memcpy(target, &stored, sizeof(STORED));
        target += sizeof(STORED);
    }
}

template <typename STORED>
void storeUnorm(ovMemory::BufferView<const float> values, unsigned char* target, StoreLosses& losses) {
    constexpr float LARGEST = static_cast<float>(STORED(~STORED(0)));
    storeAll<STORED>(values, target, [&losses](float value) {
        losses.nanToZero += std::isnan(value) ? 1 : 0;
        // Written so that NaN fails the first comparison.
        const float clamped = value > 0.0f ? (value < 1.0f ? value : 1.0f) : 0.0f;
        // A float's rounding off at exactly half a step; lround is many times slower.
        return static_cast<STORED>(clamped * LARGEST + 0.5f); // NOLINT(bugprone-incorrect-roundings)
    });
}

} // namespace

void loadComponents(const unsigned char* source, COMPONENT_TYPE type, ovMemory::BufferView<float> values) {
    switch (type) {
    case COMPONENT_TYPE::UINT8:
        return loadAll<std::uint8_t>(source, values,
                                     [](std::uint8_t v) { return static_cast<float>(v) / 255.0f; });
    case COMPONENT_TYPE::UINT16:
        return loadAll<std::uint16_t>(source, values,
                                      [](std::uint16_t v) { return static_cast<float>(v) / 65535.0f; });
    case COMPONENT_TYPE::HALF:
        return loadAll<std::uint16_t>(source, values, halfToFloat);
    case COMPONENT_TYPE::FLOAT:
        std::memcpy(values.data(), source, values.size_bytes());
        return;
    }
}

StoreLosses storeComponents(ovMemory::BufferView<const float> values, COMPONENT_TYPE type,
                            unsigned char* target) {
    StoreLosses losses;
    switch (type) {
    case COMPONENT_TYPE::UINT8:
        storeUnorm<std::uint8_t>(values, target, losses);
        break;
    case COMPONENT_TYPE::UINT16:
        storeUnorm<std::uint16_t>(values, target, losses);
        break;
    case COMPONENT_TYPE::HALF:
        storeAll<std::uint16_t>(values, target, [&losses](float value) {
            if (!(std::fabs(value) > LARGEST_HALF))
                return floatToHalf(value);
            ++losses.clampedToHalf;
            // Clamped and counted: an infinity in a picture spreads over whole frames when it is filtered.
            return floatToHalf(std::copysign(LARGEST_HALF, value));
        });
        break;
    case COMPONENT_TYPE::FLOAT:
        std::memcpy(target, values.data(), values.size_bytes());
        break;
    }
    return losses;
}

} // namespace ovImages::detail
