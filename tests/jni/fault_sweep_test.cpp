#include <gtest/gtest.h>

#include <regex>

#include "blur/color_mask.h"
#include "tests/reference/reference.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

// Lets each call that the library makes fail, the first one, then the second one and so on, in
// every native method and at the load.

extern "C" jint JNI_OnLoad(JavaVM* vm, void* reserved);

namespace {

using Lines = std::vector<std::string>;
using Counts = std::map<std::string, int>;
using Pixels = std::vector<uint32_t>;

const std::string kTag = "4 zorenconfig: ", kPad = kTag + " zorenconfig pading_length ";
const std::string kBad = kTag + "error zorenconfig file \n";
const std::string kUnread = kTag + "can not read file /system/etc/jpsp \n";
const char kNew[] = "_ZnamRKSt9nothrow_t";

const std::string kNoKey = kTag + "Unable to set encryption key in AES\n";

enum Effect { kNone, kRefused, kLessRead, kExit };
const struct Fault {
    const char* native;  // or how its name begins
    Effect effect;
    Lines calls;
    Lines log = {};
} kFaults[] = {
    {"JNI_OnLoad", kRefused, {"GetEnv"}},
    {"JNI_OnLoad", kNone, {"registerNativeMethods"}},
    {"getB", kRefused, {"AndroidBitmap_getInfo", "AndroidBitmap_lockPixels"}},
    {"getB", kNone, {"AndroidBitmap_unlockPixels"}},
    {"getBlurEffect", kRefused, {kNew}},
    {"nativeGetConfigXML", kRefused, {"access", "fopen"}, {kUnread, kBad}},
    {"nativeGetConfigXML", kRefused, {"fseek", "ftell", "malloc", "rewind", "calloc"}, {kBad}},
    {"nativeGetConfigXML", kRefused, {"fread", "fread nothing"}, {kBad}},
    {"nativeGetConfigXML", kExit, {"AES_set_decrypt_key"}, {kNoKey}},
    {"nativeGetConfigXML", kRefused, {"NewStringUTF"}, {kPad + "12 \n"}},
    {"nativeGetConfigXML", kNone, {"__android_log_print", "fclose"}},
    {"nativeGetIfaceUidStat", kNone, {"jniThrowNullPointerException", "setvbuf"}},
    {"nativeGetIfaceUidStat", kRefused, {"GetStringUTFChars", "fopen", "fclose"}},
    {"nativeGetIfaceUidStat", kLessRead, {"fread", "fread nothing"}},
};

// What else the library may import, and cannot fail.
const std::string kFaultless =
    // It has no result,
    " free _ZdaPv AES_cbc_encrypt OPENSSL_cleanse "
    // does not return,
    "exit abort _ZN3hwy5AbortEPKciS1_z "
    // or always succeeds.
    "abs memchr memcmp memcpy memmove memset strcmp strlen sscanf isxdigit exp ferror getuid "
    "getauxval _ZN3hwy16SupportedTargetsEv _ZN3hwy15GetChosenTargetEv ";

constexpr size_t kBlock = 16384;  // bytes of one read of the statistics
constexpr int kWidth = 140, kHeight = 5;
Pixels pixels() {  // of about one hue
    std::mt19937 random(61);
    Pixels words(kWidth * kHeight);
    for (uint32_t& word : words) word = 0x800000C0 | (static_cast<uint32_t>(random()) & 0x1F1F3F);
    return words;
}

struct Outcome {
    std::string result;
    Lines log = {};
    Pixels words = pixels();
};

// One way to call a native.
struct Call {
    std::string name;  // the native's, and after a blank what is particular
    std::string (*make)(FakePlatform& platform);
    Outcome whole;  // without a fault
    std::string refused = "-1", file = "";
};

template <int radius, uint32_t color>
std::string blur(FakePlatform& platform) {
    platform.blur(radius, color);
    return "";
}

Pixels blurred(float radius, int32_t size, uint32_t color) {
    Image image(kWidth, kHeight, pixels());
    const reference::Kernel kernel = reference::calcuGaussianTemplate(size, radius);
    reference::GaussianBlurEffect(image, kernel.weights.data(), size, kernel.norm);
    if (color != 0) android::addMask(&image, color);
    return image.words();
}

std::vector<Call> everyCall() {
    const std::string xs(20, 'x'), sealed = reference::encryptConfig(xs + std::string(12, 12));
    const std::string overlong = reference::encryptConfig(std::string(32, 33));
    std::string lines =
        "idx iface\n1 lo 0x0 7 0 4 3 2 1\n2\tlo 0x0 7 0 30 1 1 1\n3 lo 0x0 8 0 5 5 5 5\n";
    const std::string last = "4 lo 0x0 7 1 200 1 1 1999\n";  // its last number in two reads
    lines += std::string(kBlock + 2 - last.size() - lines.size(), '\n') + last;
    Image image(kWidth, kHeight, pixels());
    const auto gray = [](FakePlatform& p) { return std::to_string(p.gray()); };
    const auto cast = [](FakePlatform& p) { return std::to_string(p.cast(50, 80)); };
    const auto config = [](FakePlatform& p) { return p.config().value_or("null"); };
    const auto total = [](FakePlatform& p) { return std::to_string(p.traffic("lo", 7, 0)); };
    const auto none = [](FakePlatform& p) { return std::to_string(p.traffic({}, 7, 0)); };
    const auto load = [](FakePlatform& p) {
        const jint result = JNI_OnLoad(p.vm(), nullptr);
        return std::to_string(result) + " " + std::to_string(p.classes.size());
    };
    return {
        {"JNI_OnLoad", load, {"65540 4"}, "-1 0"},
        {"getBlurEffect by symmetric taps", blur<10, 0>, {"", {}, blurred(10, 39, 0)}, ""},
        {"getBlurEffect by steps", blur<500, 0>, {"", {}, blurred(500, 1999, 0)}, ""},
        {"getBlurEffect and mask", blur<2, 1u << 30>, {"", {}, blurred(2, 7, 1u << 30)}, ""},
        {"getBitmapGray", gray, {std::to_string(reference::RGB2Gray(image))}},
        {"getBitmapColorCast", cast, {std::to_string(reference::BitmaptoColorCast(image, 50, 80))}},
        {"nativeGetConfigXML", config, {xs, {kPad + "12 \n"}}, "null", sealed},
        {"nativeGetConfigXML overlong", config, {"null", {kPad + "33 \n", kBad}}, "null", overlong},
        {"nativeGetConfigXML of no block", config, {"null", {kBad}}, "null", "?"},
        {"nativeGetConfigXML of no file", config, {"null", {kUnread, kBad}}, "null"},
        {"nativeGetIfaceUidStat", total, {"234"}, "-1", lines},
        {"nativeGetIfaceUidStat of null", none, {"-1"}},
    };
}

// Makes the call while one that it makes fails and checks all that comes of it. Returns how often
// what can fail was called.
Counts check(const Call& call, const TemporaryFile& file, const std::string& failing, int number,
             const Outcome& right) {
    FakePlatform platform;
    FakeLibc libc;
    Image image(kWidth, kHeight, pixels());
    platform.showBitmap(image);
    platform.failing = failing;
    platform.failingCall = number;
    libc.file = file.path() + (call.file.empty() ? "/none" : "");
    EXPECT_EQ(call.make(platform), right.result);
    EXPECT_EQ(platform.log, right.log);
    EXPECT_TRUE(image.words() == right.words) << "pixels are neither whole nor as they were";
    EXPECT_TRUE(image.storage.intact());
    EXPECT_TRUE(libc.balanced()) << libc.heldBlocks() << " blocks, " << libc.openFiles << " files";
    EXPECT_EQ(platform.held, 0) << "locks and strings";
    return platform.reached;
}

Outcome expected(const Call& call, const Fault& fault, const std::string& name, int number) {
    if (fault.effect == kNone) return call.whole;
    if (fault.effect == kRefused) return {call.refused, fault.log};
    // What comes counts, but for the line that the error cuts.
    const size_t end = (number - 1) * kBlock + (name == "fread" ? kBlock - 1 : 0);
    const std::string read = call.file.substr(0, end), whole = read.substr(0, read.rfind('\n') + 1);
    return {std::to_string(reference::ifaceUidStat(whole, "lo", 7, 0))};
}

// Returns how often each call failed.
Counts sweep(const Call& call) {
    const TemporaryFile file(call.file);
    const Counts reached = check(call, file, "", 0, call.whole);
    for (const auto& [name, count] : reached) {
        const Fault* fault = std::begin(kFaults);
        while (call.name.rfind(fault->native, 0) != 0 ||
               std::count(fault->calls.begin(), fault->calls.end(), name) == 0) {
            if (++fault != std::end(kFaults)) continue;
            ADD_FAILURE() << name << ": what if it fails?";
            return {};
        }
        for (int number = 1; number <= count; ++number) {
            SCOPED_TRACE(testing::Message() << name << " " << number);
            if (fault->effect != kExit) {
                check(call, file, name, number, expected(call, *fault, name, number));
            } else {
                EXPECT_EXIT(check(call, file, name, number, {}), testing::ExitedWithCode(255),
                            "^" + fault->log[0] + "$");
            }
        }
    }
    return reached;
}

TEST(FaultSweep, EveryCallMayFail) {
    std::map<std::string, Counts> faults;
    Counts byCall, byNative;
    for (const Call& call : everyCall()) {
        SCOPED_TRACE(call.name);
        for (const auto& [name, count] : faults[call.name] = sweep(call)) {
            byCall[name] += count;
            byNative[call.name.substr(0, call.name.find(' '))] += count;
            byNative["total"] += count;
        }
    }
    EXPECT_GT(faults["getBlurEffect by steps"][kNew],
              faults["getBlurEffect by symmetric taps"][kNew]);
    std::string line;
    for (const auto& [native, count] : byNative) line += " " + native + " " + std::to_string(count);
    std::printf("[   FAULTS ]%s\n", line.c_str());

    for (const Fault& fault : kFaults) {
        for (const std::string& call : fault.calls) EXPECT_EQ(byCall.count(call), 1u) << call;
    }
    const std::regex runtimes(
        "__(a|t|ub)san_.*|__sanitizer_.*|__sancov_.*|__st(art|op)___sancov_.*"
        "|__stack_chk_fail|__cxa_.*|__gmon_start__|_ITM_.*|__register_atfork");
    const std::regex decorated("__(?:isoc\\d+_(\\w+)|(\\w+)_chk)|_ZN.*(registerNativeMethods).*");
    const Lines imports = ImportPatch::functions();
    EXPECT_FALSE(imports.empty());
    for (const std::string& name : imports) {
        const std::string call = std::regex_replace(name, decorated, "$1$2$3");
        const bool faultless = std::regex_match(name, runtimes) ||
                               kFaultless.find(" " + call + " ") != std::string::npos;
        EXPECT_NE(byCall.count(call) == 1, faultless) << name << " may fail, or why not?";
    }
}

}  // namespace
