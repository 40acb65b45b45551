#pragma once

#include "platform/base/access_unit.h"
#include "tests/platform/rtsp/scripted_camera.h"

#include <cstdint>
#include <string>
#include <vector>

/// A clip of encoded pictures, each of which can be told from the others by its bytes.
struct CaseClip
{
    struct Picture
    {
        std::vector<base::Bytes> parts; ///< slices; of JPEG the payloads of its packets
        bool key = false;
        unsigned shown = 0; ///< its place in the order of presentation
    };

    enum class Kind
    {
        H264,
        H265,
        Jpeg
    };

    Kind kind = Kind::H264;
    std::vector<base::Bytes> sets; ///< parameter sets
    std::vector<Picture> pictures; ///< in decoding order

    /// "baseline.h264": Annex B; "mjpeg.rtp": RTP packets behind lengths (RFC 4571). Throws when
    /// the file cannot be read.
    explicit CaseClip(const std::string &path);

    /// The number of the picture that a frame of the receiver is; -1 when it is none, whole and
    /// without additions. For JPEG always -1.
    int find(const base::Bytes &payload) const;
};

/// How a camera packs its pictures into RTP, by the words of a case's text.
struct CasePacking
{
    std::string packets = "fragments"; ///< fragments, single, aggregates
    std::string markers = "right";     ///< right, sets, slices, first, never
    std::string sets = "each";         ///< before each key frame, first, never
    std::string times = "right";       ///< right, equal, wrap
    std::string additions; ///< any of: delimiter sei start-code zeros padding extension new-source
    uint16_t number = 40000;
    size_t firstPicture = 0; ///< of the clip
    std::string sound;       ///< mulaw, or a file of RTP packets; empty: none
    unsigned soundAfter = 0; ///< pictures
};

/// Sends a clip over and over, one picture at each call. One connection.
class CaseMedia
{
public:
    CaseMedia(const CaseClip &clip, CasePacking packing, const std::string &folder);

    void send(const ScriptedCamera::Connection &connection);

private:
    struct Packet
    {
        base::Bytes payload;
        bool endsNal = true;
        bool isSet = false;
    };

    bool adds(const char *word) const;
    std::vector<Packet> packetsOf(const CaseClip::Picture &picture);
    void pack(const base::Bytes &nal, bool isSet, std::vector<Packet> &packets) const;
    std::string packet(uint8_t type, const base::Bytes &payload, bool marker);
    void sendSound(const ScriptedCamera::Connection &connection);

    const CaseClip &m_clip;
    const CasePacking m_packing;
    std::vector<std::string> m_sound; ///< whole RTP packets
    size_t m_next;
    unsigned m_sent = 0;
    size_t m_nextSound = 0;
    uint16_t m_number;
};
