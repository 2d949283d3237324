#include <ovImages/cubes/CubeFile.h>

#include "ovImages/cubes/CubeFileTesting.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

using ovImages::COMPONENT_TYPE;
using ovImages::CubeMap;
using ovImages::CubeReadResult;
using ovMemory::String;

TEST(CubeFileTest, theExtensionNamesTheFormat) {
    struct Case {
        const char* path;
        const char* name;
    };
    const Case cases[] = {{"a.dds", "dds"}, {"a.DDS", "dds"}, {".dds", "dds"},   {"a.dds.Ktx2", "ktx2"},
                          {"", ""},         {"dds", ""},      {"a.dds.png", ""}, {"a.ddsx", ""},
                          {"a.ktx", ""},    {"a.ktx22", ""},  {"a.", ""},        {"a.dds/b", ""}};
    for (const Case& row : cases)
        EXPECT_EQ(ovImages::cubeFormatOf(row.path), row.name) << row.path;
}

TEST(CubeFileTest, soDoTheFirstBytes) {
    for (const char* format : {"dds", "ktx2"}) {
        ovMemory::Buffer<unsigned char> bytes =
            ovImages::encodeCube(format, countingCube(1, 1, COMPONENT_TYPE::HALF));
        bytes.resize(ovImages::CUBE_SIGNATURE_BYTES);
        EXPECT_EQ(ovImages::cubeFormatOfBytes(bytes), format);
        bytes.resize(3);
        EXPECT_EQ(ovImages::cubeFormatOfBytes(bytes), "") << "cut short";
    }
    EXPECT_EQ(ovImages::cubeFormatOfBytes({}), "");
}

TEST(CubeFileTest, filesKeepCubes) {
    const TemporaryFolder folder;
    const CubeMap cube = countingCube(4, 3, COMPONENT_TYPE::HALF);
    for (const char* name : {"a.dds", "a.ktx2"}) {
        const String path = folder.getPath(name);
        ASSERT_TRUE(ovImages::writeCubeFile(path, cube));
        const String other = folder.getPath("read by its content");
        std::filesystem::rename(path, other);
        const CubeReadResult back = ovImages::readCubeFile(other);
        ASSERT_TRUE(back) << back.error;
        EXPECT_EQ(back.place, other);
        ASSERT_EQ(back.cube.mips.size(), 3u);
        EXPECT_TRUE(std::ranges::equal(back.cube.mips[1].getBytes(), cube.mips[1].getBytes()));
    }
}

TEST(CubeFileTest, failuresNameTheFile) {
    const TemporaryFolder folder;
    std::ofstream(folder.getPath("text.ktx2")) << "no cube at all";
    for (const char* name : {"text.ktx2", "missing.dds"}) {
        const CubeReadResult read = ovImages::readCubeFile(folder.getPath(name));
        EXPECT_FALSE(read);
        EXPECT_NE(read.error.find(name), String::npos) << read.error;
    }
    for (const char* name : {"other.png", "empty.dds", "none/a.ktx2"}) {
        const CubeMap cube =
            String(name) == "empty.dds" ? CubeMap() : countingCube(1, 1, COMPONENT_TYPE::HALF);
        const ovMemory::Result written = ovImages::writeCubeFile(folder.getPath(name), cube);
        EXPECT_NE(written.error.find(name), String::npos) << written.error;
        EXPECT_FALSE(std::filesystem::exists(folder.getPath(name)));
    }
    EXPECT_TRUE(ovImages::encodeCube("png", countingCube(1, 1, COMPONENT_TYPE::HALF)).empty());
}

} // namespace
