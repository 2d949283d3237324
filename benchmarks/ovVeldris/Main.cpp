// The benchmarks of ovVeldris.
#include "ovVeldris/complexEffects/ComplexEffectBenchmark.h"
#include "ovVeldris/content/ContentLoaderBenchmark.h"
#include "ovVeldris/content/ModelLoaderBenchmark.h"
#include "ovVeldris/effects/AtmosphereBenchmark.h"
#include "ovVeldris/effects/EffectBenchmark.h"
#include "ovVeldris/effects/FxaaBenchmark.h"
#include "ovVeldris/effects/SsaoBenchmark.h"
#include "ovVeldris/environment/EnvironmentFilterBenchmark.h"
#include "ovVeldris/environment/IrradianceBenchmark.h"
#include "ovVeldris/environment/SkyErrorBenchmark.h"
#include "support/Aims.h"

int main(int argumentCount, char** arguments) {
    ovBenchmarks::registerContentLoader();
    ovBenchmarks::registerModelLoader();
    ovBenchmarks::registerEffects();
    ovBenchmarks::registerFxaa();
    ovBenchmarks::registerSsao();
    ovBenchmarks::registerAtmosphere();
    ovBenchmarks::registerComplexEffects();
    ovBenchmarks::registerEnvironmentFilter();
    ovBenchmarks::registerIrradiance();
    ovBenchmarks::registerSkyErrors();
    const int status = ovBenchmarks::runBenchmarks(argumentCount, arguments);
    ovBenchmarks::printSkyErrors();
    return status;
}
