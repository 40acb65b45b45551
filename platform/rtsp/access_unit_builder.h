#pragma once

#include "platform/rtsp/depacketizer.h"
#include "platform/rtsp/marker_lesson.h"
#include "platform/rtsp/nal_facts.h"

#include <array>
#include <limits>

namespace rtsp {

/**
 * Puts NAL units together to access units of a video stream. Not thread-safe.
 *
 * An access unit ends where the next one begins: with another RTP time or with the first slice of
 * another picture. Not to wait for that, it is handed over at the marker where markers have proved
 * to be right in this stream, or after as many slices as all units had where they have not. One
 * with a hole is left out, and the client is told what that means for those that follow.
 */
class AccessUnitBuilder
{
public:
    using TimePoint = base::SteadyClock::time_point;

    /// The client must outlive the builder.
    AccessUnitBuilder(Depacketizer::Client &client, std::unique_ptr<NalCodec> codec);

    /// What is appended up to endPacket() came in this packet.
    void beginPacket(const MediaPacket &packet);
    void endPacket();

    /// Begins a NAL unit, and ends one that is open.
    void beginNal();
    void append(std::span<const uint8_t> bytes);
    /// Bytes with start codes in them (Annex B) become several NAL units.
    void endNal();
    void addNal(std::span<const uint8_t> nal);
    [[nodiscard]] bool isInNal() const { return m_inNal; }
    /// A part of the access unit is missing; an open NAL unit is dropped.
    void noteHole();

    [[nodiscard]] std::optional<TimePoint> deadline() const { return m_holdUntil; }
    void tick(TimePoint now);
    void restart();

private:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    struct Unit
    {
        unsigned slices = 0;
        bool idr = false;
        bool intra = true; ///< all slices so far
        bool startsSequence = false;
        bool recoveryPoint = false;
        SliceFacts facts;
        bool damaged = false;
        bool marked = false; ///< at its end so far
        bool markedInside = false;
        std::size_t tail = none; ///< where what follows the slices begins, in the payload
        uint32_t time = 0;
        TimePoint began;
        TimePoint completed;
        std::shared_ptr<const base::VideoFormat> format;

        [[nodiscard]] bool isKey() const
        {
            return idr || recoveryPoint || (startsSequence && intra);
        }
    };
    /// The unit that was handed over last.
    struct Finished
    {
        uint32_t time = 0;
        bool key = false;
        bool early = false;    ///< before the next unit began
        bool unproved = false; ///< at a marker of which it is not known whether it is right
    };

    MarkerLesson &lessonOf(bool key) { return m_lessons[key ? 1 : 0]; }
    void noteGap(const MediaPacket &packet);
    void completeNal();
    void keepNal(std::size_t start);
    void takeSlice(std::size_t start, const NalFacts &facts);
    void beginUnit(const NalFacts &facts);
    void finishAtNext(std::size_t end);
    void finish(std::size_t end, bool early, bool unproved = false);
    void handOver(Unit &unit, base::Bytes payload);
    void dropDamaged(const Unit &unit);

    Depacketizer::Client &m_client;
    std::unique_ptr<NalCodec> m_codec;
    std::array<MarkerLesson, 2> m_lessons; ///< for other frames and for key frames

    base::Bytes m_payload; ///< of m_unit and of what is not yet part of one
    std::size_t m_nalStart = 0;
    bool m_inNal = false;
    TimePoint m_nalBegan;
    Unit m_unit;
    std::optional<Finished> m_finished;
    std::size_t m_lastSize = 0;
    // Of what came since the last slice.
    bool m_sequenceSet = false;
    bool m_recoveryPoint = false;

    bool m_hasTime = false;
    uint32_t m_time = 0; ///< of the packet
    bool m_marker = false;
    bool m_sliceInPacket = false;
    TimePoint m_arrived;
    std::optional<TimePoint> m_holdUntil;

    bool m_started = false;     ///< a picture has begun
    bool m_headMissing = true;  ///< perhaps, of the next picture
    bool m_lossPending = false; ///< to be told before the next frame
    bool m_lossInside = false;  ///< all of it is in the unit at hand
    bool m_timesStandStill = false;
};

} // namespace rtsp
