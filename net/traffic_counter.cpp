#include "net/traffic_counter.h"

#include <cctype>
#include <cstdio>
#include <cstring>

namespace android {
namespace {

constexpr int kLineSize = 384;        // a longer line is read in pieces, each a line of its own
constexpr size_t kBlockSize = 16384;  // of one read; the stream's own is a quarter of it
constexpr size_t kNameLength = 31;    // of a name that is not cut
constexpr uint32_t kCounters = 4;
constexpr uint32_t kSelectors = 6;  // 4 and 5 are known and always 0

// Steps over blanks and 1 to 19 digits, which cannot overflow, and gives their value. False where
// there is anything else. Inlined by force: clang makes it a call, and a file whose lines all match
// then takes a seventh longer.
[[gnu::always_inline]] inline bool takeNumber(const char*& at, uint64_t& value) {
    while (*at == ' ') ++at;
    const char* const digits = at;
    value = 0;
    for (uint64_t digit; (digit = static_cast<uint64_t>(*at) - '0') <= 9; ++at) {
        value = 10 * value + digit;
    }
    return at != digits && at - digits <= 19;
}

// Does what addScannedLine does, at a fraction of the cost, with a line as the kernel writes it.
// Returns false, having added nothing, as soon as the line holds what the scan reads by rules of
// its own: other white space, signs, overflows, cut names, second prefixes, early ends.
bool addPlainLine(const char* at, const char* interface, uint32_t uid, uint64_t totals[kCounters]) {
    uint64_t number, counters[kCounters];
    if (!takeNumber(at, number)) return false;  // the index

    while (*at == ' ') ++at;
    const char* const name = at;
    while (*at > ' ' && *at <= '~') ++at;
    const size_t length = static_cast<size_t>(at - name);
    if (*at != ' ' || length > kNameLength) return false;
    if (strncmp(name, interface, length) != 0 || interface[length] != '\0') return true;

    while (*at == ' ') ++at;
    if (at[0] != '0' || at[1] != 'x') return false;
    const char* const tag = at += 2;
    while (*at == '0') ++at;
    if (isxdigit(static_cast<unsigned char>(*at))) return true;  // not 0, whatever its size
    if (at == tag || !takeNumber(at, number)) return false;
    if (static_cast<uint32_t>(number) != uid) return true;

    if (!takeNumber(at, number)) return false;  // the counter set
    for (uint64_t& counter : counters) {
        if (!takeNumber(at, counter)) return false;
    }
    for (uint32_t i = 0; i < kCounters; ++i) totals[i] += counters[i];
    return true;
}

// Adds the counters of `line` to `totals` when it scans, and is of `interface`, `uid` and tag 0.
void addScannedLine(const char* line, const char* interface, uint32_t uid,
                    uint64_t totals[kCounters]) {
    unsigned int index, lineUid, set;
    char name[kNameLength + 1];
    unsigned long tag, counters[kCounters];
    const int fields =
        sscanf(line, "%u %31s 0x%lx %u %u %lu %lu %lu %lu", &index, name, &tag, &lineUid, &set,
               &counters[0], &counters[1], &counters[2], &counters[3]);
    if (fields != 9 || lineUid != uid || strcmp(name, interface) != 0 || tag != 0) return;
    for (uint32_t i = 0; i < kCounters; ++i) totals[i] += counters[i];
}

}  // namespace

int64_t readIfaceUidStat(const char* path, const char* interface, uint32_t uid, uint32_t selector) {
    FILE* file = fopen(path, "r");
    if (file == nullptr) return -1;
    char block[kBlockSize];
    setvbuf(file, block, _IOFBF, kBlockSize);
    uint64_t totals[kCounters] = {};
    char line[kLineSize];
    while (fgets(line, kLineSize, file) != nullptr) {
        if (!addPlainLine(line, interface, uid, totals)) {
            addScannedLine(line, interface, uid, totals);
        }
    }
    if (fclose(file) != 0 || selector >= kSelectors) return -1;
    return selector < kCounters ? static_cast<int64_t>(totals[selector]) : 0;
}

}  // namespace android
