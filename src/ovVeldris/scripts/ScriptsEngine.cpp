#include <ovMaths/Vector.h>
#include <ovScripts/Environment.h>
#include <ovVeldris/System.h>
#include <ovVeldris/scripts/DeclaredNames.h>
#include <ovVeldris/scripts/ScriptsEngine.h>
#include <ovVeldris/scripts/exportWrap/ExportErrorWrapper.h>
#include <ovVeldris/scripts/exportWrap/ExporterLoadResultWrapper.h>
#include <ovVeldris/scripts/exportWrap/JsonExporterWrapper.h>
#include <ovVeldris/scripts/exportWrap/NodeWrapper.h>
#include <ovVeldris/scripts/graphicsWrap/GraphicsWrappers.h>
#include <ovVeldris/scripts/imagesWrap/CompositeEncoderWrapper.h>
#include <ovVeldris/scripts/imagesWrap/ImageViewWrapper.h>
#include <ovVeldris/scripts/imagesWrap/ImageWrapper.h>
#include <ovVeldris/scripts/imagesWrap/JpgEncoderWrapper.h>
#include <ovVeldris/scripts/mathsWrap/MathConstantsWrapper.h>
#include <ovVeldris/scripts/mathsWrap/MatrixWrapper.h>
#include <ovVeldris/scripts/mathsWrap/QuaternionWrapper.h>
#include <ovVeldris/scripts/mathsWrap/VectorWrapper.h>
#include <ovVeldris/scripts/memoryWrap/BufferViewWrapper.h>
#include <ovVeldris/scripts/memoryWrap/BufferWrapper.h>
#include <ovVeldris/scripts/resourcesWrap/ResourceManagerWrapper.h>
#include <ovVeldris/scripts/scriptsWrap/CompilationFailureTypeWrapper.h>
#include <ovVeldris/scripts/scriptsWrap/CompilationResultWrapper.h>
#include <ovVeldris/scripts/scriptsWrap/EnvironmentWrapper.h>
#include <ovVeldris/scripts/scriptsWrap/InterpreterWrapper.h>
#include <ovVeldris/scripts/scriptsWrap/ScriptWrapper.h>
#include <ovVeldris/scripts/stdWrap/ArrayWrapper.h>
#include <ovVeldris/scripts/tasksWrap/SchedulerTaskWrapper.h>
#include <ovVeldris/scripts/tasksWrap/SchedulerWrapper.h>
#include <ovVeldris/scripts/tasksWrap/ThreadSubmittedWorkWrapper.h>
#include <ovVeldris/scripts/tasksWrap/ThreadWrapper.h>
#include <ovVeldris/scripts/veldrisWrap/LogWrapper.h>
#include <ovVeldris/scripts/veldrisWrap/VeldrisWrappers.h>

namespace ovVeldris {

namespace {

void declareNames(ovScripts::Environment& environment) {
    for (const DeclaredName& declared : DECLARED_NAMES) {
        if (declared.isNamespace)
            environment.setNamespace(declared.name);
        else
            environment.setUserType(declared.name);
    }
}

void bindExport(ovScripts::Environment* environment) {
    using namespace ovExportWrap;
    ExportErrorWrapper::updateEnvironment(environment);
    ExporterLoadResultWrapper::updateEnvironment(environment);
    JsonExporterWrapper::updateEnvironment(environment);
    NodeWrapper::updateEnvironment(environment);
}

void bindImages(ovScripts::Environment* environment) {
    using namespace ovImagesWrap;
    ImageWrapper::updateEnvironment(environment);
    ImageViewWrapper::updateEnvironment(environment);
    JpgEncoderWrapper::updateEnvironment(environment);
    CompositeEncoderWrapper::updateEnvironment(environment);
}

void bindMaths(ovScripts::Environment* environment) {
    ovMathsWrap::MatrixWrapper::updateEnvironment(environment);
    ovMathsWrap::QuaternionWrapper::updateEnvironment(environment);
    ovMathsWrap::VectorWrapper::updateEnvironment(environment);
    ovMathsWrap::MathConstantsWrapper::updateEnvironment(environment);
    ovMemoryWrap::BufferCastWrapper<ovMaths::Vector>::updateEnvironment(environment,
                                                                        "ovMaths.BufferCastVector");
    ovMemoryWrap::BufferViewWrapper<ovMaths::Vector>::updateEnvironment(environment,
                                                                        "ovMaths.BufferViewVector");
}

void bindMemory(ovScripts::Environment* environment) {
    using namespace ovMemoryWrap;
    BufferWrapper::updateEnvironment(environment);
    BufferCastWrapper<int>::updateEnvironment(environment, "ovMemory.BufferCastInt");
    BufferCastWrapper<float>::updateEnvironment(environment, "ovMemory.BufferCastFloat");
    BufferCastWrapper<double>::updateEnvironment(environment, "ovMemory.BufferCastDouble");
    BufferViewWrapper<unsigned char>::updateEnvironment(environment, "ovMemory.BufferView");
    BufferViewWrapper<int>::updateEnvironment(environment, "ovMemory.BufferViewInt");
    BufferViewWrapper<float>::updateEnvironment(environment, "ovMemory.BufferViewFloat");
    BufferViewWrapper<double>::updateEnvironment(environment, "ovMemory.BufferViewDouble");
}

void bindScripts(ovScripts::Environment* environment) {
    using namespace ovScriptsWrap;
    EnvironmentWrapper::updateEnvironment(environment);
    InterpreterWrapper::updateEnvironment(environment);
    CompilationFailureTypeWrapper::updateEnvironment(environment);
    CompilationResultWrapper::updateEnvironment(environment);
    ScriptWrapper::updateEnvironment(environment);
}

void bindTasks(ovScripts::Environment* environment, LogManager* logManager) {
    using namespace ovTasksWrap;
    SchedulerTaskWrapper::updateEnvironment(environment, logManager);
    ThreadWrapper::updateEnvironment(environment, logManager);
    SchedulerWrapper::updateEnvironment(environment, logManager);
    ThreadSubmittedWorkWrapper::updateEnvironment(environment);
}

void bindArrays(ovScripts::Environment* environment) {
    stdWrap::ArrayWrapper<float, 4>::updateEnvironment(environment);
    stdWrap::ArrayWrapper<std::array<float, 4>, 4>::updateEnvironment(environment);
}

} // namespace

ScriptsEngine::ScriptsEngine(System* system)
    : _system(system) {}

ScriptsEngine::~ScriptsEngine() {
    shutdown();
}

bool ScriptsEngine::initialize() {
    return initialize({});
}

bool ScriptsEngine::initialize(const ovScripts::EnvironmentOptions& options) {
    _environment = ovScripts::Environment::create(options);
    _environment->setEnvironmentFor(ovScripts::INTERPRETER::LUA);
    setupScriptsEnvironment(_environment.get(), _system ? _system->getLogManager() : nullptr);
    return true;
}

void ScriptsEngine::shutdown() {
    _environment.reset();
}

void ScriptsEngine::setupScriptsEnvironment(ovScripts::Environment* environment, LogManager* logManager) {
    if (!environment || environment->getInterpreter() == ovScripts::INTERPRETER::UNKNOWN)
        return;
    declareNames(*environment);
    ovVeldrisWrap::LogWrapper::updateEnvironment(environment, logManager);
    bindExport(environment);
    ovGraphicsWrap::updateGraphics(environment);
    bindImages(environment);
    bindMaths(environment);
    bindMemory(environment);
    ovResourcesWrap::ResourceManagerWrapper::updateEnvironment(environment);
    bindScripts(environment);
    bindTasks(environment, logManager);
    bindArrays(environment);
    ovVeldrisWrap::updateVeldris(environment);
}

} // namespace ovVeldris
