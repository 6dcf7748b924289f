#define OPENSSL_SUPPRESS_DEPRECATED  // the library uses the AES interface, so the fakes do
#include "tests/support/fake_libc.h"

#include <openssl/aes.h>
#include <openssl/crypto.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <numeric>
#include <utility>

#include "tests/support/fake_platform.h"

namespace {

constexpr size_t kLargestBlock = size_t{1} << 30;  // a larger allocation fails

FakeLibc* active = nullptr;
std::map<uint8_t*, size_t> held;  // blocks of the library and their bytes
const uint8_t* plaintext = nullptr;
bool readFailed = false;                // the last one
std::map<const uint8_t*, size_t> keys;  // the schedule and the copy of the key that begins a file

bool fails(const char* call) { return FakePlatform::current().fails(call); }

void record(const std::string& call) { FakePlatform::current().calls.push_back(call); }

template <typename Allocate>
void* take(const char* call, size_t bytes, Allocate allocate) {
    if (fails(call) || bytes > kLargestBlock) return nullptr;
    void* block = allocate();
    held[static_cast<uint8_t*>(block)] = bytes;
    active->peakBytes = std::max(
        active->peakBytes, std::accumulate(held.begin(), held.end(), size_t{0},
                                           [](size_t n, const auto& b) { return n + b.second; }));
    return block;
}

void* give(void* block) {
    const auto entry = held.find(static_cast<uint8_t*>(block));
    if (entry == held.end()) return block;
    const uint8_t *begin = entry->first, *end = begin + entry->second;
    if (begin <= plaintext && plaintext < end) {
        active->plaintextWiped = std::all_of(begin, end, [](uint8_t byte) { return byte == 0; });
        plaintext = nullptr;  // the address may be in use again
    }
    held.erase(entry);
    return block;
}

size_t readBlock(void* buffer, size_t size, size_t count, FILE* stream) {
    const size_t lost = fails("fread") ? 1 : fails("fread nothing") ? count : 0;
    readFailed = lost > 0;
    return std::fread(buffer, size, count - lost, stream);
}

}  // namespace

FakeLibc::FakeLibc() : previous_(std::exchange(active, this)) {
    keys.clear();
    plaintext = nullptr;  // an earlier call's address may be in use again
    patchMemory();
    patchFiles();
    patchCipher();
}

FakeLibc::~FakeLibc() {
    patches_.clear();
    held.clear();
    active = previous_;
}

size_t FakeLibc::heldBlocks() const { return held.size(); }
bool FakeLibc::keysWiped() const { return keys.empty(); }

void FakeLibc::patchMemory() {
    // Each goes on to its own kind: the sanitizers tell a block of `new` from one of `malloc`.
    patch("malloc", [](size_t n) { return take("malloc", n, [n] { return std::malloc(n); }); });
    patch("calloc", [](size_t count, size_t n) {
        return take("calloc", count * n, [=] { return std::calloc(count, n); });
    });
    patch("_ZnamRKSt9nothrow_t", [](size_t n, const std::nothrow_t& tag) {
        return take("_ZnamRKSt9nothrow_t", n, [&] { return ::operator new[](n, tag); });
    });
    patch("free", [](void* block) { std::free(give(block)); });
    patch("_ZdaPv", [](void* block) { ::operator delete[](give(block)); });
}

void FakeLibc::patchFiles() {
    patch("getuid", [] { return active->uid; });
    patch("access", [](const char* path, int mode) {
        record(std::string("access ") + path + " " + std::to_string(mode));
        return fails("access") ? -1 : ::access(active->file.c_str(), mode);
    });
    patch("fopen", [](const char* path, const char* mode) -> FILE* {
        record(std::string("fopen ") + path + " " + mode);
        FILE* stream = fails("fopen") ? nullptr : std::fopen(active->file.c_str(), mode);
        if (stream != nullptr) ++active->openFiles;
        return stream;
    });
    patch("fclose", [](FILE* stream) {
        record("fclose");
        --active->openFiles;
        return std::fclose(stream) == 0 && !fails("fclose") ? 0 : EOF;
    });
    patch("fseek", [](FILE* stream, long offset, int whence) {
        return fails("fseek") ? -1 : std::fseek(stream, offset, whence);
    });
    patch("ftell", [](FILE* stream) {
        if (active->position != 0) return active->position;
        return fails("ftell") ? -1 : std::ftell(stream);
    });
    patch("rewind", [](FILE* stream) {
        if (!fails("rewind")) std::rewind(stream);
    });
    patch("ferror", [](FILE* stream) { return readFailed ? 1 : std::ferror(stream); });
    patch("fread", readBlock);
#ifdef __BIONIC__  // where the library is compiled with checks of its buffers: the room comes last
    patch("__fread_chk", [](void* buffer, size_t size, size_t count, FILE* stream, size_t) {
#else
    patch("__fread_chk", [](void* buffer, size_t, size_t size, size_t count, FILE* stream) {
#endif
        return readBlock(buffer, size, count, stream);
    });
    patch("setvbuf", [](FILE* stream, char* buffer, int mode, size_t size) {
        return fails("setvbuf") ? -1 : std::setvbuf(stream, buffer, mode, size);
    });
    // For death tests: the log reaches the parent through standard error.
    patch("exit", [](int status) {
        for (const std::string& line : FakePlatform::current().log)
            std::fputs(line.c_str(), stderr);
        _exit(status);
    });
}

void FakeLibc::patchCipher() {
    patch("AES_set_decrypt_key", [](const unsigned char* user, const int bits, AES_KEY* key) {
        if (fails("AES_set_decrypt_key")) return -1;
        keys[reinterpret_cast<const uint8_t*>(key)] = sizeof *key;
        return AES_set_decrypt_key(user, bits, key);
    });
    patch("AES_cbc_encrypt", [](const unsigned char* in, unsigned char* out, size_t length,
                                const AES_KEY* key, unsigned char* vector, const int encrypt) {
        plaintext = out;
        active->plaintextWiped = false;
        keys[vector] = AES_BLOCK_SIZE;
        AES_cbc_encrypt(in, out, length, key, vector, encrypt);
    });
    patch("OPENSSL_cleanse", [](void* memory, size_t bytes) {
        const auto* begin = static_cast<const uint8_t*>(memory);
        for (auto key = keys.begin(); key != keys.end();) {
            const bool whole = begin <= key->first && key->first + key->second <= begin + bytes;
            key = whole ? keys.erase(key) : std::next(key);
        }
        OPENSSL_cleanse(memory, bytes);
    });
}

TemporaryFile::TemporaryFile(const std::string& content) {
    const char* folder = std::getenv("TMPDIR");
    path_ = std::string(folder != nullptr ? folder : "/tmp") + "/zoren-test-XXXXXX";
    FILE* stream = fdopen(mkstemp(path_.data()), "w");
    if (stream == nullptr) std::abort();
    std::fwrite(content.data(), 1, content.size(), stream);
    if (std::fclose(stream) != 0) std::abort();
}

TemporaryFile::~TemporaryFile() { unlink(path_.c_str()); }
