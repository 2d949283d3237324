#include <ovImages/support/Hostile.h>

#include <gtest/gtest.h>

#include <random>

namespace hostile {

namespace {

constexpr std::size_t MUTATION_LIMIT = std::size_t(4) << 20;

void expectSound(const ovImages::DecodeResult& result) {
    if (!result) {
        EXPECT_FALSE(result.error.empty());
        return;
    }
    EXPECT_TRUE(result.error.empty()) << result.error;
    ovMemory::String fault;
    EXPECT_TRUE(ovImages::isValid(result.image->view(), &fault)) << fault;
    EXPECT_LE(result.image->getBytes().size(), MUTATION_LIMIT);
}

} // namespace

void expectCutsRefused(const ovImages::Encoder& encoder, ovMemory::BufferView<const unsigned char> file) {
    ASSERT_TRUE(encoder.decode(file)) << encoder.decode(file).error;
    ovImages::DecodeOptions lenient;
    lenient.refuseDamaged = false;
    for (std::size_t size = 0; size < file.size(); ++size) {
        // A copy of exactly this size, so that reading past the end is found by the address sanitizer.
        const ovMemory::Buffer<unsigned char> cut(file.begin(),
                                                  file.begin() + static_cast<std::ptrdiff_t>(size));
        const ovImages::DecodeResult result = encoder.decode(cut);
        EXPECT_FALSE(result) << "cut to " << size << " of " << file.size() << " bytes";
        expectSound(result);
        expectSound(encoder.decode(cut, lenient));
    }
}

void expectMutationsSurvived(const ovImages::Encoder& encoder, ovMemory::BufferView<const unsigned char> file,
                             unsigned count) {
    std::mt19937 random(20240229);
    ovImages::DecodeOptions options;
    options.maxBytes = MUTATION_LIMIT;
    unsigned refused = 0;
    for (unsigned i = 0; i < count; ++i) {
        ovMemory::Buffer<unsigned char> changed(file.begin(), file.end());
        for (std::size_t changes = 1 + random() % 8; changes > 0; --changes)
            changed[random() % changed.size()] = static_cast<unsigned char>(random());
        options.refuseDamaged = i % 2 == 0;
        const ovImages::DecodeResult result = encoder.decode(changed, options);
        expectSound(result);
        refused += result ? 0 : 1;
    }
    // Else the changes would not have reached anything that matters.
    EXPECT_GT(refused, count / 50);
}

} // namespace hostile
