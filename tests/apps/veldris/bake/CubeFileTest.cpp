#include <veldris/bake/CubeFile.h>

#include "support/TemporaryFolder.h"
#include "veldris/bake/CubeFileTesting.h"

#include <filesystem>
#include <fstream>

namespace {

using ovImages::COMPONENT_TYPE;
using ovMemory::String;
using veldris::CubeMap;

TEST(CubeFileTest, theExtensionChoosesTheFormat) {
    struct Case {
        const char* path;
        const char* name;
    };
    for (const Case& row :
         {Case{"a.dds", "dds"}, {"a.DDS", "dds"}, {".dds", "dds"}, {"a.dds.Ktx2", "ktx2"}}) {
        ASSERT_NE(veldris::findCubeFormat(row.path), nullptr) << row.path;
        EXPECT_EQ(veldris::findCubeFormat(row.path)->name, row.name);
    }
    for (const char* path : {"", "dds", "a.dds.png", "a.ddsx", "a.ktx", "a.ktx22", "a.", "a.dds/b"})
        EXPECT_EQ(veldris::findCubeFormat(path), nullptr) << path;
}

TEST(CubeFileTest, filesKeepCubes) {
    const TemporaryFolder folder;
    const CubeMap cube = countingCube(4, 3, COMPONENT_TYPE::HALF);
    for (const char* name : {"a.dds", "a.ktx2"}) {
        CubeMap back;
        String error;
        ASSERT_TRUE(veldris::writeCubeFile(folder.getPath(name), cube, error)) << error;
        ASSERT_TRUE(veldris::readCubeFile(folder.getPath(name), back, error)) << error;
        ASSERT_EQ(back.mips.size(), 3u);
        EXPECT_TRUE(std::ranges::equal(back.mips[1].getBytes(), cube.mips[1].getBytes()));
    }
}

TEST(CubeFileTest, failuresNameTheFile) {
    const TemporaryFolder folder;
    std::ofstream(folder.getPath("text.ktx2")) << "no cube at all";
    CubeMap cube;
    for (const char* name : {"text.ktx2", "missing.dds", "other.png"}) {
        String error;
        EXPECT_FALSE(veldris::readCubeFile(folder.getPath(name), cube, error));
        EXPECT_NE(error.find(name), String::npos) << error;
    }
    for (const char* name : {"other.png", "empty.dds", "none/a.ktx2"}) {
        String error;
        const CubeMap& written =
            String(name) == "empty.dds" ? cube : countingCube(1, 1, COMPONENT_TYPE::HALF);
        EXPECT_FALSE(veldris::writeCubeFile(folder.getPath(name), written, error));
        EXPECT_NE(error.find(name), String::npos) << error;
        EXPECT_FALSE(std::filesystem::exists(folder.getPath(name)));
    }
}

} // namespace
