#pragma once

#include "platform/base/access_unit.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace rtsp {

/// Without the zeros at its end, which belong to no NAL unit (H.264 Annex B).
[[nodiscard]] std::span<const uint8_t> withoutTrailingZeros(std::span<const uint8_t> bytes);

/// Where the first start code (00 00 01) begins; nullopt when there is none. Valid NAL units hold
/// none.
[[nodiscard]] std::optional<std::size_t> findStartCode(std::span<const uint8_t> bytes);

/// Whether bytes begin with a start code of 3 or 4 bytes.
[[nodiscard]] bool beginsWithStartCode(std::span<const uint8_t> bytes);

/// Calls a function for each NAL unit in bytes that may be separated by start codes, without
/// empty ones and without the zeros between them.
template <class Function>
void forEachNal(std::span<const uint8_t> bytes, Function function)
{
    while (!bytes.empty()) {
        const std::optional<std::size_t> code = findStartCode(bytes);
        const std::span<const uint8_t> nal =
            withoutTrailingZeros(bytes.first(code.value_or(bytes.size())));
        if (!nal.empty())
            function(nal);
        bytes = code ? bytes.subspan(*code + 3) : std::span<const uint8_t>();
    }
}

/// Reads base64 (RFC 4648 4), with or without padding, up to what is none.
[[nodiscard]] base::Bytes decodeBase64(std::string_view text);

/// Calls a function for each NAL unit of a list as in sprop-parameter-sets (RFC 6184 8.1): base64,
/// separated by commas. Cameras leave start codes and zeros in them.
template <class Function>
void forEachSprop(std::string_view list, Function function)
{
    while (!list.empty()) {
        const std::size_t end = list.find(',');
        forEachNal(decodeBase64(list.substr(0, end)), function);
        list = end == std::string_view::npos ? std::string_view() : list.substr(end + 1);
    }
}

} // namespace rtsp
