#include <benchmark/benchmark.h>

// One table for people, and with --benchmark_out=FILE one JSON file that names machine, compiler and commit.
int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::AddCustomContext("commit", CHALKPANE_COMMIT);
    benchmark::AddCustomContext("compiler", CHALKPANE_COMPILER);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
