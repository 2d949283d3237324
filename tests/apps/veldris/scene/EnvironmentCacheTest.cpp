#include <veldris/scene/EnvironmentCache.h>

#include <fstream>
#include <gtest/gtest.h>
#include <ovGraphics/System.h>
#include <ovGraphics/resources/Texture.h>
#include <support/TemporaryFolder.h>
#include <veldris/SessionTesting.h>

namespace {

using ovGraphics::Texture;
using ovMemory::String;

class EnvironmentCacheTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(openOnSoftware(_session, {.cache = _folder.getPath("cache")}));
        _panorama =
            ovImages::Image(4, 2, 4, ovImages::COMPONENT_TYPE::FLOAT, ovImages::COLOR_ENCODING::LINEAR);
    }

    /// A loaded cube of two mips whose texels tell their place.
    ovMemory::UniquePtr<Texture> makeCube(unsigned char base) {
        auto cube = Texture::create(&_session.getGraphics());
        cube->setTexType(ovGraphics::TEXTURE_TYPE::CUBE);
        cube->setWidth(2);
        cube->setHeight(2);
        cube->setMipCount(2);
        for (unsigned int slice = 0; slice < 6; ++slice) {
            for (unsigned int mip = 0; mip < 2; ++mip)
                cube->setCpuData(slice, mip,
                                 ovMemory::Buffer<unsigned char>(
                                     mip == 0 ? 16 : 4, static_cast<unsigned char>(base + 2 * slice + mip)));
        }
        EXPECT_TRUE(cube->load());
        return cube;
    }
    veldris::EnvironmentCache cache(ovMemory::StringView settings = "256") {
        return {_session.getGraphics(), _panorama.view(), settings};
    }
    bool loads(const veldris::EnvironmentCache& cache) {
        const auto a = Texture::create(&_session.getGraphics());
        const auto b = Texture::create(&_session.getGraphics());
        Texture* const textures[] = {a.get(), b.get()};
        const bool loaded = cache.load(textures);
        EXPECT_EQ(loaded, !a->isUnloaded() && !b->isUnloaded());
        return loaded;
    }
    void store() {
        const auto a = makeCube(0);
        const auto b = makeCube(100);
        Texture* const textures[] = {a.get(), b.get()};
        EXPECT_EQ(cache().store(textures), "");
    }

    TemporaryFolder _folder;
    veldris::Session _session;
    ovImages::Image _panorama;
};

TEST_F(EnvironmentCacheTest, givesBackWhatWasStored) {
    EXPECT_FALSE(loads(cache()));
    store();
    const auto a = Texture::create(&_session.getGraphics());
    const auto b = Texture::create(&_session.getGraphics());
    Texture* const textures[] = {a.get(), b.get()};
    ASSERT_TRUE(cache().load(textures));
    EXPECT_EQ(a->getTexType(), ovGraphics::TEXTURE_TYPE::CUBE);
    for (unsigned int slice = 0; slice < 6; ++slice) {
        for (unsigned int mip = 0; mip < 2; ++mip) {
            EXPECT_EQ(a->readBack(slice, mip)->front(), 2 * slice + mip);
            EXPECT_EQ(b->readBack(slice, mip)->front(), 100 + 2 * slice + mip);
        }
    }
}

TEST_F(EnvironmentCacheTest, otherSettingsAndOtherTexelsAreOtherFiles) {
    store();
    EXPECT_TRUE(loads(cache()));
    EXPECT_FALSE(loads(cache("128")));
    _panorama.setComponent(3, 1, 2, 0.25f);
    EXPECT_FALSE(loads(cache()));
}

TEST_F(EnvironmentCacheTest, damagedFilesCountAsAbsent) {
    store();
    const String path = cache().getPath();
    std::ifstream file(path, std::ios::binary);
    const String whole{std::istreambuf_iterator<char>(file), {}};
    const auto isTaken = [&](const String& bytes) {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
        return loads(cache());
    };
    EXPECT_TRUE(isTaken(whole));
    for (std::size_t size = 0; size < whole.size(); size += 7)
        EXPECT_FALSE(isTaken(whole.substr(0, size))) << size;
    for (std::size_t place = 0; place < whole.size(); place += 11) {
        String changed = whole;
        changed[place] = static_cast<char>(changed[place] ^ 0x40);
        EXPECT_FALSE(isTaken(changed)) << place;
    }
}

TEST_F(EnvironmentCacheTest, withoutAFolderNothingIsKept) {
    veldris::Session session;
    ASSERT_NO_FATAL_FAILURE(openOnSoftware(session));
    const veldris::EnvironmentCache none(session.getGraphics(), _panorama.view(), "");
    EXPECT_EQ(none.getPath(), "");
    EXPECT_FALSE(none.load({}));
    EXPECT_EQ(none.store({}), "");
}

TEST_F(EnvironmentCacheTest, aFolderThatCannotBeWrittenIsTold) {
    // It was there when the session began.
    std::filesystem::remove_all(_folder.getPath("cache"));
    std::ofstream(_folder.getPath("cache")) << "x";
    EXPECT_TRUE(cache().store({}).starts_with("The filtered environment is not kept: "));
}

} // namespace
