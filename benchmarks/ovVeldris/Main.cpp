// The benchmarks of ovVeldris.
#include "ovVeldris/content/ContentLoaderBenchmark.h"
#include "ovVeldris/content/ModelLoaderBenchmark.h"
#include "ovVeldris/effects/EffectBenchmark.h"
#include "ovVeldris/effects/ProgramCacheBenchmark.h"
#include "ovVeldris/environment/EnvironmentFilterBenchmark.h"
#include "ovVeldris/environment/IrradianceBenchmark.h"
#include "support/Aims.h"

#include <string_view>

int main(int argumentCount, char** arguments) {
    if (argumentCount == 3 && std::string_view(arguments[1]) == ovBenchmarks::LOAD_PROGRAMS_ARGUMENT)
        return ovBenchmarks::loadPrograms(arguments[2]);
    ovBenchmarks::registerContentLoader();
    ovBenchmarks::registerModelLoader();
    ovBenchmarks::registerEffects();
    ovBenchmarks::registerEnvironmentFilter();
    ovBenchmarks::registerIrradiance();
    ovBenchmarks::registerProgramCache(arguments[0]);
    return ovBenchmarks::runBenchmarks(argumentCount, arguments);
}
