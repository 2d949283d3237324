#include <ovGraphics/resources/Texture.h>

#include <algorithm>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/formats/TextureUtils.h>
#include <ovGraphics/resources/Sampler.h>
#include <ovGraphics/resources/TextureImages.h>
#include <ovImages/CompositeEncoder.h>
#include <ovImages/Conversion.h>
#include <ovImages/cubes/CubeFile.h>
#include <ovResources/ResourceManager.h>

namespace ovGraphics {

namespace {

constexpr unsigned int CUBE_FACES = 6;

// A texture has up to thousands of images, so every message names the one that it means.
ovMemory::String placeName(unsigned int slice, unsigned int mip) {
    return "mip " + std::to_string(mip) + " of slice " + std::to_string(slice);
}

unsigned int mipSize(unsigned int size, unsigned int mip) {
    return std::max(1u, size >> mip);
}

} // namespace

ovMemory::UniquePtr<Texture> Texture::create(System* system) {
    return std::make_unique<Texture>(system);
}

Texture::Texture(System* system)
    : Resource(system, "texture") {}

Texture::~Texture() = default;

unsigned int Texture::getSliceCount() const {
    return _type == TEXTURE_TYPE::CUBE ? CUBE_FACES : _sliceCount;
}

// Capped, so that a number that was right for another size does not stop a load.
unsigned int Texture::getMipCount() const {
    const unsigned int needed = getNeededMipsForSize();
    return _mipCount == 0 ? needed : std::min(_mipCount, needed);
}

// Tools set everything before every load. Only a real change may cost a new texture.
template <typename T>
void Texture::_set(T& setting, T value) {
    if (setting == value)
        return;
    setting = value;
    _settingChanged();
}

void Texture::setWidth(unsigned int texels) {
    _set(_width, texels);
}
void Texture::setHeight(unsigned int texels) {
    _set(_height, texels);
}
void Texture::setFormat(FORMAT format) {
    _set(_format, format);
}
void Texture::setGammaCorrected(bool gammaCorrected) {
    _set(_gammaCorrected, gammaCorrected);
}
void Texture::setTexType(TEXTURE_TYPE type) {
    _set(_type, type);
}
void Texture::setSliceCount(unsigned int slices) {
    _set(_sliceCount, slices);
}
void Texture::setMipCount(unsigned int mips) {
    _set(_mipCount, mips);
}
void Texture::setUsableAsRenderTarget(bool usable) {
    _set(_usableAsRenderTarget, usable);
}
void Texture::setMultisampleQuality(unsigned int quality) {
    _set(_multisampleQuality, quality);
}
void Texture::setMightManuallyGenerateMip(bool might) {
    _set(_mightManuallyGenerateMip, might);
}

unsigned int Texture::getNeededMipsForSize() const {
    return TextureUtils::getNeededMipsForSize(_width, _height);
}

void Texture::setCpuData(unsigned int slice, unsigned int mip,
                         ovMemory::BufferView<const unsigned char> bytes, unsigned int rowPitch) {
    _addCpuData({slice, mip, rowPitch, {bytes.begin(), bytes.end()}});
}

void Texture::_addCpuData(CpuData added) {
    // Data that is given twice for one place replaces the first, as a setter would.
    const auto samePlace = [&](const CpuData& data) {
        return data.slice == added.slice && data.mip == added.mip;
    };
    _cpuData.erase(std::remove_if(_cpuData.begin(), _cpuData.end(), samePlace), _cpuData.end());
    _hasOwnMips = _hasOwnMips || added.mip > 0;
    _cpuData.push_back(std::move(added));
    _copiesAreDropped = false;
    _sourceFile.clear();
    _settingChanged();
}

void Texture::addCpuDataSliceForward(ovMemory::BufferView<const unsigned char> bytes, unsigned int rowPitch,
                                     unsigned int slicePitch) {
    unsigned int slice = 0;
    const auto hasData = [&](const CpuData& data) { return data.slice == slice && data.mip == 0; };
    while (std::any_of(_cpuData.begin(), _cpuData.end(), hasData))
        ++slice;
    setCpuData(slice, 0,
               slicePitch > 0 ? bytes.first(std::min<std::size_t>(slicePitch, bytes.size())) : bytes,
               rowPitch);
}

bool Texture::dropCpuCopies() {
    if (!getGpuTexture()) { // uploads what was deferred
        _logFailure("drop the CPU copies of", "it is not loaded, and they are all there is; load it first.");
        return false;
    }
    _copiesAreDropped = _copiesAreDropped || !_cpuData.empty();
    _cpuData = {};
    return true;
}

void Texture::clearCpuData() {
    _forgetData();
    _settingChanged();
}

void Texture::setFromImage(const ovImages::ImageView& image, bool raw) {
    TextureContent content = textureContentOf(image, raw);
    _setSettingsOf(content, TEXTURE_TYPE::TEXTURE_2D, image.width, image.height);
    if (content.converted.isEmpty())
        setCpuData(0, 0, image.bytes);
    else
        _addCpuData({0, 0, 0, content.converted.takeBytes()});
}

void Texture::takeImage(ovImages::Image image, bool raw) {
    TextureContent content = textureContentOf(image.view(), raw);
    _setSettingsOf(content, TEXTURE_TYPE::TEXTURE_2D, image.getWidth(), image.getHeight());
    _addCpuData({0, 0, 0, content.converted.isEmpty() ? image.takeBytes() : content.converted.takeBytes()});
}

void Texture::setFromCube(const ovImages::CubeMap& cube) {
    _setSettingsOf({}, TEXTURE_TYPE::CUBE, cube.getSide(), cube.getSide());
    for (unsigned int mip = 0; mip < cube.mips.size(); ++mip) {
        for (unsigned int face = 0; face < ovImages::FACE_COUNT; ++face) {
            const ovImages::ImageView view = ovImages::faceOf(cube.mips[mip], face);
            TextureContent content = textureContentOf(view, false);
            if (mip == 0 && face == 0)
                _setSettingsOf(content, TEXTURE_TYPE::CUBE, view.width, view.height);
            if (content.converted.isEmpty())
                setCpuData(face, mip, view.bytes);
            else
                _addCpuData({face, mip, 0, content.converted.takeBytes()});
        }
    }
    setMipCount(static_cast<unsigned int>(cube.mips.size()));
}

void Texture::_setSettingsOf(const TextureContent& content, TEXTURE_TYPE type, unsigned int width,
                             unsigned int height) {
    setTexType(type);
    setSliceCount(1);
    setWidth(width);
    setHeight(height);
    setFormat(content.format);
    setGammaCorrected(content.gammaCorrected);
    _forgetData();
}

void Texture::_forgetData() {
    _cpuData.clear();
    _copiesAreDropped = false;
    _hasOwnMips = false;
    _sourceFile.clear();
}

ovMemory::Result Texture::setFromFile(ovMemory::StringView path, TEXTURE_READING reading) {
    ovMemory::String absolute = ovResources::ResourceManager::getInstance()->getAbsoluteFromRelative(path);
    ovMemory::Result read =
        ovImages::cubeFormatOf(path).empty() ? _takePicture(absolute, reading) : _takeCubeFile(absolute);
    if (!read)
        return read;
    _sourceFile = std::move(absolute);
    _sourceReading = reading;
    return read;
}

ovMemory::Result Texture::_takePicture(const ovMemory::String& path, TEXTURE_READING reading) {
    constexpr unsigned int RGBA = 4;
    ovImages::DecodeResult decoded = ovImages::CompositeEncoder().decodeFile(path);
    if (!decoded)
        return decoded;
    ovImages::Image image = std::move(*decoded.image);
    if (image.getComponentType() == ovImages::COMPONENT_TYPE::UINT8 && reading != TEXTURE_READING::AS_STORED)
        image.setEncoding(reading == TEXTURE_READING::COLORS ? ovImages::COLOR_ENCODING::SRGB
                                                             : ovImages::COLOR_ENCODING::LINEAR);
    if (image.getChannels() != RGBA)
        image = convertImage(image.view(), image.getComponentType(), RGBA, image.getEncoding());
    if (image.isEmpty())
        return ovMemory::failed("The picture '" + path + "' does not fit into memory; make it smaller.",
                                path);
    takeImage(std::move(image));
    return decoded;
}

ovMemory::Result Texture::_takeCubeFile(const ovMemory::String& path) {
    auto read = ovImages::readCubeFile(path);
    if (read)
        setFromCube(read.cube);
    return read;
}

void Texture::setSampler(Sampler* sampler) {
    _sampler = sampler;
    noteBindingChange();
}

Sampler* Texture::getSampler() const {
    return _sampler.get();
}

void Texture::generateMips() {
    if (device::GpuTexture* texture = getGpuTexture())
        getSystem()->getDevice()->generateMips(*texture);
    else
        _logFailure("generate the mips of", "it is not loaded; load it first.");
}

std::optional<ovMemory::Buffer<unsigned char>> Texture::readBack(unsigned int slice, unsigned int mip) {
    const auto refuse = [&](ovMemory::StringView reason) {
        _logFailure("read " + placeName(slice, mip) + " of", reason);
        return std::nullopt;
    };
    device::GpuTexture* texture = getGpuTexture();
    if (!texture)
        return refuse("it is not loaded; load it first.");
    if (slice >= texture->getDesc().slices || mip >= texture->getDesc().mips)
        return refuse("it has " + std::to_string(texture->getDesc().slices) + " slices of " +
                      std::to_string(texture->getDesc().mips) + " mips.");
    ovMemory::Buffer<unsigned char> bytes;
    if (!getSystem()->getDevice()->readTexture(*texture, slice, mip, bytes))
        return refuse("the device cannot read the format " +
                      ovMemory::String(TextureUtils::getFormatName(texture->getDesc().format)) + ".");
    return bytes;
}

ovMemory::UniquePtr<ovImages::Image> Texture::convertToImage(unsigned int slice, unsigned int mip) {
    auto bytes = readBack(slice, mip);
    if (!bytes)
        return nullptr;
    const device::TextureDesc& desc = _gpuTexture->getDesc(); // the settings may have changed since the load
    auto image = imageOf(std::move(*bytes), desc.format, desc.gammaCorrected, mipSize(desc.width, mip),
                         mipSize(desc.height, mip));
    if (!image)
        _logFailure("make an image of",
                    "images cannot hold the format " +
                        ovMemory::String(TextureUtils::getFormatName(desc.format)) +
                        "; draw it into an 8, 16-bit, half or float UNORM or FLOAT texture first.");
    return image;
}

void Texture::reset() {
    Resource::reset();
    _forgetData();
    _sampler = nullptr;
    _type = TEXTURE_TYPE::TEXTURE_2D;
    _format = FORMAT::R8G8B8A8_UNORM;
    _width = _height = _sliceCount = _mipCount = 1;
    _multisampleQuality = 0;
    _gammaCorrected = _usableAsRenderTarget = _mightManuallyGenerateMip = false;
}

device::GpuTexture* Texture::getGpuTexture() {
    // The one place that every user of the texture goes through, so that a deferred upload cannot be missed.
    if (_uploadPending)
        _upload();
    return _gpuTexture.get();
}

bool Texture::_load(ovMemory::String& error) {
    device::Device* device = _getDevice(error);
    if (!device)
        return false;
    if (!_checkSettings(*device, error) || !_checkCpuData(error))
        return false;
    _gpuTexture = device->createTexture(_describe(), error);
    if (!_gpuTexture)
        return false;
    ++_loadCount;
    _uploadPending = true;
    if (getGpuUploadCanBeDeferred())
        _setLoadState(RESOURCE_LOAD_STATE::READY_FOR_RENDERING);
    else
        _upload();
    return true;
}

void Texture::_unload() {
    _gpuTexture.reset();
    _uploadPending = false;
}

// The device would refuse these too; here the message can name the setter that mends it.
bool Texture::_checkSettings(const device::Device& device, ovMemory::String& error) const {
    const ovMemory::String format(TextureUtils::getFormatName(_format));
    const bool hasSrgb =
        TextureUtils::isFormatSrgb(_format) || TextureUtils::getFormatSrgbEquivalent(_format) != _format;
    const unsigned int limit =
        _type == TEXTURE_TYPE::CUBE ? device.getInfo().maxCubeSize : device.getInfo().maxTextureSize;
    const ovMemory::String size = std::to_string(_width) + " x " + std::to_string(_height) + " texels";
    if (_width == 0 || _height == 0)
        error = "it has " + size + "; each side needs 1 or more. A picture that it was set from was none.";
    else if (_width > limit || _height > limit)
        error = size + " are beyond the device's limit of " + std::to_string(limit) +
                " a side; make the picture smaller.";
    else if (_gammaCorrected && !hasSrgb)
        error = "the format " + format + " has no sRGB sibling; switch gamma correction off.";
    else if (_usableAsRenderTarget && !device.supportsRenderTarget(_format))
        error = "the device cannot draw to the format " + format + "; choose another.";
    else if (_type == TEXTURE_TYPE::CUBE && _width != _height)
        error = "cube faces are square, and " + size + " were asked for.";
    return error.empty();
}

// Here and not at setCpuData(): format and size may still be set after the data.
bool Texture::_checkCpuData(ovMemory::String& error) const {
    if (_copiesAreDropped) {
        error =
            "its data was dropped by Texture::dropCpuCopies; give it again, or call Texture::clearCpuData.";
        return false;
    }
    for (const CpuData& data : _cpuData) {
        if (data.slice >= getSliceCount() || data.mip >= getMipCount()) {
            error = "data was given for " + placeName(data.slice, data.mip) + ", and it has " +
                    std::to_string(getSliceCount()) + " slices of " + std::to_string(getMipCount()) +
                    " mips.";
            return false;
        }
        const unsigned int width = mipSize(_width, data.mip);
        const unsigned int height = mipSize(_height, data.mip);
        const std::size_t rowSize = TextureUtils::getRowPitch(_format, width);
        // Rows of blocks where the format is compressed.
        const std::size_t rows = rowSize ? TextureUtils::getSliceSize(_format, width, height) / rowSize : 0;
        const std::size_t pitch = data.rowPitch ? data.rowPitch : rowSize;
        const std::size_t needed = rows == 0 ? 0 : pitch * (rows - 1) + rowSize;
        if (pitch < rowSize || data.bytes.size() < needed) {
            error = "the data of " + placeName(data.slice, data.mip) + " has " +
                    std::to_string(data.bytes.size()) + " bytes in rows of " + std::to_string(pitch) +
                    ", and " + std::to_string(needed) + " in rows of at least " + std::to_string(rowSize) +
                    " are needed.";
            return false;
        }
    }
    return true;
}

void Texture::_upload() {
    _uploadPending = false;
    device::Device& device = *getSystem()->getDevice();
    for (const CpuData& data : _cpuData)
        device.uploadTexture(*_gpuTexture, data.slice, data.mip, data.bytes, data.rowPitch);
    // Data for any other mip means that the caller made them all, which averages would overwrite. Compressed
    // blocks cannot be averaged.
    if (!_cpuData.empty() && !_hasOwnMips && getMipCount() > 1 && !TextureUtils::isFormatCompressed(_format))
        device.generateMips(*_gpuTexture);
    _setLoadState(RESOURCE_LOAD_STATE::LOADED);
}

device::TextureDesc Texture::_describe() const {
    device::TextureDesc desc;
    desc.type = _type;
    desc.format = _format;
    desc.gammaCorrected = _gammaCorrected;
    desc.width = _width;
    desc.height = _height;
    desc.slices = getSliceCount();
    desc.mips = getMipCount();
    desc.samples = _multisampleQuality + 1;
    return desc;
}

} // namespace ovGraphics
