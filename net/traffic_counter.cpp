#include "net/traffic_counter.h"

#include <cstdio>
#include <cstring>

namespace android {
namespace {

constexpr int kLineSize = 384;  // a longer line is read in pieces, each a line of its own
constexpr uint32_t kCounters = 4;
constexpr uint32_t kSelectors = 6;  // 4 and 5 are known and always 0

// Adds the counters of `line` to `totals` when it scans, and is of `interface`, `uid` and tag 0.
void addLine(const char* line, const char* interface, uint32_t uid, uint64_t totals[kCounters]) {
    unsigned int index, lineUid, set;
    char name[32];
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
    uint64_t totals[kCounters] = {};
    char line[kLineSize];
    while (fgets(line, kLineSize, file) != nullptr) addLine(line, interface, uid, totals);
    if (fclose(file) != 0 || selector >= kSelectors) return -1;
    return selector < kCounters ? static_cast<int64_t>(totals[selector]) : 0;
}

}  // namespace android
