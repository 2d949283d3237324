// The main function of programs that only have benchmarks.
#include "support/Aims.h"

int main(int argumentCount, char** arguments) {
    return ovBenchmarks::runBenchmarks(argumentCount, arguments);
}
