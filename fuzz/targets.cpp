#include "fuzz/targets.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <optional>

#include "include/zoren_runtime.h"
#include "tests/reference/reference.h"
#include "tests/support/every_target.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

namespace fuzz {
namespace {

#define REQUIRE(condition)                                                           \
    do {                                                                             \
        if (!(condition)) {                                                          \
            std::fprintf(stderr, "%s:%d: not %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                            \
        }                                                                            \
    } while (false)

// Takes values off the front of the bytes, 0 once they are used up.
class Bytes {
  public:
    Bytes(const uint8_t* data, size_t size) : at_(data), left_(size) {}

    template <typename T>
    T take() {
        T value = {};
        const size_t bytes = std::min(left_, sizeof value);
        if (bytes > 0) std::memcpy(&value, at_, bytes);
        at_ += bytes;
        left_ -= bytes;
        return value;
    }
    int32_t upTo(int32_t limit) { return 1 + take<uint16_t>() % limit; }
    std::string rest() { return {reinterpret_cast<const char*>(at_), left_}; }

    // Noise, or one bit of it stretched to black and white, or few colours: a byte chooses.
    Image image(int32_t width, int32_t height) {
        static const uint32_t kMasks[] = {~0u, 0x80808080, 0x00FFFFFF, 0x3F3F3F3F, 0xF0, 0};
        const uint32_t mask = kMasks[take<uint8_t>() % std::size(kMasks)];
        std::mt19937 random(take<uint32_t>());
        std::vector<uint32_t> words(static_cast<size_t>(width) * height);
        for (uint32_t& word : words) {
            word = static_cast<uint32_t>(random());
            word = mask == 0x80808080 ? word % 2 * ~0u : word & mask;
        }
        auto* bytes = reinterpret_cast<char*>(words.data());
        for (size_t i = 0; left_ > 0 && i < 4 * words.size(); ++i) {  // and those left, repeated
            bytes[i] = static_cast<char>(bytes[i] ^ at_[i % left_]);
        }
        return {width, height, words};
    }

  private:
    const uint8_t* at_;
    size_t left_;
};

// The fakes outlive the calls: their set-up costs more than most calls.
std::pair<FakePlatform, FakeLibc>& surroundings() {
    static auto* const all = new std::pair<FakePlatform, FakeLibc>;
    all->first.calls.clear();
    all->first.log.clear();
    return *all;
}

// Shows the library `content` as the one file there is.
void showFile(FakeLibc& libc, const std::string& content) {
    static const int file = memfd_create("file", 0);
    REQUIRE(ftruncate(file, 0) == 0);
    REQUIRE(pwrite(file, content.data(), content.size(), 0) ==
            static_cast<ssize_t>(content.size()));
    libc.file = "/proc/self/fd/" + std::to_string(file);
}

void chooseInstructionSet(Bytes& bytes) {
    useInstructionSet(instructionSets()[bytes.take<uint8_t>() % instructionSets().size()]);
}

// A file as it stands, or one that opens to the bytes.
void config(const uint8_t* data, size_t size) {
    Bytes bytes(data, size);
    const bool seal = bytes.take<uint8_t>() % 2 == 1;
    std::string file = bytes.rest();
    if (seal) {
        file.resize((file.size() + 15) / 16 * 16, '\1');
        file = reference::encryptConfig(file);
    }
    auto& [platform, libc] = surroundings();
    showFile(libc, file);
    REQUIRE(platform.config() == reference::decryptConfig(file));
    REQUIRE(libc.balanced());
}

// A request, then the file.
void statistics(const uint8_t* data, size_t size) {
    Bytes bytes(data, size);
    static const char* const kNames[] = {"wlan0", "lo", "", "a123456789b123456789c123456789d"};
    const std::string interface = kNames[bytes.take<uint8_t>() % std::size(kNames)];
    const int32_t selector = bytes.take<int8_t>() % 8, uid = bytes.take<int32_t>();
    const std::string file = bytes.rest();
    auto& [platform, libc] = surroundings();
    showFile(libc, file);
    REQUIRE(platform.traffic(interface, uid, selector) ==
            reference::ifaceUidStat(file, interface, uid, selector));
    REQUIRE(libc.balanced());
}

// A Gaussian, a positive kernel that adds up to its norm or less, or anything at all.
reference::Kernel kernelFrom(Bytes& bytes, int32_t size) {
    const uint8_t kind = bytes.take<uint8_t>() % 3;
    if (kind == 0) {
        return reference::calcuGaussianTemplate(size, static_cast<float>(bytes.upTo(9999)) / 50);
    }
    reference::Kernel kernel = {std::vector<int32_t>(size), bytes.take<int32_t>()};
    std::mt19937 random(bytes.take<uint32_t>());
    const int shift = bytes.take<uint8_t>() % 32;
    if (kind == 1)
        kernel.norm = 1 + static_cast<int32_t>(static_cast<uint32_t>(kernel.norm) % 65536);
    int32_t left = kernel.norm;
    for (int32_t& weight : kernel.weights) {
        weight = static_cast<int32_t>(random()) >> shift;
        if (kind == 1)
            left -= weight = static_cast<int32_t>(random() >> (16 + shift % 16)) % (left + 1);
    }
    return kernel;
}

void blur(const uint8_t* data, size_t size) {
    Bytes bytes(data, size);
    chooseInstructionSet(bytes);
    const int32_t taps = 2 * bytes.upTo(200) - 1, width = 1 + bytes.upTo(150);
    const int32_t height = 1 + bytes.upTo(std::max(1, 60'000 / taps / width));
    const reference::Kernel kernel = kernelFrom(bytes, taps);
    Image image = bytes.image(width, height);
    Image expected(width, height, image.words());
    const GuardedArray<int32_t> weights(kernel.weights);
    android::GaussianBlurEffect(&image, weights.begin(), taps, kernel.norm);
    reference::GaussianBlurEffect(expected, weights.begin(), taps, kernel.norm);
    REQUIRE(image.words() == expected.words());
    REQUIRE(image.storage.intact());
}

// Gray and cast of one image.
void pixels(const uint8_t* data, size_t size) {
    Bytes bytes(data, size);
    chooseInstructionSet(bytes);
    const int32_t saturation = bytes.take<int32_t>(), brightness = bytes.take<int32_t>();
    const int32_t width = bytes.upTo(200);
    const Image image = bytes.image(width, bytes.upTo(90));
    REQUIRE(android::RGB2Gray(&image) == reference::RGB2Gray(image));
    REQUIRE(android::BitmaptoColorCast(&image, saturation, brightness) ==
            reference::BitmaptoColorCast(image, saturation, brightness));
}

}  // namespace

const std::map<std::string, Target> kTargets = {
    {"config", config}, {"statistics", statistics}, {"blur", blur}, {"pixels", pixels}};

}  // namespace fuzz
