// veldris info: the device, its limits, and the versions of what the program stands on.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovGraphics/device/Device.h>
#include <ovGraphics/shading/CrossCompiler.h>
#include <veldris/JsonText.h>
#include <veldris/console/Console.h>

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

void printInfoAsJson(Console& console, const DeviceInfo& info, const ovMemory::Buffer<String>& devices,
                     const DrawingOptions& options) {
    console.print(JsonObject()
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

void printInfoAsText(Console& console, const DeviceInfo& info, const ovMemory::Buffer<String>& devices,
                     const DrawingOptions& options) {
    console.print(fmt::format("veldris     {}", OV_VERSION));
    console.print(fmt::format("device      {}{}", info.renderer, info.software ? " (software)" : ""));
    console.print(fmt::format("vendor      {}\napi         {}", info.vendor, info.version));
    console.print(fmt::format("language    {}\ncompilers   {}", options.language,
                              ovGraphics::shading::getCompilerVersions()));
    console.print(
        fmt::format("cache       {}", options.noCache || options.cache.empty() ? "none" : options.cache));
    console.print(fmt::format("limits      textures {0} x {0}, cube faces {1} x {1}, {2} slices, {3} samples",
                              info.maxTextureSize, info.maxCubeSize, info.maxArraySlices, info.maxSamples));
    console.print(fmt::format("            {} colour targets, {} texture units, {} bytes a constant buffer",
                              info.maxColorTargets, info.maxTextureUnits, info.maxConstantBufferSize));
    console.print("devices of --device:");
    for (const String& device : devices)
        console.print("  " + device);
}

int runInfo(Console& console, DrawingOptions options) {
    // Shown as it will be used: users look here for the folder to delete.
    if (options.cache.empty())
        options.cache = defaultCacheFolder();
    Session session;
    String error;
    if (!session.open(options, error))
        return console.fail(error);
    const auto print = options.json ? printInfoAsJson : printInfoAsText;
    print(console, *session.getGraphics().getDeviceInfo(), ovGraphics::System::listDevices(), options);
    return 0;
}

} // namespace

void addInfoCommand(CLI::App& program, Command& command) {
    auto options = std::make_shared<DrawingOptions>();
    CLI::App* info = program.add_subcommand("info", "show the device, its limits and the versions");
    addDeviceOptions(*info, *options);
    addJsonOption(*info, options->json);
    info->callback([options, &command] {
        command = [options](Console& console) { return runInfo(console, *options); };
    });
}

} // namespace veldris
