// Prints the mean gray level and the colour cast of a PPM picture (P6, 8 bits).
//
//   c++ -std=c++17 measure.cpp $(pkg-config --cflags --libs zoren_runtime) -o measure
//   ./measure <photo.ppm
#include <zoren_runtime.h>

#include <cstdio>
#include <vector>

int main() {
    int width = 0, height = 0;
    if (std::scanf("P6 %d %d 255", &width, &height) != 2 || std::getchar() == EOF || width < 1 ||
        height < 1 || width > 32767 || height > 32767) {
        std::fputs("measure: no PPM picture\n", stderr);
        return 1;
    }
    std::vector<uint32_t> pixels;  // red in the lowest byte, then green, blue, alpha
    uint8_t rgb[3];
    while (pixels.size() < size_t{1} * width * height && std::fread(rgb, 3, 1, stdin) == 1) {
        pixels.push_back(0xFF000000u | rgb[2] << 16 | rgb[1] << 8 | rgb[0]);
    }
    if (pixels.size() < size_t{1} * width * height) return 1;

    const android::BitmapStruct view = {width, height, pixels.data()};
    std::printf("gray %d\n", android::RGB2Gray(&view));
    const int32_t cast = android::BitmaptoColorCast(&view, 100, 100);  // full and bright
    if (cast == -1) {
        std::puts("no cast");
    } else {
        std::printf("cast #%06X\n", static_cast<uint32_t>(cast) & 0xFFFFFF);
    }
}
