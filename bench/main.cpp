// zoren_bench [--quick] [--memory | --avx2] [Google Benchmark's options]: measures every routine,
// and whatever else is linked in; with --memory the bytes a blur holds, with --avx2 the screen's
// blurs without AVX-512. Repetitions of all benchmarks are shuffled, so that a disturbance hits
// them all alike.

#include <algorithm>
#include <cstring>
#include <fstream>

#include "bench/support.h"
#include "hwy/highway.h"

namespace {

struct Silent : benchmark::BenchmarkReporter {
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>&) override {}
};

std::string processor() {
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("model name", 0) == 0) return line.substr(line.find(':') + 2);
    }
    return "unknown";
}

// Highway's name of what the routines run on: its better targets have the lower bits.
std::string target() {
    const int64_t targets = hwy::SupportedTargets() & HWY_TARGETS;
    return hwy::TargetName(targets & -targets);
}

bool taken(const char* argument) {
    if (std::strcmp(argument, "--quick") == 0) {
        options().quick = true;
    } else if (std::strcmp(argument, "--memory") == 0) {
        options().kind = Kind::kMemory;
    } else if (std::strcmp(argument, "--avx2") == 0) {
        options().kind = Kind::kAvx2;
    } else {
        return false;
    }
    return true;
}

}  // namespace

Options& options() {
    static Options all;
    return all;
}

std::vector<void (*)()>& suites() {
    static std::vector<void (*)()> all;
    return all;
}

Suite::Suite(void (*registerAll)()) { suites().push_back(registerAll); }

int main(int argc, char** argv) {
    argc = static_cast<int>(std::remove_if(argv + 1, argv + argc, taken) - argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;

    if (options().kind == Kind::kAvx2) {
        // Not DisableTargets: whoever asks SupportedTargets after that undoes it.
        hwy::SetSupportedTargetsForTest(hwy::SupportedTargets() & -HWY_AVX2);
    }
    if (options().kind == Kind::kMemory) benchmark::RegisterMemoryManager(memoryManager());
    for (void (*registerAll)() : suites()) registerAll();
    benchmark::AddCustomContext("processor", processor());
    benchmark::AddCustomContext("target", target());
    benchmark::AddCustomContext("compiler", __VERSION__);
    benchmark::AddCustomContext("repetitions", std::to_string(repetitions()));
    Silent display;
    return benchmark::RunSpecifiedBenchmarks(&display) > 0 ? 0 : 1;
}
