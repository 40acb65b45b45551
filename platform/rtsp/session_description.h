#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rtsp {

enum class MediaKind
{
    Video,
    Audio,
    Other ///< metadata and the like
};

/// One of the payload formats of a medium.
struct PayloadFormat
{
    int payloadType = -1; ///< 0 to 127
    /// RTP encoding name in upper case: that of rtpmap, else that of the static type (RFC 3551 6).
    /// Empty when there is neither.
    std::string encoding;
    int clockRate = 0; ///< ticks a second; 0 when it is not told
    int channels = 1;
    /// Of fmtp, in order: names in lower case, values as they are.
    std::vector<std::pair<std::string, std::string>> parameters;

    /// The value of a parameter with this lower-case name; null when it is not there.
    [[nodiscard]] const std::string *parameter(std::string_view name) const;
    /// The same as a decimal number; nullopt when it is none.
    [[nodiscard]] std::optional<int> number(std::string_view name) const;
};

struct MediaDescription
{
    MediaKind kind = MediaKind::Other;
    std::string protocol;               ///< as in "RTP/AVP"
    int port = 0;                       ///< 0 where the client is to choose
    std::vector<PayloadFormat> formats; ///< in the order of the description
    std::string control;                ///< as it stands there; empty when there is none
    /// The camera listens here instead of sending: its loudspeaker.
    bool backChannel = false;
    std::string connection; ///< address of the medium, else of the session; without TTL
    std::string range;      ///< as in "npt=0-"
    int width = 0;          ///< of a=x-dimensions or a=framesize, pixels; 0 when it is not told
    int height = 0;
};

struct SessionDescription
{
    std::string control; ///< of the session; empty when there is none
    std::string range;
    std::vector<MediaDescription> media; ///< in the order of the description
};

/// Longer descriptions are refused, bytes.
inline constexpr std::size_t maxDescriptionSize = 256 * 1024;

/// Reads a camera's session description (RFC 4566). Lines that are wrong are skipped, as long as
/// the text is a description at all; nullopt when it is none or too long.
[[nodiscard]] std::optional<SessionDescription> parseSessionDescription(std::string_view text);

/// The first format of a medium that can be received here; null when there is none.
[[nodiscard]] const PayloadFormat *playableFormat(const MediaDescription &media);

/// Whether the camera sends this medium and in a format that can be received here.
[[nodiscard]] bool isPlayable(const MediaDescription &media);

} // namespace rtsp
