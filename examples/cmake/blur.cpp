// Blurs and tints a picture, PPM (P6, 8 bits) in and out: blur RADIUS AARRGGBB <in.ppm >out.ppm
#include <zoren_runtime.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: blur RADIUS AARRGGBB <in.ppm >out.ppm\n", stderr);
        return 2;
    }
    int width = 0, height = 0;
    if (std::scanf("P6 %d %d 255", &width, &height) != 2 || std::getchar() == EOF || width < 1 ||
        height < 1 || width > 32767 || height > 32767) {
        std::fputs("blur: no PPM picture\n", stderr);
        return 1;
    }
    std::vector<uint8_t> rgb(size_t{3} * width * height);
    if (std::fread(rgb.data(), 1, rgb.size(), stdin) != rgb.size()) return 1;
    std::vector<uint32_t> pixels(rgb.size() /
                                 3);  // red in the lowest byte, then green, blue, alpha
    for (size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = 0xFF000000u | rgb[3 * i + 2] << 16 | rgb[3 * i + 1] << 8 | rgb[3 * i];
    }

    android::BitmapStruct view = {width, height, pixels.data()};
    const float radius = std::strtof(argv[1], nullptr);
    const uint32_t color = static_cast<uint32_t>(std::strtoul(argv[2], nullptr, 16));
    if (!android::blurBitmap(&view, radius, color)) return 1;

    for (size_t i = 0; i < rgb.size(); ++i) rgb[i] = pixels[i / 3] >> 8 * (i % 3) & 0xFF;
    std::printf("P6\n%d %d\n255\n", width, height);
    return std::fwrite(rgb.data(), 1, rgb.size(), stdout) == rgb.size() ? 0 : 1;
}
