#include <algorithm>
#include <cstdio>

#include "tests/reference/reference.h"

namespace reference {

int64_t ifaceUidStat(const std::string& content, const std::string& interface, int32_t uid,
                     int32_t selector) {
    unsigned long totals[6] = {};
    for (size_t start = 0; start < content.size();) {
        const size_t end = std::min(content.find('\n', start), content.size() - 1) + 1;
        const std::string line = content.substr(start, std::min<size_t>(end - start, 383));
        start += line.size();
        char name[32];
        unsigned index, lineUid, set;
        unsigned long tag, v[4];
        if (std::sscanf(line.c_str(), "%u %31s 0x%lx %u %u %lu %lu %lu %lu", &index, name, &tag,
                        &lineUid, &set, &v[0], &v[1], &v[2], &v[3]) != 9) {
            continue;
        }
        if (lineUid != static_cast<uint32_t>(uid) || name != interface || tag != 0) continue;
        for (int i = 0; i < 4; ++i) totals[i] += v[i];
    }
    return selector < 0 || selector > 5 ? -1 : static_cast<int64_t>(totals[selector]);
}

}  // namespace reference
