#include <veldris/Session.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <ovGraphics/System.h>
#include <ovVeldris/System.h>
#include <ovVeldris/core/GraphicsEngine.h>
#include <ovVeldris/core/LogManager.h>
#include <unistd.h>
#include <utility>

namespace veldris {

using ovMemory::String;

namespace {

bool parseDevice(const String& text, ovGraphics::Configuration& configuration) {
    if (text == "software") {
        configuration.software = true;
        return true;
    }
    if (text.empty())
        return true;
    const char* end = text.data() + text.size();
    const auto [stop, status] = std::from_chars(text.data(), end, configuration.device);
    return status == std::errc() && stop == end && configuration.device >= 0;
}

/// Why nothing can be kept in a folder, which is made if it is not there; empty when all is well.
String cacheProblem(const String& folder) {
    if (folder.empty())
        return {};
    std::error_code status;
    std::filesystem::create_directories(folder, status);
    if (!status && ::access(folder.c_str(), W_OK | X_OK) != 0)
        status = std::error_code(errno, std::generic_category());
    return !status
               ? String()
               : fmt::format("the cache folder '{}' cannot be used: {}; name another with --cache, or give "
                             "--no-cache.",
                             folder, status.message());
}

} // namespace

String defaultCacheFolder() {
    // Where the XDG base directory specification puts caches, so that cleaning tools find it.
    // An empty variable counts as none: the XDG Base Directory rules have it so.
    if (const char* folder = std::getenv("XDG_CACHE_HOME"); folder && *folder)
        return String(folder) + "/veldris";
    if (const char* home = std::getenv("HOME"); home && *home)
        return String(home) + "/.cache/veldris";
    return {};
}

bool toConfiguration(const DrawingOptions& options, ovGraphics::Configuration& configuration, String& error) {
    if (options.language != "glsl" && options.language != "hlsl") {
        error = fmt::format("'{}' is no shader language; --language takes glsl or hlsl.", options.language);
        return false;
    }
    if (!parseDevice(options.device, configuration)) {
        error =
            fmt::format("'{}' is no device; --device takes software or a number that 'veldris info' lists.",
                        options.device);
        return false;
    }
    configuration.language =
        options.language == "hlsl" ? ovGraphics::SHADER_LANGUAGE::HLSL : ovGraphics::SHADER_LANGUAGE::GLSL;
    if (!options.noCache)
        configuration.cacheFolder = options.cache.empty() ? defaultCacheFolder() : options.cache;
    return true;
}

void CollectingLogger::log(ovLog::StringView message, ovLog::StringView) {
    _lines.emplace_back(message);
}

String CollectingLogger::take() {
    return fmt::format("{}", fmt::join(takeLines(), "; "));
}

ovMemory::Buffer<String> CollectingLogger::takeLines() {
    return std::exchange(_lines, {});
}

Session::Session(Progress* progress)
    : _progress(progress) {}

Session::~Session() {
    if (_system && !_ownSystem)
        ovVeldris::System::kill();
}

bool Session::open(const DrawingOptions& options, String& error) {
    _ownSystem = std::make_unique<ovVeldris::System>();
    _system = _ownSystem.get();
    return _start(options, error);
}

bool Session::openSingleton(const DrawingOptions& options, String& error) {
    _system = ovVeldris::System::getInstance();
    return _start(options, error);
}

bool Session::_start(const DrawingOptions& options, String& error) {
    ovVeldris::Configuration configuration;
    if (!toConfiguration(options, configuration.graphicsConfiguration, error))
        return false;
    String& cache = configuration.graphicsConfiguration.cacheFolder;
    // Told once, here, and not by everybody who would keep something there.
    if (const String problem = cacheProblem(cache); !problem.empty()) {
        _logger.log(problem, "");
        cache.clear();
    }
    configuration.graphicsConfiguration.logger = &_logger;
    // Two channels, library and graphics system: a failure may be told on either.
    _system->getLogManager()->setReceiver(&_logger);
    if (!_system->initialize(configuration)) {
        // The log names the reason that an initialisation failed for; its result does not.
        error = _logger.take();
        return false;
    }
    getGraphics().setPassTimingEnabled(options.timings);
    getGraphics().setFixedTime(options.time, 0.0);
    return true;
}

ovGraphics::System& Session::getGraphics() {
    return *_system->getGraphicsEngine()->getGraphicsSystem();
}

} // namespace veldris
