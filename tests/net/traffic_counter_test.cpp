#include <gtest/gtest.h>

#include <random>

#include "tests/reference/reference.h"
#include "tests/support/fake_libc.h"
#include "tests/support/fake_platform.h"

// The traffic native, reached as Java reaches it: through its method table.

namespace {

using Lines = std::vector<std::string>;
const std::string kOpen = "fopen /proc/net/xt_qtaguid/stats r";
const Lines kWhole = {"GetStringUTFChars", kOpen, "fclose", "ReleaseStringUTFChars"};

const std::string kStats =
    "idx iface acct_tag_hex uid_tag_int cnt_set rx_bytes rx_packets\n"
    "2 wlan0 0x0 1000 0 10 20 30 40 7 7 7\n"
    "3 wlan0 0x0 1000 1 100 200 300 400\n"      // the other set
    "4 wlan0 0x5 1000 0 1000 1000 1000 1000\n"  // tagged
    "5 wlan0 0x100000000 1000 0 1000 1000 1000 1000\n"
    "6 wlan 0x0 1000 0 5000 5000 5000 5000\n"
    "7 wlan01 0x0 1000 0 6000 6000 6000 6000\n"
    "8 WLAN0 0x0 1000 0 7000 7000 7000 7000\n"
    "9 wlan0 0x0 4294967295 0 1 2 3 4\n"
    "10 wlan0 0x0 1000 0 9 9 9\n"  // a field short
    "11 wlan0 0 1000 0 9 9 9 9\n"  // no 0x
    "x wlan0 0x0 1000 0 9 9 9 9\n"
    "12 eth0 0x0 7 0 18446744073709551615 4294967296 0 1\n"
    "13\teth0  0x00 7 0 3 4294967296 0 1\n"
    "14 a123456789b123456789c123456789d 0x0 8 0 5 5 5 5\n"
    "14 a123456789b123456789c123456789d0x0 8 0 9 5 5 5\n"  // cut
    "15 wlan0 0x0 1000 0 1000 2000 3000 4000";             // no newline

TEST(TrafficCounter, GivesTheseTotals) {
    // Filled up to 383 characters the line holds two entries: one read ends between them.
    const std::string first = "1 wlan0 0x0 1000 0 1 2 3 4";
    const std::string pieces = first.substr(0, 2) + std::string(383 - first.size(), ' ') +
                               first.substr(2) + "2 wlan0 0x0 1000 0 10 20 30 40\n";
    struct Row {
        std::string file;
        std::optional<std::string> name;
        jint uid, selector;
        jlong total;
        const char* failing = "";
        Lines calls = kWhole;
    };
    const std::string zero(1, '\0'), plain = "1 wlan0 0x0 1000 0 1 2 3 4\n";
    const std::string megabyte = plain + std::string(1 << 20, '7') + "\n" + plain;
    std::string million;
    for (int i = 0; i < 1'000'000; ++i) million += plain;
    const std::string huge(400, '9'), past = "18446744073709551616";  // saturates
    const Row rows[] = {
        {kStats, "wlan0", 1000, 0, 1110},
        {kStats, "wlan0", 1000, 1, 2220},
        {kStats, "wlan0", 1000, 2, 3330},
        {kStats, "wlan0", 1000, 3, 4440},
        {kStats, "wlan0", 1000, 4, 0},
        {kStats, "wlan0", 1000, 6, -1},
        {kStats, "wlan0", 1000, 65536, -1},
        {kStats, "wlan0", 1000, INT32_MIN, -1},
        {kStats, "wlan0", -1, 3, 4},
        {kStats, "wlan", 1000, 0, 5000},
        {kStats, "eth0", 7, 0, 2},  // wraps
        {kStats, "eth0", 7, 1, 8589934592},
        {kStats, "", 1000, 0, 0},
        {"1 a b 0x0 8 0 5 5 5 5\n", "a b", 8, 0, 0},            // a name ends at a blank
        {kStats, "a123456789b123456789c123456789d", 8, 0, 14},  // 31 characters
        {kStats, "a123456789b123456789c123456789dx", 8, 0, 0},  // 32
        {"1 a123456789b123456789c123456789dx 0x0 8 0 5 5 5 5\n", "a123456789b123456789c123456789dx",
         8, 0, 0},
        {pieces, "wlan0", 1000, 0, 11},
        {megabyte, "wlan0", 1000, 3, 8},
        {million, "wlan0", 1000, 3, 4'000'000},
        {"1 wlan0" + zero + " 0x0 1000 0 1 2 3 4\n" + plain, "wlan0", 1000, 0, 1},  // ends a line
        {"4294967295 wlan0 0x0 1000 4294967295 1 1 1 1\n", "wlan0", 1000, 0, 1},
        {"4294967296 wlan0 0x0 4294968296 4294967296 1 1 1 1\n", "wlan0", 1000, 0, 1},  // wrap
        {past + " wlan0 0x0 1000 " + past + " 1 " + past + " 1 1\n", "wlan0", 1000, 1, -1},
        {huge + plain, "wlan0", 1000, 0, 1},  // its second piece
        {"1 wlan0 0x10000000000000000 1000 0 1 1 1 1\n", "wlan0", 1000, 0, 0},
        {"-1 wlan0 0x-0 -4294966296 +0 -1 +2 3 4\n", "wlan0", 1000, 0, -1},
        {"1 wlan0 0x 1000 0 1 1 1 1\n1 wlan0 0 1000 0 1 1 1 1\n1 wlan0 x0 1000 0 1 1 1 1\n",
         "wlan0", 1000, 0, 0},
        {kStats, "wlan0", 1000, 4, -1, "fclose"},
        {kStats, {}, 1000, 4, -1, "", {"throw null"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << &row - rows);
        FakePlatform platform;
        FakeLibc libc;
        platform.failing = row.failing;
        const TemporaryFile file(row.file);
        libc.file = file.path();
        EXPECT_EQ(platform.traffic(row.name, row.uid, row.selector), row.total);
        EXPECT_EQ(platform.calls, row.calls);
        EXPECT_EQ(platform.log, Lines{});
        EXPECT_TRUE(libc.balanced());
    }
}

// Plain lines, and lines with an odd field, an odd byte or odd gaps, some longer than one read.
TEST(TrafficCounter, EqualsReference) {
    std::mt19937 random(51);
    const char* const odd[] = {
        "+1000", "4294968296", "-4294966296",         "0x0x0", "0x-0", "0xffff0000", "1000a", "lo",
        "0X0",   "-",          "99999999999999999999"};
    for (int round = 0; round < 150; ++round) {
        std::string content;
        for (int line = 0; line < 500; ++line) {
            std::string words[] = {"1", "wlan0", "0x0", "1000", "0", "", "", "", ""};
            for (int i = 5; i < 9; ++i) words[i] = std::to_string(random());
            if (line % 2 == 0) words[random() % 9] = odd[random() % std::size(odd)];
            for (const std::string& word : words) {
                content += word + std::string(random() % 90 == 0 ? random() % 400 : 1, ' ');
                if (random() % 30 == 0) content[content.size() - 1 - random() % 2] = random() % 64;
            }
            content += '\n';
        }
        FakePlatform platform;
        FakeLibc libc;
        const TemporaryFile file(content);
        libc.file = file.path();
        const jlong expected = reference::ifaceUidStat(content, "wlan0", 1000, round % 4);
        ASSERT_EQ(platform.traffic("wlan0", 1000, round % 4), expected);
    }
}

}  // namespace
