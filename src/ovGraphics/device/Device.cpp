#include <ovGraphics/device/Device.h>

#include <fmt/format.h>
#include <ovGraphics/device/GlDeviceInternal.h>

namespace ovGraphics::device {

GpuTexture::~GpuTexture() = default;
GpuSampler::~GpuSampler() = default;
GpuBuffer::~GpuBuffer() = default;
GpuProgram::~GpuProgram() = default;
GpuGeometry::~GpuGeometry() = default;
GpuTarget::~GpuTarget() = default;
GpuTimer::~GpuTimer() = default;
Device::~Device() = default;

ovMemory::UniquePtr<Device> createDevice(const DeviceRequest& request, ovMemory::String& error) {
    return GlDevice::open(request, error);
}

ovMemory::Buffer<ovMemory::String> listDevices() {
    ovMemory::Buffer<ovMemory::String> lines;
    const int count = countHeadlessDevices();
    for (int index = 0; index < count; ++index) {
        DeviceRequest request;
        request.index = index;
        ovMemory::String error;
        // Opened for a moment: only a context tells the name of the renderer, and whether the device opens is
        // what a user wants to know.
        const auto device = createDevice(request, error);
        lines.push_back(device ? fmt::format("{}: {}{}", index, device->getInfo().renderer,
                                             device->getInfo().software ? " (software)" : "")
                               : fmt::format("{}: {}", index, error));
    }
    return lines;
}

} // namespace ovGraphics::device
