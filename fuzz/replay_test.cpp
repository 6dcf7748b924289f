#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "fuzz/targets.h"
#include "tests/support/every_target.h"

// Every input that the fuzzers kept, through its target; one that fails ends the program.
TEST(FuzzCorpus, Replays) {
    for (const auto& [name, run] : fuzz::kTargets) {
        const std::string folder = std::string(ZOREN_FUZZ_CORPUS "/") + name;
        size_t inputs = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            std::ifstream stream(entry.path(), std::ios::binary);
            const std::vector<char> bytes(std::istreambuf_iterator<char>(stream), {});
            run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
            ++inputs;
        }
        EXPECT_GT(inputs, 0u) << folder;
    }
}

// Noise reaches most of what the fuzzers reach: every remainder of every vector, kernels of any
// kind and files under another key among it, because the targets read what they do from the bytes.
TEST(FuzzCorpus, AnyBytes) {
    std::mt19937 random(61);
    for (const auto& [name, run] : fuzz::kTargets) {
        for (int round = 0; round < 1000; ++round) {
            std::vector<uint8_t> bytes(random() % 64);
            for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
            run(bytes.data(), bytes.size());
        }
    }
    useInstructionSet(0);  // the targets choose one
}
