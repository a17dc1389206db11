#include "Secrets.h"

#include <array>
#include <stdexcept>

#include <openssl/evp.h>
#include <openssl/rand.h>

namespace relay {

namespace {

constexpr std::string_view alphabet = "23456789ABCDEFGHJKMNPQRSTUVWXYZ"; // without 0 and O, 1 and I and L
constexpr std::size_t codeLength = 6;
constexpr std::size_t tokenBytes = 32;

template <std::size_t size> std::array<unsigned char, size> randomBytes() {
    std::array<unsigned char, size> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(size)) != 1)
        throw std::runtime_error("the system gives no random numbers");
    return bytes;
}

std::string hex(const unsigned char *bytes, std::size_t size) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * size);
    for (std::size_t i = 0; i < size; ++i) {
        text += digits[bytes[i] >> 4U];
        text += digits[bytes[i] & 15U];
    }
    return text;
}

/// Bytes past the last whole alphabet are thrown away, so that each character is as likely as another.
char randomCharacter() {
    constexpr std::size_t fair = 256 / alphabet.size() * alphabet.size();
    for (;;) {
        if (const std::size_t byte = randomBytes<1>()[0]; byte < fair)
            return alphabet[byte % alphabet.size()];
    }
}

} // namespace

std::string randomToken() {
    const auto bytes = randomBytes<tokenBytes>();
    return hex(bytes.data(), bytes.size());
}

std::string hashOf(std::string_view token) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int size = 0;
    if (EVP_Digest(token.data(), token.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("no SHA-256");
    return hex(digest.data(), size);
}

std::string randomCode() {
    std::string code;
    while (code.size() < codeLength)
        code += randomCharacter();
    return code;
}

std::string tidiedCode(std::string_view typed) {
    std::string code;
    for (char character : typed) {
        if (character == ' ' || character == '-')
            continue;
        if (character >= 'a' && character <= 'z')
            character = static_cast<char>(character - 'a' + 'A');
        if (alphabet.find(character) == std::string_view::npos || code.size() == codeLength)
            return {};
        code += character;
    }
    return code.size() == codeLength ? code : std::string();
}

} // namespace relay
