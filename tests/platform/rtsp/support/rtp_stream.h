#pragma once

#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/depacketizer.h"
#include "platform/rtsp/media_receiver.h"

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace rtsp {

using Bytes = base::Bytes;

inline Bytes bytesOf(std::string_view hex)
{
    const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(digit(hex[i]) << 4 | digit(hex[i + 1])));
    return bytes;
}

inline Bytes joined(std::initializer_list<Bytes> parts)
{
    Bytes all;
    for (const Bytes &part : parts)
        append(all, part);
    return all;
}

/// Each NAL unit behind its length of 4 bytes, as in an access unit.
inline Bytes lengthPrefixed(std::initializer_list<Bytes> nals)
{
    Bytes all;
    for (const Bytes &nal : nals) {
        append(all, nal.size(), 4);
        append(all, nal);
    }
    return all;
}

inline base::SteadyClock::time_point at(int64_t milliseconds)
{
    return base::SteadyClock::time_point(std::chrono::hours(1)) +
           std::chrono::milliseconds(milliseconds);
}

/// Writes bits, as the syntax of video streams has them.
class BitWriter
{
public:
    BitWriter &bits(uint32_t value, int count)
    {
        for (int i = count - 1; i >= 0; --i)
            bit(value >> i & 1);
        return *this;
    }
    BitWriter &ue(uint32_t value)
    {
        int length = 0;
        while ((value + 1) >> (length + 1) != 0)
            ++length;
        return bits(0, length).bits(value + 1, length + 1);
    }
    /// With the stop bit and filled up.
    Bytes finish()
    {
        bit(1);
        while (m_count % 8 != 0)
            bit(0);
        return m_bytes;
    }

private:
    void bit(uint32_t value)
    {
        if (m_count++ % 8 == 0)
            m_bytes.push_back(0);
        m_bytes.back() =
            static_cast<uint8_t>(m_bytes.back() | (value & 1) << (7 - (m_count - 1) % 8));
    }

    Bytes m_bytes;
    int m_count = 0;
};

/// Makes the RTP packets of one source.
struct RtpStream
{
    uint8_t payloadType = 96;
    uint32_t source = 0x1234;
    uint16_t number = 0; ///< of the next packet
    uint32_t time = 0;

    Bytes packet(const Bytes &payload, bool marker = false)
    {
        Bytes bytes = {0x80, static_cast<uint8_t>((marker ? 0x80 : 0) | payloadType)};
        append(bytes, number++, 2);
        append(bytes, time, 4);
        append(bytes, source, 4);
        append(bytes, payload);
        return bytes;
    }
};

/// Keeps what a receiver delivers.
class RecordingSink : public MediaSink
{
public:
    void onVideo(const base::AccessUnit &unit) override { video.push_back(unit); }
    void onAudio(const base::AudioUnit &unit) override { audio.push_back(unit); }
    void onPacketsLost() override { ++losses; }

    std::vector<base::AccessUnit> video;
    std::vector<base::AudioUnit> audio;
    int losses = 0;
};

/// Keeps what a depacketizer delivers.
class RecordingClient : public Depacketizer::Client
{
public:
    void onFrame(VideoFrame frame) override { frames.push_back(std::move(frame)); }
    void onPiece(AudioPiece piece) override { pieces.push_back(std::move(piece)); }
    void onDamaged() override { ++damaged; }
    void onReferenceLost() override { ++referencesLost; }

    std::vector<VideoFrame> frames;
    std::vector<AudioPiece> pieces;
    int damaged = 0;
    int referencesLost = 0;
};

} // namespace rtsp
