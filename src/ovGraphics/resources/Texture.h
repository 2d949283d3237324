// Textures: images on the device, 2D, arrays of slices, or cubes.
#pragma once

#include <optional>
#include <ovGraphics/formats/Format.h>
#include <ovGraphics/resources/Resource.h>
#include <ovImages/Image.h>
#include <ovMemory/Result.h>

namespace ovImages {
struct CubeMap;
}

namespace ovGraphics {

class Sampler;
struct TextureContent;

/// How a texture takes the 8-bit numbers of a file. Numbers of other types are what the file says.
enum class TEXTURE_READING : unsigned int {
    AS_STORED = 0, ///< as the file says
    COLORS = 1,    ///< as sRGB-encoded colours
    NUMBERS = 2    ///< as they are: normals, roughness, masks
};

inline constexpr ovMemory::EnumEntry<TEXTURE_READING> TEXTURE_READING_ENTRIES[] = {
    {TEXTURE_READING::AS_STORED, "AS_STORED"},
    {TEXTURE_READING::COLORS, "COLORS"},
    {TEXTURE_READING::NUMBERS, "NUMBERS"},
};
constexpr ovMemory::EnumTable<TEXTURE_READING> enumTable(TEXTURE_READING) {
    return {"TEXTURE_READING", TEXTURE_READING_ENTRIES};
}

namespace device {
class Device;
class GpuTexture;
struct TextureDesc;
} // namespace device

/// A texture. Row 0 is the top row of every slice; cube faces are the slices in the order +X, -X, +Y, -Y, +Z,
/// -Z.
///
/// Setters store settings that the next load() uses. load() fails when the device lacks the format or the
/// size is zero or beyond its limits.
class OV_API Texture : public Resource {
public:
    /// Texels of one mip of one slice.
    struct CpuData {
        unsigned int slice;
        unsigned int mip;
        unsigned int rowPitch; ///< bytes; 0 when tight
        ovMemory::Buffer<unsigned char> bytes;
    };

    /// A new, unloaded 1 x 1 texture of R8G8B8A8_UNORM; a null system means the singleton.
    static ovMemory::UniquePtr<Texture> create(System* system);
    explicit Texture(System* system);
    ~Texture() override;

    unsigned int getWidth() const { return _width; }   ///< texels
    unsigned int getHeight() const { return _height; } ///< texels
    FORMAT getFormat() const { return _format; }
    bool getGammaCorrected() const { return _gammaCorrected; }
    TEXTURE_TYPE getTexType() const { return _type; }
    /// Array slices; 6 for a cube.
    unsigned int getSliceCount() const;
    /// Mips that load() makes: those asked for, at most a full chain.
    unsigned int getMipCount() const;
    /// What setMipCount() was given; 0 is the full chain.
    unsigned int getRequestedMipCount() const { return _mipCount; }
    bool getUsableAsRenderTarget() const { return _usableAsRenderTarget; }
    unsigned int getMultisampleQuality() const { return _multisampleQuality; }
    bool getMightManuallyGenerateMip() const { return _mightManuallyGenerateMip; }

    void setWidth(unsigned int texels);
    void setHeight(unsigned int texels);
    void setFormat(FORMAT format);
    /// Decode sRGB when sampled and encode it when drawn to. A format without an sRGB sibling refuses to load
    /// with it.
    void setGammaCorrected(bool gammaCorrected);
    void setTexType(TEXTURE_TYPE type);
    /// Slices of a 2D array; ignored for cubes. Default 1.
    void setSliceCount(unsigned int slices);
    /// 0 asks for the full chain. Default 1.
    void setMipCount(unsigned int mips);
    void setUsableAsRenderTarget(bool usable);
    /// Samples per texel minus one that a render target asks for; 0 (the default) is no multisampling.
    void setMultisampleQuality(unsigned int quality);
    /// Announces generateMips() calls, for devices that must know when a texture is made (OpenGL need not).
    /// Default false.
    void setMightManuallyGenerateMip(bool might);

    /// The sampler that surfaces read this texture with, when they leave the choice to it
    /// (Shader::useSamplersOfTextures). Borrowed; null, the default: they choose.
    void setSampler(Sampler* sampler);
    Sampler* getSampler() const;

    /// Mips of a full chain down to 1 x 1 for the present width and height.
    unsigned int getNeededMipsForSize() const;

    /// Gives the texels of one mip of one slice, uploaded by the next load(). Earlier data of the same place
    /// is replaced. @param rowPitch bytes from one row (of blocks) to the next, 0 when tight
    void setCpuData(unsigned int slice, unsigned int mip, ovMemory::BufferView<const unsigned char> bytes,
                    unsigned int rowPitch = 0);
    /// setCpuData of mip 0 of the first slice that has no data yet.
    void addCpuDataSliceForward(ovMemory::BufferView<const unsigned char> bytes, unsigned int rowPitch,
                                unsigned int slicePitch);
    void clearCpuData();
    /// The data that the next load() uploads, in the order given; empty when it was dropped.
    const ovMemory::Buffer<CpuData>& getCpuData() const { return _cpuData; }
    /// Whether dropCpuCopies() freed data that load() would need again.
    bool areCpuCopiesDropped() const { return _copiesAreDropped; }
    /// Whether data was given for other mips than the first, so that load() computes none.
    bool hasOwnMips() const { return _hasOwnMips; }
    /// Frees the data of a loaded texture, whose texels then are on the device alone. Loading again needs the
    /// data again, or clearCpuData(). @return false after one log line, changing nothing, when the texture is
    /// not loaded
    bool dropCpuCopies();

    /// Takes width, height, format and texels (mip 0 of slice 0) from an image: 1 to 4 channels of 8 or
    /// 16-bit UNORM, half or float; three channels become four with alpha 1, but for floats. An sRGB-encoded
    /// 8-bit image makes a gamma-corrected texture of four channels, other sRGB-encoded ones are decoded to
    /// linear floats; raw hands the stored numbers over as they are.
    void setFromImage(const ovImages::ImageView& image, bool raw = false);
    /// The same of an image that is handed over: its pixels are moved where they serve as they are, so that a
    /// large picture is not in memory twice.
    void takeImage(ovImages::Image image, bool raw = false);
    /// Takes side, format and the texels of all mips from a cube such as ovImages::readCubeFile() gives: a
    /// prefiltered environment, ready for a material. Formats are those of setFromImage(); of sRGB-encoded
    /// cubes those of 8 bits make gamma-corrected textures. A cube without mips makes a texture that does not
    /// load.
    void setFromCube(const ovImages::CubeMap& cube);

    /// Takes everything from a file: a picture (PNG, JPEG, HDR, EXR), of which grey becomes colour, as
    /// surfaces read the channels that they name; or a cube (.dds, .ktx2). The texture remembers the file
    /// until it is given other data. @param path absolute, or relative to the launched path
    /// @return a failure that names the file, changing nothing, when it cannot be read
    ovMemory::Result setFromFile(ovMemory::StringView path,
                                 TEXTURE_READING reading = TEXTURE_READING::AS_STORED);
    /// The file of setFromFile(), absolute; empty when the texels are from elsewhere.
    const ovMemory::String& getSourceFile() const { return _sourceFile; }
    TEXTURE_READING getSourceReading() const { return _sourceReading; }

    /// Fills all mips below the first from the first. An unloaded texture is left alone after one log line.
    void generateMips();

    /// Reads one mip of one slice back, rows tight, in the texture's format.
    /// @return nothing after one log line when the texture is unloaded or slice or mip is out of range
    std::optional<ovMemory::Buffer<unsigned char>> readBack(unsigned int slice = 0, unsigned int mip = 0);

    /// The same as an image: 8, 16-bit, half or float components as the format has them; depth as one float.
    /// @return null after one log line when readBack() fails or an image cannot hold the format
    ovMemory::UniquePtr<ovImages::Image> convertToImage(unsigned int slice = 0, unsigned int mip = 0);

    void reset() override;

    /// The device's texture; null when unloaded. Uploads what load() deferred.
    device::GpuTexture* getGpuTexture();
    /// Counts the loads, so that what was built on an earlier device texture can tell.
    unsigned int getLoadCount() const { return _loadCount; }

private:
    void _setSettingsOf(const TextureContent& content, TEXTURE_TYPE type, unsigned int width,
                        unsigned int height);
    void _addCpuData(CpuData data);
    void _forgetData();
    ovMemory::Result _takePicture(const ovMemory::String& path, TEXTURE_READING reading);
    ovMemory::Result _takeCubeFile(const ovMemory::String& path);
    bool _load(ovMemory::String& error) override;
    void _unload() override;
    bool _checkSettings(const device::Device& device, ovMemory::String& error) const;
    bool _checkCpuData(ovMemory::String& error) const;
    void _upload();
    device::TextureDesc _describe() const;
    template <typename T>
    void _set(T& setting, T value);

    TEXTURE_TYPE _type = TEXTURE_TYPE::TEXTURE_2D;
    FORMAT _format = FORMAT::R8G8B8A8_UNORM;
    unsigned int _width = 1;
    unsigned int _height = 1;
    unsigned int _sliceCount = 1;
    unsigned int _mipCount = 1;
    unsigned int _multisampleQuality = 0;
    bool _gammaCorrected = false;
    bool _usableAsRenderTarget = false;
    bool _mightManuallyGenerateMip = false;
    bool _uploadPending = false;
    unsigned int _loadCount = 0;
    ovMemory::Buffer<CpuData> _cpuData;
    bool _copiesAreDropped = false;
    bool _hasOwnMips = false;
    ovMemory::String _sourceFile;
    TEXTURE_READING _sourceReading = TEXTURE_READING::AS_STORED;
    ovMemory::Borrowed<Sampler> _sampler;
    ovMemory::UniquePtr<device::GpuTexture> _gpuTexture;
};

} // namespace ovGraphics
