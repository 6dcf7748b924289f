// OpenCV beside the routines: the same kernel sizes, on one thread. Its filters write another
// picture, ours the same one.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "analysis/gray_level.h"
#include "bench/support.h"

namespace {

cv::Mat matrix(const android::BitmapStruct& bitmap, int type) {
    return {bitmap.height, bitmap.width, type, bitmap.pixels};
}

// A picture without its alpha.
cv::Mat threeChannels(Size size) {
    static std::map<int32_t, cv::Mat> pictures;
    cv::Mat& mat = pictures[size.width * 10007 + size.height];
    if (mat.empty()) cv::cvtColor(matrix(picture(size), CV_8UC4), mat, cv::COLOR_RGBA2RGB);
    return mat;
}

Work blur(Size size, float sigma, bool alpha) {
    const cv::Mat from = alpha ? matrix(picture(size), CV_8UC4) : threeChannels(size);
    cv::Mat to = matrix(canvas(size), alpha ? CV_8UC4 : CV_8UC3);
    const int taps = kernelSize(sigma);
    return [=]() mutable {
        cv::GaussianBlur(from, to, {taps, taps}, sigma, sigma, cv::BORDER_REPLICATE);
    };
}

Work filter(Size size, float sigma) {
    const cv::Mat from = matrix(picture(size), CV_8UC4);
    cv::Mat to = matrix(canvas(size), CV_8UC4);
    const cv::Mat kernel = cv::getGaussianKernel(kernelSize(sigma), sigma, CV_32F);
    return [=]() mutable {
        cv::sepFilter2D(from, to, CV_8U, kernel, kernel, {-1, -1}, 0, cv::BORDER_REPLICATE);
    };
}

// The channels' means hold the gray level that ours rounds down.
Difference grayDifference(Size size, const cv::Scalar& means) {
    const android::BitmapStruct bitmap = picture(size);
    const double gray = 0.299 * means[0] + 0.587 * means[1] + 0.114 * means[2];
    const double distance = std::abs(gray - android::RGB2Gray(&bitmap));
    return {distance, distance};
}

void addMeasures(Size size) {
    const cv::Mat from = matrix(picture(size), CV_8UC4);
    add(
        "gray", "cv::mean", size, "",
        [=]() -> Work { return [=] { benchmark::DoNotOptimize(cv::mean(from)); }; }, 0,
        [=] { return grayDifference(size, cv::mean(from)); });
    // A histogram of all pixels' hues: without the tests of saturation and brightness.
    add("cast", "cv HSV and histogram", size, "", [=]() -> Work {
        return [from, hsv = cv::Mat(), counts = cv::Mat()]() mutable {
            cv::cvtColor(from, hsv, cv::COLOR_RGB2HSV);
            const int channel = 0, bins = 24;
            const float range[] = {0, 180};
            const float* ranges = range;
            cv::calcHist(&hsv, 1, &channel, {}, counts, 1, &bins, &ranges);
            benchmark::DoNotOptimize(counts.data);
        };
    });
}

const Suite suite([] {
    cv::setNumThreads(1);
    // Its list of processor features is made before the program begins, from the environment.
    if (options().kind == Kind::kAvx2 && cv::checkHardwareSupport(CV_CPU_AVX512_SKX)) {
        std::fprintf(stderr, "zoren_bench: --avx2 needs OPENCV_CPU_DISABLE=AVX512-SKX\n");
        std::exit(1);
    }
    for (const Size size : sizes()) {
        for (const float sigma : sigmas(size)) {
            const auto check = [=](int32_t channels) -> Check {
                return [=] {
                    const auto* result = reinterpret_cast<const uint8_t*>(canvas(size).pixels);
                    return blurDifference(size, sigma, result, channels);
                };
            };
            addPeerBlur(
                "cv::GaussianBlur", size, sigma, [=](Size part) { return blur(part, sigma, true); },
                check(4));
            addPeerBlur(
                "cv::GaussianBlur, 3 channels", size, sigma,
                [=](Size part) { return blur(part, sigma, false); }, check(3));
            addPeerBlur(
                "cv::sepFilter2D", size, sigma, [=](Size part) { return filter(part, sigma); },
                check(4));
        }
        addMeasures(size);
    }
    const Size size = sizes().back();
    for (const float sigma : {1.f, 10.f, 25.f}) {
        addMemory("cv::GaussianBlur", size, sigma, [=] {
            cv::Mat to;
            cv::GaussianBlur(matrix(picture(size), CV_8UC4), to,
                             {kernelSize(sigma), kernelSize(sigma)}, sigma, sigma,
                             cv::BORDER_REPLICATE);
        });
    }
});

}  // namespace
