// What is measured, and how one benchmark is registered and measured.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>

#include "bench/support.h"

namespace {

int benchmarks = 0, runs = 0;

double now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(time).count();
}

// One line now and then: the repetitions come shuffled, so there is nothing to report before the
// end.
void tellProgress(const std::string& name) {
    static double last = now();
    ++runs;
    if (now() - last < 5) return;
    last = now();
    const int all = benchmarks * (repetitions() + 2);  // two trials more, to find the iterations
    std::fprintf(stderr, "  %2d %%  %s\n", std::min(99, 100 * runs / all), name.c_str());
}

// Whether this kind of run has times of a routine. Held to AVX2 it is the screen's blur, up to a
// sigma of 50 (the Gaussian peers' range), and the peak beside it.
bool timed(const std::string& routine, const std::string& whose, Size size,
           const std::string& parameter) {
    if (options().kind == Kind::kTimes) return true;
    if (options().kind == Kind::kMemory) return false;
    if (routine == "limit") return whose == "multiply-add";
    return routine == "blur" && size.width == (options().quick ? 256 : 1080) &&
           std::stod(parameter) <= 50;
}

std::string fullName(const std::string& routine, const std::string& whose, Size size,
                     const std::string& parameter) {
    return routine + "/" + whose + "/" + std::to_string(size.width) + "x" +
           std::to_string(size.height) + (parameter.empty() ? "" : "/") + parameter;
}

}  // namespace

std::vector<Size> sizes() {
    if (options().quick) return {{64, 64}, {256, 256}};
    return {{64, 64}, {256, 256}, {1080, 1920}, {4000, 3000}};
}

std::vector<float> sigmas(Size size) {
    if (options().quick) return {1, 10, 25, 100};
    if (size.width == 4000) return {1, 2.5f, 5, 10, 25, 100, 150, 1000};
    return {1, 2.5f, 5, 10, 25, 50, 100, 150, 250, 1000};
}

std::vector<float> furtherSigmas(Size size) {
    if (size.width != 1080) return {};
    return {35, 70, 200, 500, 2500, 10000, 20000};
}

std::string sigmaName(float sigma) {
    char name[32];
    std::snprintf(name, sizeof name, "%g", static_cast<double>(sigma));
    return name;
}

int repetitions() { return options().quick ? 3 : 9; }

void add(const std::string& routine, const std::string& whose, Size size,
         const std::string& parameter, std::function<Work()> prepare, int64_t bytes, Check check) {
    if (!timed(routine, whose, size, parameter)) return;
    const std::string name = fullName(routine, whose, size, parameter);
    ++benchmarks;
    const auto run = [=](benchmark::State& state) {
        static std::map<std::string, Difference> differences;
        tellProgress(name);
        const Work work = prepare();
        work();  // caches and pages
        if (check) {
            auto found = differences.find(name);
            if (found == differences.end()) found = differences.emplace(name, check()).first;
            state.counters["largest_difference"] = found->second.largest;
            state.counters["mean_difference"] = found->second.mean;
        }
        for (auto _ : state) work();
        if (bytes > 0) state.SetBytesProcessed(state.iterations() * bytes);
    };
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->MinTime(options().quick ? 0.005 : 0.03)
        ->Repetitions(repetitions())
        ->Unit(benchmark::kNanosecond);
}

void addPeerBlur(const std::string& whose, Size size, float sigma,
                 std::function<Work(Size)> prepare, Check check) {
    constexpr int32_t kStripRows = 16;
    constexpr double kMostSeconds = 3;
    if (!timed("blur", whose, size, sigmaName(sigma))) return;
    const Work strip = prepare({size.width, std::min(size.height, kStripRows)});
    strip();  // fetches code and pages
    const double start = now();
    strip();
    if ((now() - start) * size.height / kStripRows > kMostSeconds) return;
    add(
        "blur", whose, size, sigmaName(sigma), [=] { return prepare(size); }, 0, check);
}

// Google Benchmark runs it twice, and counts the second time: the pictures are made in the first.
void addMemory(const std::string& whose, Size size, float sigma, Work work) {
    if (options().kind != Kind::kMemory) return;
    const std::string name = fullName("memory", whose, size, sigmaName(sigma));
    ++benchmarks;
    const auto run = [=](benchmark::State& state) {
        tellProgress(name);
        for (auto _ : state) work();
    };
    benchmark::RegisterBenchmark(name.c_str(), run)->Iterations(1)->Repetitions(1);
}
