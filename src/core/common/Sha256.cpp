#include "common/Sha256.h"

#include <openssl/evp.h>

#include <array>
#include <fstream>
#include <memory>

namespace tarvel {
namespace {

struct DigestContext {
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> ctx{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
    bool ok = ctx && EVP_DigestInit_ex(ctx.get(), EVP_sha256(), nullptr) == 1;

    void update(const void* data, std::size_t size) {
        ok = ok && EVP_DigestUpdate(ctx.get(), data, size) == 1;
    }
    std::optional<std::string> finish() {
        std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
        unsigned int length = 0;
        ok = ok && EVP_DigestFinal_ex(ctx.get(), digest.data(), &length) == 1;
        if (!ok) return std::nullopt;
        static constexpr char kHex[] = "0123456789abcdef";
        std::string hex;
        for (unsigned int i = 0; i < length; ++i) {
            hex += kHex[digest[i] >> 4];
            hex += kHex[digest[i] & 15];
        }
        return hex;
    }
};

}  // namespace

std::string sha256Hex(std::span<const std::uint8_t> data) {
    DigestContext digest;
    digest.update(data.data(), data.size());
    return digest.finish().value_or(std::string());
}

std::optional<std::string> sha256OfFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    DigestContext digest;
    std::array<char, 1 << 16> buffer{};
    while (in) {
        in.read(buffer.data(), std::streamsize(buffer.size()));
        digest.update(buffer.data(), std::size_t(in.gcount()));
    }
    if (in.bad()) return std::nullopt;
    return digest.finish();
}

}  // namespace tarvel
