#include "config/config_reader.h"

#include <android/log.h>
#include <openssl/aes.h>
#include <openssl/crypto.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace android {
namespace {

constexpr char kTag[] = "zorenconfig";
constexpr char kUnreadable[] = "can not read file %s \n";
constexpr char kBadFile[] = "error zorenconfig file \n";

constexpr char kKey[] = "Qx7@Lumatrix2049";  // its 16 characters are the key and the first IV
constexpr int kKeyBits = 128;
constexpr long kMaxLength = 16L << 20;  // a configuration is a few KiB: larger is no configuration

// Zero bytes behind the text: its end, and three that a virtual machine which does not check the
// text takes along when it breaks off at the first byte of a character of four.
constexpr size_t kEnd = 1 + 3;

// Reads the whole of `file` and returns its bytes, to be freed, and their number; null when that is
// not a positive multiple of the cipher block up to kMaxLength, or not all of them arrive.
unsigned char* readWhole(FILE* file, size_t& length) {
    if (fseek(file, 0, SEEK_END) != 0) return nullptr;
    const long end = ftell(file);
    if (end <= 0 || end > kMaxLength || end % AES_BLOCK_SIZE != 0) return nullptr;
    length = static_cast<size_t>(end);
    unsigned char* bytes = static_cast<unsigned char*>(malloc(length + 1));
    if (bytes == nullptr) return nullptr;
    rewind(file);
    if (fread(bytes, 1, length, file) != length) {
        free(bytes);
        return nullptr;
    }
    bytes[length] = 0;
    return bytes;
}

// AES-128-CBC under the built-in key. The low-level interface is deprecated in OpenSSL 3, but it is
// the one the platform has.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
void decrypt(const unsigned char* ciphertext, unsigned char* plaintext, size_t length) {
    AES_KEY schedule;
    if (AES_set_decrypt_key(reinterpret_cast<const unsigned char*>(kKey), kKeyBits, &schedule) <
        0) {
        OPENSSL_cleanse(&schedule, sizeof schedule);
        __android_log_print(ANDROID_LOG_INFO, kTag, "Unable to set encryption key in AES\n");
        exit(-1);
    }
    unsigned char iv[sizeof kKey];
    memcpy(iv, kKey, sizeof kKey);
    AES_cbc_encrypt(ciphertext, plaintext, length, &schedule, iv, AES_DECRYPT);
    OPENSSL_cleanse(&schedule, sizeof schedule);
    OPENSSL_cleanse(iv, sizeof iv);
}
#pragma GCC diagnostic pop

}  // namespace

ConfigText readConfig(const char* path) {
    const ConfigText none = {nullptr, 0};
    const uid_t uid = getuid();
    if (uid != 0) {
        __android_log_print(ANDROID_LOG_INFO, kTag, "getConfigXML error uid: %d \n",
                            static_cast<int>(uid));
        return none;
    }
    FILE* file = access(path, R_OK) < 0 ? nullptr : fopen(path, "r");
    if (file == nullptr) {
        __android_log_print(ANDROID_LOG_INFO, kTag, kUnreadable, path);
        __android_log_print(ANDROID_LOG_INFO, kTag, kBadFile);
        return none;
    }
    size_t length = 0;
    unsigned char* ciphertext = readWhole(file, length);
    fclose(file);
    ConfigText config = none;
    const size_t size = length + kEnd;
    if (ciphertext != nullptr) config = {static_cast<char*>(calloc(size, 1)), size};
    if (config.text == nullptr) {
        free(ciphertext);
        __android_log_print(ANDROID_LOG_INFO, kTag, kBadFile);
        return none;
    }
    decrypt(ciphertext, reinterpret_cast<unsigned char*>(config.text), length);
    free(ciphertext);

    const size_t padding = static_cast<unsigned char>(config.text[length - 1]);
    __android_log_print(ANDROID_LOG_INFO, kTag, " zorenconfig pading_length %d \n",
                        static_cast<int>(padding));
    if (padding > length) {
        releaseConfig(config);
        __android_log_print(ANDROID_LOG_INFO, kTag, kBadFile);
        return none;
    }
    config.text[length - padding] = 0;
    return config;
}

void releaseConfig(ConfigText config) {
    if (config.text == nullptr) return;
    OPENSSL_cleanse(config.text, config.size);
    free(config.text);
}

}  // namespace android
