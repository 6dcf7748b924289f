#include "blur/region_fill.h"

#include <gtest/gtest.h>

#include "tests/support/images.h"

namespace {

using Fill = void (*)(const android::BitmapStruct* source, android::BitmapStruct* destination);
const Fill kWiden = android::fillBitmapRegionHorizontal;
const Fill kHeighten = android::fillBitmapRegionVertical;
using Pixels = std::vector<uint32_t>;

struct Row {
    const char* name;
    Fill fill;
    int32_t width, height;  // of the source, whose pixels are 1, 2, 3, ...
    int32_t length;         // of the destination along the axis; the other one is not read
    Pixels after;           // 0: not written
};

const Row kRows[] = {
    {"margin 2", kWiden, 3, 2, 7, {1, 1, 1, 2, 3, 3, 3, 4, 4, 4, 5, 6, 6, 6}},
    {"odd difference", kWiden, 4, 1, 9, {1, 1, 1, 2, 3, 4, 0, 4, 4}},
    {"no margin", kWiden, 3, 2, 3, {1, 2, 3, 4, 5, 6}},
    {"rows below stay", kWiden, 1, 1, 3, {1, 1, 1, 0, 0, 0, 0, 0, 0}},
    {"no row", kWiden, 3, 0, 5, Pixels(10, 0)},
    {"margin 2", kHeighten, 2, 3, 7, {1, 2, 1, 2, 1, 2, 3, 4, 5, 6, 5, 6, 5, 6}},
    {"odd difference", kHeighten, 1, 3, 8, {1, 1, 1, 2, 3, 3, 3, 0}},
    {"no margin", kHeighten, 2, 2, 2, {1, 2, 3, 4}},
    // What the destination or the source cannot give.
    {"narrower", kWiden, 3, 1, 2, Pixels(3, 0)},
    {"no column", kWiden, 0, 2, 3, Pixels(6, 0)},
    {"negative height", kWiden, 2, -1, 4, Pixels(4, 0)},
    {"negative width", kWiden, -2, 1, 4, Pixels(4, 0)},
    {"difference wraps", kWiden, INT32_MIN, 1, 5, Pixels(5, 0)},
    {"lower", kHeighten, 1, 3, 2, Pixels(3, 0)},
    {"no row", kHeighten, 2, 0, 3, Pixels(6, 0)},
    {"no column", kHeighten, 0, 2, 4, Pixels(8, 0)},
    {"negative height", kHeighten, 2, -1, 3, Pixels(6, 0)},
    {"negative width", kHeighten, -2, 2, 4, Pixels(8, 0)},
    {"difference wraps", kHeighten, 1, INT32_MIN, 5, Pixels(5, 0)},
};

TEST(RegionFill, GivesThesePixels) {
    for (const Row& row : kRows) {
        Pixels numbers(std::max(0, row.width) * std::max(0, row.height));
        for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<uint32_t>(i + 1);
        const Image source(row.width, row.height, numbers);
        const bool widens = row.fill == kWiden;
        Image destination(widens ? row.length : -9, widens ? -9 : row.length,
                          Pixels(row.after.size(), 0));
        row.fill(&source, &destination);
        EXPECT_EQ(destination.words(), row.after) << row.name << (widens ? "" : " vertically");
        EXPECT_TRUE(destination.storage.intact());
    }
}

TEST(RegionFill, LeavesSharedPixelsUntouched) {
    const Pixels before = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    for (const auto fill : {kWiden, kHeighten}) {
        for (const auto& [from, to] : {std::pair{0, 0}, {1, 0}, {3, 0}, {0, 2}}) {
            Image image(3, 3, before);
            const android::BitmapStruct part = {1, 3, image.pixels + from};
            android::BitmapStruct whole = {fill == kWiden ? 2 : 1, 5, image.pixels + to};
            fill(&part, &whole);
            EXPECT_EQ(image.words(), before) << from << " to " << to;
        }
        for (const int from : {0, 3}) {  // side by side
            Image image(4, 1, {1, 2, 3, 4});
            const android::BitmapStruct pixel = {1, 1, image.pixels + from};
            android::BitmapStruct three = {3, 3, image.pixels + (from == 0 ? 1 : 0)};
            fill(&pixel, &three);
            EXPECT_EQ(image.words(), Pixels(4, static_cast<uint32_t>(from) + 1));
        }
    }
    // One row too many for the row offsets; not one word of it is there. The destination lies above
    // the source, which its rows therefore do not reach.
    Image image(1, (1 << 16) + 1, 6);
    const android::BitmapStruct source = {1 << 16, 1, image.pixels};
    android::BitmapStruct destination = {1, 1 << 15, image.pixels + (1 << 16)};
    kHeighten(&source, &destination);
    EXPECT_EQ(image.words(), Pixels((1 << 16) + 1, 6));
}

}  // namespace
