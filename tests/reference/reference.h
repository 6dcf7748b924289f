#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jni/bitmap_struct.h"

// One plain scalar version of what is not enumerated: the truth that tests and fuzzers compare
// with. Written to be checked by eye, not to be fast.
namespace reference {

using android::BitmapStruct;

struct Kernel {
    std::vector<int32_t> weights;
    int32_t norm;
};

// Gaussian weights with the correctly rounded exponential; none for a refused size.
Kernel calcuGaussianTemplate(int32_t size, float radius);
Kernel gauss(float radius);  // as a blur request derives it
void GaussianBlurEffect(BitmapStruct& bitmap, const int32_t* kernel, int32_t size, int32_t norm);

int32_t RGB2Gray(const BitmapStruct& bitmap);

// Degrees from 0 to 359, or -1 for a pixel too dark or too pale to have a hue.
int32_t hueOf(uint32_t pixel);
int32_t BitmaptoColorCast(const BitmapStruct& bitmap, int32_t saturation, int32_t brightness);

// Encrypts whole blocks as they stand: text, and padding whose last byte counts it.
std::string encryptConfig(const std::string& plain);

// The text of an encrypted configuration, or nothing for bytes that are no configuration.
std::optional<std::string> decryptConfig(const std::string& file);

// The total that a statistics file with this content gives.
int64_t ifaceUidStat(const std::string& content, const std::string& interface, int32_t uid,
                     int32_t selector);

}  // namespace reference
