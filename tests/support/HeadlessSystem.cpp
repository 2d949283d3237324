#include <gtest/gtest.h>
#include <map>
#include <ovGraphics/device/Device.h>
#include <support/HeadlessSystem.h>

namespace {

/// Closes the shared systems while everything that they need still exists.
class SharedSystems : public testing::Environment {
public:
    void TearDown() override { systems.clear(); }
    std::map<ovGraphics::SHADER_LANGUAGE, ovMemory::UniquePtr<HeadlessSystem>> systems;
};

auto* const sharedSystems = static_cast<SharedSystems*>(testing::AddGlobalTestEnvironment(new SharedSystems));

} // namespace

HeadlessSystem& HeadlessSystem::get(ovGraphics::SHADER_LANGUAGE language) {
    ovMemory::UniquePtr<HeadlessSystem>& system = sharedSystems->systems[language];
    if (!system)
        system = std::make_unique<HeadlessSystem>(language);
    EXPECT_TRUE(system->open()) << system->getLogger().getText();
    return *system;
}

ovGraphics::Configuration HeadlessSystem::makeConfiguration(ovGraphics::SHADER_LANGUAGE language,
                                                            ovLog::Logger* logger) {
    ovGraphics::Configuration configuration;
    configuration.language = language;
    configuration.software = true;
    configuration.debugOutput = true;
    configuration.logger = logger;
    return configuration;
}

HeadlessSystem::HeadlessSystem(ovGraphics::SHADER_LANGUAGE language)
    : _language(language) {}

HeadlessSystem::~HeadlessSystem() {
    _dependent.reset();
}

bool HeadlessSystem::open() {
    return _system.getIsInitialized() || _system.initialize(makeConfiguration(_language, &_logger));
}

void HeadlessSystem::checkDriverErrors() {
    if (_system.getIsInitialized()) {
        const ovMemory::String errors = _system.getDevice()->takeDebugErrors();
        EXPECT_TRUE(errors.empty()) << "The driver reports: " << errors;
    }
    for (const RecordingLogger::Message& message : _logger.messages)
        EXPECT_FALSE(message.message.starts_with("The driver reports: ")) << message.message;
    _logger.messages.clear();
}
