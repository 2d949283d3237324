// veldris bake: environments turned into what materials and other programs read.
#include <veldris/commands/Commands.h>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <optional>
#include <ovImages/Panorama.h>
#include <veldris/JsonText.h>
#include <veldris/bake/BakeOutput.h>
#include <veldris/bake/CubeBaking.h>
#include <veldris/console/Console.h>
#include <veldris/console/InputFile.h>
#include <veldris/console/OutputFile.h>

namespace veldris {

namespace {

using ovMemory::Buffer;
using ovMemory::String;

enum class BAKE { PREFILTER, IRRADIANCE, CUBEMAP, SPHERICAL };

struct BakeOptions {
    BAKE bake = BAKE::PREFILTER;
    const char* name = "";
    String input = {};
    String output = {};
    unsigned int size = 0; ///< 0: the default of spherical
    String layout = {};
    String format = "half";
    String coefficients = {};
    bool libraryLongitudes = false;
    EnvironmentReading reading = {};
    bool timings = false;
    bool json = false;
};

constexpr unsigned int MIN_SIZE = 4; // texels
constexpr unsigned int MAX_SIZE = 65536;
constexpr unsigned int DEFAULT_SIZE = 256;

struct BakeResult {
    CubeMap cube;
    ovImages::Image panorama;
    ovVeldris::IrradianceCoefficients coefficients;
    BakeFiles files;
};

/// The names are those of the directions that the functions grow along, y up.
String coefficientsText(const ovVeldris::IrradianceCoefficients& coefficients) {
    constexpr const char* BASIS[] = {"1", "x", "y", "z", "zx", "xy", "2y^2-x^2-z^2", "yz", "z^2-x^2"};
    Buffer<JsonObject> rows;
    for (std::size_t i = 0; i < coefficients.values.size(); ++i)
        rows.push_back(JsonObject()
                           .text("basis", BASIS[i])
                           .number("factor", ovVeldris::IRRADIANCE_BAND_FACTORS[i])
                           .number("red", coefficients.values[i][0])
                           .number("green", coefficients.values[i][1])
                           .number("blue", coefficients.values[i][2]));
    return JsonObject().array("coefficients", rows).toText() + "\n";
}

/// Whether the files can be written, as far as that can be told now.
bool checkOutputs(const BakeOptions& options, String& error) {
    const String first = fillField(fillField(options.output, FACE_FIELD, FACE_NAMES[0]), MIP_FIELD, "0");
    error = checkOutput(first).error;
    if (error.empty() && !options.coefficients.empty())
        error = checkOutput(options.coefficients).error;
    return error.empty();
}

bool plan(const BakeOptions& options, BakeOutput& output, String& error) {
    output.path = options.output;
    output.components =
        options.format == "half" ? ovImages::COMPONENT_TYPE::HALF : ovImages::COMPONENT_TYPE::FLOAT;
    const bool isPlanned = options.bake == BAKE::SPHERICAL
                               ? planPanorama(output, error)
                               : planCube(options.layout, options.bake == BAKE::PREFILTER, output, error);
    return isPlanned && checkOutputs(options, error);
}

/// Photographed panoramas run to the right, the library's longitudes to the left: a panorama that becomes a
/// cube is mirrored before, and one made of a cube afterwards, so that letters read right in both.
void mirrorPhotograph(const BakeOptions& options, ovImages::Image& panorama) {
    if (!options.libraryLongitudes)
        ovImages::mirrorPanorama(panorama);
}

bool bake(Console& console, const BakeOptions& options, const EnvironmentInput& input, BakeResult& result,
          String& error) {
    const ovCommon::WorkProgress progress = console.getShare();
    switch (options.bake) {
    case BAKE::PREFILTER:
        return bakePrefiltered(input, options.size, result.cube, error, progress);
    case BAKE::IRRADIANCE:
        return bakeIrradiance(input, options.size, result.cube, result.coefficients, error, progress);
    case BAKE::CUBEMAP:
        return bakeCube(input, options.size, result.cube, error, progress);
    case BAKE::SPHERICAL:
        break;
    }
    // A map's middle row has four faces, so this keeps the size of the cube's texels.
    const unsigned int height = options.size > 0 ? options.size : 2 * input.image.getWidth();
    if (!bakePanorama(input, height, result.panorama, error, progress))
        return false;
    mirrorPhotograph(options, result.panorama);
    return true;
}

bool write(const BakeOptions& options, const BakeOutput& output, BakeResult& result, String& error) {
    const bool isWritten = output.form == BAKE_FORM::PANORAMA
                               ? writePanorama(output, result.panorama.view(), result.files, error)
                               : writeCube(output, result.cube, result.files, error);
    if (!isWritten || options.coefficients.empty())
        return isWritten;
    const String text = coefficientsText(result.coefficients);
    error = writeOutput(options.coefficients, ovMemory::BufferView<const char>(text)).error;
    if (!error.empty())
        return false;
    result.files.paths.push_back(options.coefficients);
    return true;
}

void printReport(Console& console, const BakeOptions& options, const EnvironmentInput& input,
                 const BakeResult& result) {
    const Buffer<JsonObject> steps = options.timings ? console.reportSteps() : Buffer<JsonObject>();
    if (!options.json) {
        for (const String& path : result.files.paths)
            printPath(console, path);
        return;
    }
    const bool isPanorama = !result.panorama.isEmpty();
    JsonObject report;
    report.text("bake", options.name)
        .text("input", options.input)
        .text("inputKind", input.kind)
        .number("width", isPanorama ? result.panorama.getWidth() : result.cube.getSide())
        .number("height", isPanorama ? result.panorama.getHeight() : result.cube.getSide())
        .number("mips", isPanorama ? 1.0 : static_cast<double>(result.cube.mips.size()))
        .texts("files", result.files.paths);
    if (options.timings)
        report.array("steps", steps);
    console.print(report.toText());
}

int runBake(Console& console, BakeOptions options) {
    BakeOutput output;
    String error;
    // Wrong names are told before anything is read: a prefiltering may take a minute.
    InputFile standardInput;
    if (!plan(options, output, error) || !standardInput.open(options.input, console, error))
        return console.fail(error);
    if (isStandardOutput(options.output) || isStandardOutput(options.coefficients))
        console.leaveOutputToData();
    console.step("decoding");
    options.reading.decoding.progress = console.getShare();
    EnvironmentInput input;
    if (!readEnvironment(options.input, options.reading, input, error))
        return console.fail(error);
    if (options.bake == BAKE::SPHERICAL && !input.isCube)
        return console.fail(
            fmt::format("'{}' is a panorama already; spherical unwraps cubes.", options.input));
    console.warnEach(input.warnings);
    if (!input.isCube)
        mirrorPhotograph(options, input.image);
    console.step("baking");
    BakeResult result;
    if (!bake(console, options, input, result, error))
        return console.fail(error);
    console.step("writing");
    if (!write(options, output, result, error))
        return console.fail(error);
    console.warn(result.files.warning);
    printReport(console, options, input, result);
    return 0;
}

void addBake(CLI::App& parent, Command& command, const BakeOptions& defaults, const char* help) {
    auto options = std::make_shared<BakeOptions>(defaults);
    CLI::App* mode = parent.add_subcommand(options->name, help);
    mode->add_option(
            "INPUT", options->input,
            "panorama or cross (EXR, HDR, PNG, JPEG), a name with {face} for six faces (px, nx, py, ny, "
            "pz, nz), or a cube (.dds, .ktx2)")
        ->required();
    const bool isCube = options->bake != BAKE::SPHERICAL;
    mode->add_option("OUTPUT", options->output,
                     isCube ? ".dds or .ktx2 for one file with all mips, or a picture with {face}, and {mip} "
                              "for all mips, "
                              "in its name"
                            : "panorama to write; its extension chooses the format")
        ->required();
    CLI::Option* size = mode->add_option(
        "--size", options->size,
        isCube ? "texels a side of a face" : "rows of the panorama (default: twice the texels of a face)");
    size->check(CLI::Range(MIN_SIZE, MAX_SIZE));
    if (isCube) {
        size->capture_default_str();
        mode->add_option("--layout", options->layout,
                         "faces, or cross for one picture of four by three faces (default: faces)")
            ->check(CLI::IsMember({"faces", "cross"}));
    }
    addEnvironmentOptions(*mode, options->reading);
    mode->add_flag("--library-longitudes", options->libraryLongitudes,
                   "panoramas as the library's shaders read them: no mirroring");
    mode->add_option("--format", options->format, "numbers of DDS, KTX2 and EXR files: half or float")
        ->check(CLI::IsMember({"half", "float"}))
        ->capture_default_str();
    // Only this bake computes them. Elsewhere the option is refused as unknown instead of being ignored.
    if (options->bake == BAKE::IRRADIANCE)
        mode->add_option("--coefficients", options->coefficients,
                         "JSON file to write the nine coefficients of spherical harmonics to");
    addTimingsOption(*mode, options->timings);
    addJsonOption(*mode, options->json);
    mode->callback([options, &command] {
        command = [options](Console& console) { return runBake(console, *options); };
    });
}

} // namespace

void addBakeCommand(CLI::App& program, Command& command) {
    CLI::App* bake =
        program.add_subcommand("bake", "turn environments into maps for materials, or other forms");
    bake->require_subcommand(1);
    addBake(*bake, command, {.bake = BAKE::PREFILTER, .name = "prefilter", .size = DEFAULT_SIZE},
            "a cube whose mips are what surfaces of rising roughness mirror");
    addBake(*bake, command, {.bake = BAKE::IRRADIANCE, .name = "irradiance", .size = DEFAULT_SIZE},
            "a cube of the light that diffuse surfaces receive, over pi");
    addBake(*bake, command, {.bake = BAKE::CUBEMAP, .name = "cubemap", .size = DEFAULT_SIZE},
            "the environment as a cube");
    addBake(*bake, command, {.bake = BAKE::SPHERICAL, .name = "spherical"},
            "a cube as a panorama by longitude and latitude");
    bake->footer("Example: veldris bake prefilter sky.exr sky.dds --size 256");
}

} // namespace veldris
