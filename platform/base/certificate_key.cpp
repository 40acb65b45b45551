#include "platform/base/certificate_key.h"

#include "platform/base/glib_ptr.h"

namespace base {
namespace {

constexpr uint8_t sequenceTag = 0x30;
constexpr uint8_t integerTag = 0x02;
constexpr uint8_t versionTag = 0xa0; ///< [0] EXPLICIT
constexpr uint8_t manyLengthBytes = 0x80;
constexpr std::size_t maxLengthBytes = 4;

struct Element
{
    uint8_t tag = 0;
    std::span<const uint8_t> whole;   ///< with tag and length
    std::span<const uint8_t> content; ///< without them
};

/// Cuts the next element off; nullopt when it is incomplete or of a form that DER does not have.
std::optional<Element> takeElement(std::span<const uint8_t> &bytes)
{
    if (bytes.size() < 2)
        return std::nullopt;
    std::size_t headSize = 2;
    std::size_t length = bytes[1];
    if (length >= manyLengthBytes) {
        const std::size_t count = length - manyLengthBytes;
        headSize += count;
        if (count == 0 || count > maxLengthBytes || bytes.size() < headSize)
            return std::nullopt;
        length = 0;
        for (const uint8_t byte : bytes.subspan(2, count))
            length = length << 8 | byte;
    }
    if (bytes.size() - headSize < length)
        return std::nullopt;
    const Element element = {bytes[0], bytes.first(headSize + length),
                             bytes.subspan(headSize, length)};
    bytes = bytes.subspan(headSize + length);
    return element;
}

/// Skips an element of that tag; false when there is another one.
bool skipElement(std::span<const uint8_t> &bytes, uint8_t tag)
{
    const std::optional<Element> element = takeElement(bytes);
    return element && element->tag == tag;
}

} // namespace

std::optional<std::span<const uint8_t>> publicKeyOf(std::span<const uint8_t> der)
{
    const std::optional<Element> certificate = takeElement(der);
    if (!certificate || certificate->tag != sequenceTag)
        return std::nullopt;
    std::span<const uint8_t> rest = certificate->content;
    const std::optional<Element> toBeSigned = takeElement(rest);
    if (!toBeSigned || toBeSigned->tag != sequenceTag)
        return std::nullopt;
    rest = toBeSigned->content;
    // Certificates of version 1 do not say so.
    if (!rest.empty() && rest[0] == versionTag && !skipElement(rest, versionTag))
        return std::nullopt;
    // Serial number; algorithm, issuer, validity, subject.
    if (!skipElement(rest, integerTag))
        return std::nullopt;
    for (int i = 0; i < 4; ++i)
        if (!skipElement(rest, sequenceTag))
            return std::nullopt;
    const std::optional<Element> key = takeElement(rest);
    if (!key || key->tag != sequenceTag || key->content.empty())
        return std::nullopt;
    return key->whole;
}

std::string publicKeyDigest(GTlsCertificate *certificate)
{
    GByteArray *bytes = nullptr;
    g_object_get(certificate, "certificate", &bytes, nullptr);
    if (!bytes)
        return {};
    std::string digest;
    if (const auto key = publicKeyOf({bytes->data, bytes->len})) {
        const GTextPtr sum(
            g_compute_checksum_for_data(G_CHECKSUM_SHA256, key->data(), key->size()));
        digest = sum.get();
    }
    g_byte_array_unref(bytes);
    return digest;
}

} // namespace base
