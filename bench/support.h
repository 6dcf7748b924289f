#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "jni/bitmap_struct.h"

// What the benchmarks share: sizes, pictures, names, and how one is measured.
//
// A benchmark is called "<routine>/<whose>/<width>x<height>[/<parameter>]"; the report goes by
// that.

struct Size {
    int32_t width, height;
};

bool quick();               // a smoke run: the small sizes, few repetitions
std::vector<Size> sizes();  // an icon, a thumbnail, a screen, a camera's picture
std::vector<float> sigmas(Size size);

// The taps a blur request takes for a standard deviation: 4 * sigma, less one when even.
int32_t kernelSize(float sigma);

// The picture of a size, made once: smooth colours under a little noise, as a photo has them.
// `picture` is never written; `canvas` is one buffer per size, for whoever writes.
android::BitmapStruct picture(Size size);
android::BitmapStruct canvas(Size size);

// Registers one benchmark: `prepare` runs outside the time and returns the work of one iteration.
// `bytes` are what an iteration must move at least.
using Work = std::function<void()>;
void add(const std::string& routine, const std::string& whose, Size size,
         const std::string& parameter, std::function<Work()> prepare, int64_t bytes = 0);
std::string sigmaName(float sigma);

// As above, for work that may take minutes: estimates a call from a strip of 16 rows and leaves it
// out when that says more than 3 seconds. `prepare` is given the size to work on.
void addPeer(const std::string& routine, const std::string& whose, Size size,
             const std::string& parameter, std::function<Work(Size)> prepare);

// Registers a benchmark that runs `work` once and gives the most bytes it held at a time.
void addMemory(const std::string& whose, Size size, const std::string& parameter, Work work);

// A file of the program that registers benchmarks does so through one of these at namespace scope.
struct Suite {
    explicit Suite(void (*registerAll)());
};
