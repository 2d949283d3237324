#include <ovVeldris/scripts/graphicsWrap/TextureWrappers.h>

#include <filesystem>
#include <ovGraphics/resources/Texture.h>
#include <ovImages/CompositeEncoder.h>
#include <scripts/graphicsWrap/GraphicsScripts.h>
#include <support/TemporaryFolder.h>

namespace {

class TextureWrappersTest : public GraphicsScripts {
protected:
    TextureWrappersTest() {
        evaluate("t = ovGraphics.TextureManager.getInstance():createOrRetrieve('t') "
                 "other = ovGraphics.TextureManager.getInstance():createOrRetrieve('other')");
    }
    ~TextureWrappersTest() override {
        getGraphics().getTextureManager()->erase("t");
        getGraphics().getTextureManager()->erase("other");
    }
    /// Two texels of four bytes: 1, 2, 3, 4, 250, 0, 0, 255.
    void loadBytes() {
        ASSERT_EQ(evaluate("t:setWidth(2) t:setHeight(1) t:setFormat(ovGraphics.FORMAT.R8G8B8A8_UNORM) "
                           "t:setCpuData(0, 0, ovMemory.Buffer.fromString('\\1\\2\\3\\4\\250\\0\\0\\255')) "
                           "return t:load()"),
                  "true");
    }
};

} // namespace

TEST_F(TextureWrappersTest, settingsGoInAndOut) {
    EXPECT_EQ(evaluate("return t.loadState .. t:getName()"), "0t");
    EXPECT_EQ(evaluate("t:setWidth(16) t:setHeight(8) t:setMipCount(0) return t:getWidth() .. ' ' .. "
                       "t:getHeight() .. ' ' .. t:getMipCount()"),
              "16 8 5");
    EXPECT_EQ(evaluate("t:setGammaCorrected(true) return t:getGammaCorrected()"), "true");
    EXPECT_EQ(evaluate("t:setSliceCount(3) return t:getSliceCount()"), "3");
    EXPECT_EQ(evaluate("t:setTexType(ovGraphics.TEXTURE_TYPE.CUBE) return t:getSliceCount()"), "6");
    EXPECT_EQ(evaluate("return t:getTexType() == ovGraphics.TEXTURE_TYPE.CUBE"), "true");
    EXPECT_EQ(evaluate("t:setFormat(ovGraphics.FORMAT.R32_FLOAT) return t:getFormat()"), "41");
    evaluate("t:setUsableAsRenderTarget(true)");
    EXPECT_TRUE(getGraphics().getTextureManager()->get("t")->getUsableAsRenderTarget());
}

TEST_F(TextureWrappersTest, texelsGoInAndOut) {
    loadBytes();
    EXPECT_EQ(evaluate("return t.loadState == ovGraphics.RESOURCE_LOAD_STATE.LOADED"), "true");
    EXPECT_EQ(evaluate("local b = t:readBack() return b:getSize() .. ' ' .. b:getData(4)"), "8 250");
    EXPECT_EQ(evaluate("return t:readBack(0, 7)"), "nil");
    EXPECT_EQ(evaluate("t:unload() return t.loadState"), "0");
    EXPECT_EQ(evaluate("return t:readBack()"), "nil");
    EXPECT_EQ(evaluate("return t:convertToImage()"), "nil");
}

TEST_F(TextureWrappersTest, mipsAreMade) {
    EXPECT_EQ(evaluate("t:setWidth(2) t:setMipCount(0) t:setCpuData(0, 0, "
                       "ovMemory.Buffer.fromString('\\0\\0\\0\\0\\100\\100\\100\\100')) t:load() "
                       "t:generateMips() return t:readBack(0, 1):getData(0)"),
              "50");
}

TEST_F(TextureWrappersTest, wrongArgumentsAreNamed) {
    EXPECT_EQ(evaluate("return t:setWidth(-1)"),
              "error: test:1: ovGraphics.Texture.setWidth: argument 2 expected an integer from 0 to "
              "4294967295, got -1");
    EXPECT_EQ(evaluate("return t:setTexType(7)"),
              "error: test:1: ovGraphics.Texture.setTexType: argument 2 is no value of TEXTURE_TYPE, got 7; "
              "the values are TEXTURE_2D or CUBE");
    EXPECT_EQ(
        evaluate("return t:setCpuData(0, 0, 'text')"),
        "error: test:1: ovGraphics.Texture.setCpuData: argument 4 (bytes) expected ovMemory.Buffer, got "
        "string");
    EXPECT_EQ(evaluate("return ovGraphics.TextureSaver.saveToHdr(t)"),
              "error: test:1: ovGraphics.TextureSaver.saveToHdr: argument 2 (path) expected string, got "
              "nothing");
}

TEST_F(TextureWrappersTest, picturesAreSaved) {
    const TemporaryFolder folder;
    loadBytes();
    const ovMemory::String path = folder.getPath("picture.hdr");
    EXPECT_EQ(evaluate("return ovGraphics.TextureSaver.saveToHdr(t, '" + path + "')"), "true");
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_EQ(evaluate("return ovGraphics.TextureSaver.saveToHdr(t, '" + folder.getPath("no/x.hdr") + "')"),
              "false");
    EXPECT_NE(getLogger().getText().find("Could not save the texture 't'"), ovMemory::String::npos);
}

// A constant environment of 1: the diagonal of the map's middle row reads 0.84, as IrradianceTransform tells.
TEST_F(TextureWrappersTest, irradianceIsComputed) {
    evaluate("t:setWidth(64) t:setHeight(32) t:setFormat(ovGraphics.FORMAT.R32G32B32A32_FLOAT) "
             "local b = ovMemory.Buffer.new(64 * 32 * 16) local f = ovMemory.BufferCastFloat.new(b) "
             "for i = 0, f:getSize() - 1 do f:setData(i, 1) end t:setCpuData(0, 0, b) t:load()");
    EXPECT_EQ(evaluate("return ovGraphics.TextureUtils.computeIrradianceSH(t, other)"), "true");
    EXPECT_EQ(evaluate("local f = ovMemory.BufferCastFloat.new(other:readBack()) "
                       "return string.format('%.2f', f:getData(16 * 64 * 4))"),
              "0.84");
    EXPECT_EQ(evaluate("t:unload() return ovGraphics.TextureUtils.computeIrradianceSH(t, other)"), "false");
    EXPECT_EQ(evaluate("return ovGraphics.TextureUtils.computeIrradianceSH(t, nil)"),
              "error: test:1: ovGraphics.TextureUtils.computeIrradianceSH: argument 2 (output) expected "
              "ovGraphics.Texture, got nil");
}

TEST_F(TextureWrappersTest, theExtensionSaysTheFormat) {
    const TemporaryFolder folder;
    loadBytes();
    evaluate("FOLDER = '" + folder.getPath("") + "'");
    EXPECT_EQ(evaluate("return t:save(FOLDER .. 'raw.png', true)"), "nil");
    const auto file = ovImages::CompositeEncoder().decodeFile(folder.getPath("raw.png"));
    ASSERT_TRUE(file) << file.error;
    EXPECT_EQ(ovMemory::Buffer<unsigned char>(file.image->getBytes().begin(), file.image->getBytes().end()),
              (ovMemory::Buffer<unsigned char>{1, 2, 3, 4, 250, 0, 0, 255}));
    EXPECT_NE(evaluate("return t:save(FOLDER .. 'a.jpg')").find("alpha"), ovMemory::String::npos)
        << "a warning";
    for (const char* name : {"a.exr", "a.hdr", "a.PNG"}) {
        evaluate("t:save(FOLDER .. '" + ovMemory::String(name) + "')");
        EXPECT_TRUE(std::filesystem::exists(folder.getPath(name))) << name;
    }
}

TEST_F(TextureWrappersTest, whatCannotBeSavedHasAReason) {
    const ovMemory::String start =
        "error: test:1: ovGraphics.Texture.save: Could not save the texture 't' to ";
    EXPECT_EQ(evaluate("t:save('a.png')"), start + "'a.png': it is not loaded; call load() before");
    loadBytes();
    EXPECT_TRUE(evaluate("t:save('a.xyz')")
                    .starts_with(start +
                                 "'a.xyz': Encoding file 'a.xyz' failed: its extension names no image "
                                 "format; expected one of png"));
    EXPECT_TRUE(evaluate("t:save('/no/such/folder/a.png')").starts_with(start + "'/no/such/folder/a.png': "));
    EXPECT_EQ(evaluate("t:save()"),
              "error: test:1: ovGraphics.Texture.save: argument 2 (path) expected string, "
              "got nothing");
    EXPECT_EQ(evaluate("ovGraphics.TextureManager.getInstance():erase('t') t:save('a.png')"),
              "error: test:1: ovGraphics.Texture.save: argument 1 expected ovGraphics.Texture, got "
              "ovGraphics.Texture 't' is gone: it was destroyed");
}
