#include "net/traffic_counter.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

namespace android {
namespace {

constexpr size_t kPieceLength = 383;  // a longer line is read in pieces, each a line of its own
constexpr size_t kBlockSize = 16384;  // of one read
constexpr size_t kNameLength = 31;    // of a name that is not cut
constexpr uint32_t kCounters = 4;
constexpr uint32_t kSelectors = 6;  // 4 and 5 are known and always 0

struct Entries {
    const char* interface;
    uint32_t uid;
    bool plain;  // `interface` may be the name in a plain line: visible ASCII, and not cut
    uint64_t totals[kCounters];
};

bool isVisible(char c) { return c > ' ' && c <= '~'; }

// The value of a decimal digit, above 9 for anything else.
uint64_t digitAt(const char* at) { return static_cast<uint64_t>(*at) - '0'; }

void skipBlanks(const char*& at) {
    while (*at == ' ') ++at;
}

// Steps over blanks and 1 to 19 digits, which cannot overflow, and gives their value. False where
// there is anything else. Inlined by force: clang makes it a call, and a file whose lines all match
// then takes a seventh longer.
[[gnu::always_inline]] inline bool takeNumber(const char*& at, uint64_t& value) {
    skipBlanks(at);
    const char* const digits = at;
    value = 0;
    for (uint64_t digit; (digit = digitAt(at)) <= 9; ++at) value = 10 * value + digit;
    return at != digits && at - digits <= 19;
}

// Does what addScannedLine does, at a fraction of the cost, with a line as the kernel writes it.
// Returns false, having added nothing, as soon as the line holds what the scan reads by rules of
// its own: other white space, signs, overflows, cut names, second prefixes, early ends. Reads no
// further than the line's end, a line feed or a zero byte.
bool addPlainLine(const char* at, Entries& entries) {
    skipBlanks(at);
    if (digitAt(at) > 9) return false;
    while (digitAt(at) <= 9) ++at;  // the index, whatever its size

    skipBlanks(at);
    if (!isVisible(*at)) return false;
    const char* name = entries.interface;
    while (*name != '\0' && *at == *name) ++at, ++name;
    if (*name != '\0') return true;  // another name, however it goes on
    if (*at != ' ') return false;

    skipBlanks(at);
    if (at[0] != '0' || at[1] != 'x') return false;
    const char* const tag = at += 2;
    while (*at == '0') ++at;
    if (isxdigit(static_cast<unsigned char>(*at))) return true;  // not 0, whatever its size
    uint64_t number, counters[kCounters];
    if (at == tag || !takeNumber(at, number)) return false;
    if (static_cast<uint32_t>(number) != entries.uid) return true;

    if (!takeNumber(at, number)) return false;  // the counter set
    for (uint64_t& counter : counters) {
        if (!takeNumber(at, counter)) return false;
    }
    for (uint32_t i = 0; i < kCounters; ++i) entries.totals[i] += counters[i];
    return true;
}

// Adds the counters of the line that ends before `end` when it scans, and is of the interface, the
// uid and tag 0. What lies at `end` is as before when this returns.
void addScannedLine(const char* line, char* end, Entries& entries) {
    const char next = *end;
    *end = '\0';
    unsigned int index, uid, set;
    char name[kNameLength + 1];
    unsigned long tag, counters[kCounters];
    const int fields = sscanf(line, "%u %31s 0x%lx %u %u %lu %lu %lu %lu", &index, name, &tag, &uid,
                              &set, &counters[0], &counters[1], &counters[2], &counters[3]);
    *end = next;
    if (fields != 9 || uid != entries.uid || strcmp(name, entries.interface) != 0 || tag != 0) {
        return;
    }
    for (uint32_t i = 0; i < kCounters; ++i) entries.totals[i] += counters[i];
}

// Reads the file as fgets with a buffer of kPieceLength + 1 characters would, in fewer steps: what
// a read leaves unfinished moves in front of the block that the next one fills.
void addFile(FILE* file, Entries& entries) {
    setvbuf(file, nullptr, _IONBF, 0);  // the stream's own buffer would only be copied
    char lines[kPieceLength + kBlockSize + 1];
    char* const block = lines + kPieceLength;
    char* line = block;
    for (size_t count = kBlockSize; count == kBlockSize;) {
        count = fread(block, 1, kBlockSize, file);
        char* const end = block + count;
        for (;;) {
            const size_t length = std::min(static_cast<size_t>(end - line), kPieceLength);
            char* next = static_cast<char*>(memchr(line, '\n', length));
            if (next == nullptr && length < kPieceLength) break;
            next = next == nullptr ? line + length : next + 1;
            if (next[-1] != '\n' || !entries.plain || !addPlainLine(line, entries)) {
                addScannedLine(line, next, entries);
            }
            line = next;
        }
        const size_t left = static_cast<size_t>(end - line);
        line = static_cast<char*>(memmove(block - left, line, left));
    }
    // The end of the file ends a line, an error leaves it unread.
    if (line != block && ferror(file) == 0) addScannedLine(line, block, entries);
}

}  // namespace

int64_t readIfaceUidStat(const char* path, const char* interface, uint32_t uid, uint32_t selector) {
    FILE* file = fopen(path, "r");
    if (file == nullptr) return -1;
    const size_t length = strlen(interface);
    const bool plain =
        length <= kNameLength && std::all_of(interface, interface + length, isVisible);
    Entries entries = {interface, uid, plain, {}};
    addFile(file, entries);
    if (fclose(file) != 0 || selector >= kSelectors) return -1;
    return selector < kCounters ? static_cast<int64_t>(entries.totals[selector]) : 0;
}

}  // namespace android
