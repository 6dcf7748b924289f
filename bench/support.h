#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "bench/pictures.h"

// What the benchmarks share: what is measured, names, and how one is measured.
//
// A benchmark is called "<routine>/<whose>/<width>x<height>[/<parameter>]"; the report goes by
// that.

// What a run of the program measures: times; the memory of a blur; or, held to AVX2, the times of
// the blurs that a peer makes as a Gaussian.
enum class Kind { kTimes, kMemory, kAvx2 };

struct Options {
    Kind kind = Kind::kTimes;
    bool quick = false;  // a smoke run: the small sizes, few repetitions
};
Options& options();

// measure.cpp
std::vector<Size> sizes();  // an icon, a thumbnail, a screen, a camera's picture
std::vector<float> sigmas(Size size);
std::vector<float> furtherSigmas(Size size);  // between the methods, and the largest radii
std::string sigmaName(float sigma);

// Registers one benchmark: `prepare` runs outside the time and returns the work of one iteration.
// `bytes` are what an iteration must move at least. `check` runs once, outside the time, when the
// work has just been done, and says how far its result is from the defined one.
using Work = std::function<void()>;
using Check = std::function<Difference()>;
void add(const std::string& routine, const std::string& whose, Size size,
         const std::string& parameter, std::function<Work()> prepare, int64_t bytes = 0,
         Check check = nullptr);

// As above, for a peer's blur, which may take minutes: estimates a call from a strip of 16 rows and
// leaves it out when that says more than 3 seconds. `prepare` is given the size to work on.
void addPeerBlur(const std::string& whose, Size size, float sigma,
                 std::function<Work(Size)> prepare, Check check);

// Registers a benchmark of the most bytes that `work` holds at a time.
void addMemory(const std::string& whose, Size size, float sigma, Work work);

int repetitions();

// memory_manager.cpp: counts the bytes that the program and its libraries hold.
benchmark::MemoryManager* memoryManager();

// A file of the program that registers benchmarks does so through one of these at namespace scope.
struct Suite {
    explicit Suite(void (*registerAll)());
};
std::vector<void (*)()>& suites();
