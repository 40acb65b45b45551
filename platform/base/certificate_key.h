#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace base {

/// The public key of an X.509 certificate, as its SubjectPublicKeyInfo (RFC 5280 4.1.2.7): what
/// stays the same when a certificate is renewed under the same key. A view of the bytes.
/// @param der the certificate in DER (ITU-T X.690)
/// @return nullopt when the bytes are no certificate
[[nodiscard]] std::optional<std::span<const uint8_t>> publicKeyOf(std::span<const uint8_t> der);

/// SHA-256 of that key, 64 lower-case hexadecimal digits; empty when there is none.
[[nodiscard]] std::string publicKeyDigest(GTlsCertificate *certificate);

} // namespace base
