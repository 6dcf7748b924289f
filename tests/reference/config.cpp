#include <openssl/evp.h>

#include "tests/reference/reference.h"

namespace reference {
namespace {

// AES-128-CBC over whole blocks as they stand.
std::string crypt(const std::string& bytes, int encrypt) {
    const auto* key = reinterpret_cast<const unsigned char*>("Qx7@Lumatrix2049");
    std::string result(bytes.size() + 16, '\0');
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    int length = 0;
    EVP_CipherInit(context, EVP_aes_128_cbc(), key, key, encrypt);
    EVP_CIPHER_CTX_set_padding(context, 0);
    EVP_CipherUpdate(context, reinterpret_cast<unsigned char*>(result.data()), &length,
                     reinterpret_cast<const unsigned char*>(bytes.data()),
                     static_cast<int>(bytes.size()));
    EVP_CIPHER_CTX_free(context);
    return result.substr(0, bytes.size());
}

}  // namespace

std::string encryptConfig(const std::string& plain) { return crypt(plain, 1); }

std::optional<std::string> decryptConfig(const std::string& file) {
    if (file.empty() || file.size() % 16 != 0) return std::nullopt;
    const std::string plain = crypt(file, 0);
    const size_t pad = static_cast<unsigned char>(plain.back());
    if (pad > plain.size()) return std::nullopt;
    const std::string text = plain.substr(0, plain.size() - pad);
    return text.substr(0, text.find('\0'));
}

}  // namespace reference
