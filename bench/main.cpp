// bench [--quick] [Google Benchmark's options]: measures every routine, and whatever else is linked
// in. Repetitions of all benchmarks are shuffled, so that a disturbance hits them all alike.

#include <malloc.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>

#include "bench/support.h"

// Every allocation of the program and its libraries passes here, so that the bytes held can be
// counted. The C library's own functions do the work.
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void __libc_free(void*);
}

namespace {

struct {
    bool on = false;
    int64_t held = 0, peak = 0;
} memory;

void* taken(void* block) {
    if (memory.on && block != nullptr) {
        memory.held += static_cast<int64_t>(malloc_usable_size(block));
        memory.peak = std::max(memory.peak, memory.held);
    }
    return block;
}

void released(void* block) {
    if (memory.on && block != nullptr) {
        memory.held -= static_cast<int64_t>(malloc_usable_size(block));
    }
}

}  // namespace

extern "C" {
void* malloc(size_t bytes) { return taken(__libc_malloc(bytes)); }
void* calloc(size_t count, size_t bytes) { return taken(__libc_calloc(count, bytes)); }
void* memalign(size_t alignment, size_t bytes) { return taken(__libc_memalign(alignment, bytes)); }
void* aligned_alloc(size_t alignment, size_t bytes) { return memalign(alignment, bytes); }
int posix_memalign(void** block, size_t alignment, size_t bytes) {
    *block = memalign(alignment, bytes);
    return *block != nullptr ? 0 : ENOMEM;
}
void* realloc(void* block, size_t bytes) {
    released(block);
    return taken(__libc_realloc(block, bytes));
}
void free(void* block) {
    released(block);
    __libc_free(block);
}
}

namespace {

bool quickRun = false;
int benchmarks = 0, runs = 0;
int repetitions() { return quickRun ? 3 : 9; }

std::vector<void (*)()>& suites() {
    static std::vector<void (*)()> all;
    return all;
}

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

uint32_t* buffer(std::map<int64_t, std::unique_ptr<uint32_t[]>>& buffers, Size size) {
    // A page of its own, so that all sizes and users start alike.
    const size_t words = static_cast<size_t>(size.width) * static_cast<size_t>(size.height) + 2048;
    auto& slot = buffers[int64_t{size.width} << 32 | size.height];
    if (!slot) slot.reset(new uint32_t[words]());
    return reinterpret_cast<uint32_t*>((reinterpret_cast<uintptr_t>(slot.get()) + 4095) & ~4095ul);
}

}  // namespace

Suite::Suite(void (*registerAll)()) { suites().push_back(registerAll); }

bool quick() { return quickRun; }

std::vector<Size> sizes() {
    if (quickRun) return {{64, 64}, {256, 256}};
    return {{64, 64}, {256, 256}, {1080, 1920}, {4000, 3000}};
}

std::vector<float> sigmas(Size size) {
    if (quickRun) return {1, 10, 100};
    if (size.width == 4000) return {1, 2.5f, 5, 10, 25, 100, 150, 1000};
    return {1, 2.5f, 5, 10, 25, 50, 100, 150, 250, 1000};
}

int32_t kernelSize(float sigma) {
    const int32_t taps = static_cast<int32_t>(4 * sigma);
    return taps % 2 == 0 ? taps - 1 : taps;
}

std::string sigmaName(float sigma) {
    char name[32];
    std::snprintf(name, sizeof name, "%g", static_cast<double>(sigma));
    return name;
}

android::BitmapStruct canvas(Size size) {
    static std::map<int64_t, std::unique_ptr<uint32_t[]>> buffers;
    return {size.width, size.height, buffer(buffers, size)};
}

android::BitmapStruct picture(Size size) {
    static std::map<int64_t, std::unique_ptr<uint32_t[]>> buffers;
    uint32_t* pixels = buffer(buffers, size);
    if (pixels[0] == 0) {
        uint32_t noise = 37;
        for (int32_t i = 0; i < size.width * size.height; ++i) {
            noise = noise * 1664525 + 1013904223;
            const uint32_t x = static_cast<uint32_t>(i % size.width * 200 / size.width);
            const uint32_t y = static_cast<uint32_t>(i / size.width * 200 / size.height);
            const uint32_t red = x + (noise >> 27), green = y + (noise >> 22 & 31);
            const uint32_t blue = (x + y) / 2 + (noise >> 17 & 31);
            pixels[i] = 0xFF000000 | blue << 16 | green << 8 | red;
        }
    }
    return {size.width, size.height, pixels};
}

void add(const std::string& routine, const std::string& whose, Size size,
         const std::string& parameter, std::function<Work()> prepare, int64_t bytes) {
    const std::string name = routine + "/" + whose + "/" + std::to_string(size.width) + "x" +
                             std::to_string(size.height) + (parameter.empty() ? "" : "/") +
                             parameter;
    ++benchmarks;
    const auto run = [=](benchmark::State& state) {
        tellProgress(name);
        const Work work = prepare();
        work();  // caches and pages
        for (auto _ : state) work();
        if (bytes > 0) state.SetBytesProcessed(state.iterations() * bytes);
    };
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->MinTime(quickRun ? 0.005 : 0.03)
        ->Repetitions(repetitions())
        ->Unit(benchmark::kNanosecond);
}

void addPeer(const std::string& routine, const std::string& whose, Size size,
             const std::string& parameter, std::function<Work(Size)> prepare) {
    constexpr int32_t kStripRows = 16;
    constexpr double kMostSeconds = 3;
    const Work strip = prepare({size.width, std::min(size.height, kStripRows)});
    strip();  // fetches code and pages
    const double start = now();
    strip();
    if ((now() - start) * size.height / kStripRows > kMostSeconds) return;
    add(routine, whose, size, parameter, [=] { return prepare(size); });
}

void addMemory(const std::string& whose, Size size, const std::string& parameter, Work work) {
    const std::string name = "memory/" + whose + "/" + std::to_string(size.width) + "x" +
                             std::to_string(size.height) + "/" + parameter;
    const auto run = [=](benchmark::State& state) {
        tellProgress(name);
        work();  // makes the pictures, which do not count
        memory = {true, 0, 0};
        for (auto _ : state) work();
        memory.on = false;
        state.counters["peak_bytes"] = static_cast<double>(memory.peak);
    };
    benchmark::RegisterBenchmark(name.c_str(), run)->Iterations(1)->Repetitions(1);
}

int main(int argc, char** argv) {
    const auto isQuick = [](const char* argument) { return std::strcmp(argument, "--quick") == 0; };
    char** end = std::remove_if(argv + 1, argv + argc, isQuick);
    quickRun = end != argv + argc;
    argc = static_cast<int>(end - argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;

    for (void (*registerAll)() : suites()) registerAll();
    benchmark::AddCustomContext("processor", processor());
    benchmark::AddCustomContext("compiler", __VERSION__);
    benchmark::AddCustomContext("repetitions", std::to_string(repetitions()));
    Silent display;
    return benchmark::RunSpecifiedBenchmarks(&display) > 0 ? 0 : 1;
}
