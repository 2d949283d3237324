// veldris info: the device, its limits, and the versions of what the program stands on.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <veldris/JsonText.h>

namespace veldris {

namespace {

using ovGraphics::device::DeviceInfo;
using ovMemory::String;

JsonObject limitsOf(const DeviceInfo& info) {
    return JsonObject()
        .number("textureSize", info.maxTextureSize)
        .number("cubeSize", info.maxCubeSize)
        .number("arraySlices", info.maxArraySlices)
        .number("samples", info.maxSamples)
        .number("colourTargets", info.maxColorTargets)
        .number("textureUnits", info.maxTextureUnits)
        .number("constantBufferBytes", info.maxConstantBufferSize)
        .number("anisotropy", static_cast<double>(info.maxAnisotropy));
}

void printInfoAsJson(const DeviceInfo& info, const ovMemory::Buffer<String>& devices,
                     const DrawingOptions& options) {
    fmt::print("{}\n", JsonObject()
                           .text("version", OV_VERSION)
                           .text("renderer", info.renderer)
                           .text("vendor", info.vendor)
                           .text("api", info.version)
                           .boolean("software", info.software)
                           .text("language", options.language)
                           .object("limits", limitsOf(info))
                           .texts("devices", devices)
                           .text("compilers", ovGraphics::shading::getCompilerVersions())
                           .text("cache", options.noCache ? String() : options.cache)
                           .toText());
}

void printInfoAsText(const DeviceInfo& info, const ovMemory::Buffer<String>& devices,
                     const DrawingOptions& options) {
    fmt::print("veldris     {}\n", OV_VERSION);
    fmt::print("device      {}{}\n", info.renderer, info.software ? " (software)" : "");
    fmt::print("vendor      {}\napi         {}\n", info.vendor, info.version);
    fmt::print("language    {}\ncompilers   {}\n", options.language,
               ovGraphics::shading::getCompilerVersions());
    fmt::print("cache       {}\n", options.noCache || options.cache.empty() ? "none" : options.cache);
    fmt::print("limits      textures {0} x {0}, cube faces {1} x {1}, {2} slices, {3} samples\n",
               info.maxTextureSize, info.maxCubeSize, info.maxArraySlices, info.maxSamples);
    fmt::print("            {} colour targets, {} texture units, {} bytes a constant buffer\n",
               info.maxColorTargets, info.maxTextureUnits, info.maxConstantBufferSize);
    fmt::print("devices of --device:\n");
    for (std::size_t i = 0; i < devices.size(); ++i)
        fmt::print("  {}  {}\n", i, devices[i]);
}

int runInfo(DrawingOptions options) {
    // Shown as it will be used: users look here for the folder to delete.
    if (options.cache.empty())
        options.cache = defaultCacheFolder();
    Session session;
    String error;
    if (!session.open(options, error))
        return fail(error);
    const auto print = options.json ? printInfoAsJson : printInfoAsText;
    print(*session.getGraphics().getDeviceInfo(), ovGraphics::System::listDevices(), options);
    return 0;
}

} // namespace

void addInfoCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<DrawingOptions>();
    CLI::App* info = program.add_subcommand("info", "show the device, its limits and the versions");
    addDrawingOptions(*info, *options);
    info->callback([options, &command] { command = [options] { return runInfo(*options); }; });
}

} // namespace veldris
