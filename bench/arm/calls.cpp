// zoren_arm_calls WHOSE SIGMA WIDTH HEIGHT CALLS: makes that many calls of one blur and prints how
// far the result lies from the defined one of a single call. Two runs that differ by a call differ
// by a call's instructions.

#include <libyuv.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "bench/pictures.h"

namespace {

cv::Mat matrix(const android::BitmapStruct& bitmap) {
    return {bitmap.height, bitmap.width, CV_8UC4, bitmap.pixels};
}

void gaussian(Size size, float sigma) {
    const int taps = kernelSize(sigma);
    cv::Mat to = matrix(canvas(size));
    cv::GaussianBlur(matrix(picture(size)), to, {taps, taps}, sigma, sigma, cv::BORDER_REPLICATE);
}

void separable(Size size, float sigma) {
    const cv::Mat kernel = cv::getGaussianKernel(kernelSize(sigma), sigma, CV_32F);
    cv::Mat to = matrix(canvas(size));
    cv::sepFilter2D(matrix(picture(size)), to, CV_8U, kernel, kernel, {-1, -1}, 0,
                    cv::BORDER_REPLICATE);
}

// One box with the Gaussian's variance, ((2 r + 1)^2 - 1) / 12: it is all that libyuv has.
void box(Size size, float sigma) {
    const int radius = static_cast<int>(std::lround((std::sqrt(12 * sigma * sigma + 1) - 1) / 2));
    const int rows = 2 * std::min(radius, size.height) + 2;
    static std::vector<int32_t> sums(static_cast<size_t>(rows * size.width * 4));
    libyuv::ARGBBlur(reinterpret_cast<const uint8_t*>(picture(size).pixels), 4 * size.width,
                     reinterpret_cast<uint8_t*>(canvas(size).pixels), 4 * size.width, sums.data(),
                     4 * size.width, size.width, size.height, radius);
}

void ours(Size size, float sigma) { blurWhole(canvas(size), sigma); }

}  // namespace

int main(int argc, char** argv) {
    const std::map<std::string, std::function<void(Size, float)>> all = {
        {"zoren", ours},
        {"cv::GaussianBlur", gaussian},
        {"cv::sepFilter2D", separable},
        {"libyuv::ARGBBlur", box}};
    const auto found = argc == 6 ? all.find(argv[1]) : all.end();
    if (found == all.end()) {
        std::fprintf(stderr, "usage: zoren_arm_calls WHOSE SIGMA WIDTH HEIGHT CALLS\n");
        return 2;
    }
    const float sigma = std::strtof(argv[2], nullptr);
    const Size size = {std::atoi(argv[3]), std::atoi(argv[4])};
    cv::setNumThreads(1);
    const android::BitmapStruct from = picture(size), to = canvas(size);
    // The library works in place: its later calls blur what an earlier one left.
    std::copy(from.pixels, from.pixels + int64_t{size.width} * size.height, to.pixels);
    for (int calls = std::atoi(argv[5]); calls > 0; --calls) found->second(size, sigma);
    const Difference distance =
        blurDifference(size, sigma, reinterpret_cast<const uint8_t*>(to.pixels), 4);
    std::printf("%g %g\n", distance.largest, distance.mean);
    return 0;
}
