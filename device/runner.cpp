// Runs the routines on pictures, kernels and statistics that it makes itself, and prints a digest
// of each; how long each took goes to standard error. It needs nothing but itself, so that it can
// be copied to a phone: scripts/device. The configuration is not among them: it opens for uid 0
// alone, with the phone's libcrypto.
#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "analysis/color_cast.h"
#include "analysis/gray_level.h"
#include "analysis/hsb_to_rgb.h"
#include "blur/color_mask.h"
#include "blur/gaussian_blur.h"
#include "blur/gaussian_kernel.h"
#include "blur/region_fill.h"
#include "hwy/highway.h"
#include "hwy/targets.h"
#include "net/traffic_counter.h"

namespace {

using android::BitmapStruct;

// FNV-1a of 64 bits.
class Digest {
  public:
    template <typename Value>
    void add(const Value* values, size_t count) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(values);
        for (size_t i = 0; i < count * sizeof(Value); ++i) sum_ = (sum_ ^ bytes[i]) * 0x100000001B3;
    }
    void add(int64_t value) { add(&value, 1); }
    uint64_t sum() const { return sum_; }

  private:
    uint64_t sum_ = 0xCBF29CE484222325;
};

struct Picture {
    Picture(int32_t width, int32_t height, std::mt19937& random)
        : words(static_cast<uint32_t>(width * height)) {
        for (uint32_t& word : words) word = static_cast<uint32_t>(random());
        view = {width, height, words.data()};
    }
    std::vector<uint32_t> words;
    BitmapStruct view;
};

// Sides on both ends of a vector's length, a line, and a picture of many tiles.
const struct {
    int32_t width, height;
} kSizes[] = {{2, 2}, {3, 70}, {17, 16}, {64, 33}, {131, 5}, {2, 300}, {333, 257}};
const float kRadii[] = {0.3f, 0.75f, 1, 2.5f, 4, 7.25f, 10, 16.5f, 25, 60, 140, 333, 1000};

std::vector<int32_t> kernelOf(float radius, int32_t& norm) {
    const int32_t taps = static_cast<int32_t>(4 * radius);
    std::vector<int32_t> kernel(static_cast<uint32_t>(taps - (taps % 2 == 0)));
    norm =
        android::calcuGaussianTemplate(kernel.data(), static_cast<int32_t>(kernel.size()), radius);
    return kernel;
}

void kernels(Digest& digest, std::mt19937&) {
    for (int i = 1; i < 2000; ++i) {
        int32_t norm = 0;
        const std::vector<int32_t> kernel = kernelOf(0.26f * static_cast<float>(i), norm);
        digest.add(kernel.data(), kernel.size());
        digest.add(norm);
    }
}

void blurs(Digest& digest, std::mt19937& random) {
    for (const auto& size : kSizes) {
        for (const float radius : kRadii) {
            int32_t norm = 0;
            std::vector<int32_t> kernel = kernelOf(radius, norm);
            for (const bool lopsided : {false, true}) {
                if (lopsided) kernel[0] += 7, norm += 7;
                Picture picture(size.width, size.height, random);
                android::GaussianBlurEffect(&picture.view, kernel.data(),
                                            static_cast<int32_t>(kernel.size()), norm);
                digest.add(picture.words.data(), picture.words.size());
            }
        }
    }
}

void pictures(Digest& digest, std::mt19937& random) {
    for (const auto& size : kSizes) {
        for (uint32_t alpha = 0; alpha <= 255; alpha += 15) {
            Picture picture(size.width, size.height, random);
            digest.add(android::RGB2Gray(&picture.view));
            android::addMask(&picture.view, alpha << 24 | (random() & 0xFFFFFF));
            digest.add(picture.words.data(), picture.words.size());
            for (uint32_t& word : picture.words) word = word % 64 + 0x4000C0;  // of about one hue
            digest.add(android::BitmaptoColorCast(&picture.view, 50, 80));
        }
        Picture source(size.width, size.height, random), wide(size.width + 8, size.height, random);
        Picture high(size.width, size.height + 8, random);
        android::fillBitmapRegionHorizontal(&source.view, &wide.view);
        android::fillBitmapRegionVertical(&source.view, &high.view);
        digest.add(wide.words.data(), wide.words.size());
        digest.add(high.words.data(), high.words.size());
    }
}

void hues(Digest& digest, std::mt19937&) {
    int32_t rgb[3];
    for (int i = 0; i < 360 * 101 * 5; ++i) {
        const int hue = i % 360, saturation = i / 360 % 101, brightness = i / (360 * 101) * 25;
        android::HSBtoRGB(rgb[0], rgb[1], rgb[2], static_cast<float>(hue),
                          static_cast<float>(saturation), static_cast<float>(brightness));
        digest.add(rgb, 3);
    }
}

void traffic(Digest& digest, std::mt19937& random) {
    const char* const names[] = {"wlan0", "rmnet0", "lo"};
    const char* const path = "zoren_runner.stats";  // in the current folder
    FILE* file = std::fopen(path, "w");
    if (file == nullptr) return digest.add(-2);
    for (int i = 0; i < 20000; ++i) {
        std::fprintf(file, "%d %s 0x%x %u %d %u %u %u %u 0\n", i, names[random() % 3],
                     static_cast<unsigned>(random() % 3 / 2), 10000 + unsigned(random() % 4), i % 2,
                     unsigned(random()), unsigned(random()), unsigned(random()),
                     unsigned(random()));
    }
    std::fclose(file);
    for (const char* name : names) {
        for (uint32_t i = 0; i < 24; ++i)
            digest.add(android::readIfaceUidStat(path, name, 10000 + i / 6, i % 6));
    }
    std::remove(path);
}

void run(const char* name, void (*routine)(Digest&, std::mt19937&)) {
    Digest digest;
    std::mt19937 random(1);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same pictures each time
    const auto start = std::chrono::steady_clock::now();
    routine(digest, random);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    std::printf("%-8s %016" PRIx64 "\n", name, digest.sum());
    std::fprintf(stderr, "%-8s %.1f ms\n", name, took.count());
}

void runAll() {
    run("kernels", kernels);
    run("blurs", blurs);
    run("pictures", pictures);
    run("hues", hues);
    run("traffic", traffic);
}

}  // namespace

int main() {
#ifdef HWY_COMPILE_ONLY_STATIC
    runAll();
#else  // once for each instruction set that the processor has
    const int64_t supported = hwy::SupportedTargets();
    for (int64_t target = 1; target > 0; target <<= 1) {
        if ((supported & HWY_TARGETS & target) == 0) continue;
        std::fprintf(stderr, "%s\n", hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        runAll();
    }
#endif
}
