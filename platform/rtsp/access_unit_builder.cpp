#include "platform/rtsp/access_unit_builder.h"

#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/nal_units.h"

#include <algorithm>
#include <utility>

namespace rtsp {

namespace {

constexpr std::size_t lengthSize = 4;
constexpr std::size_t smallRest = 4096; ///< bytes of a frame's memory that need not be used
// What follows a marker that lies follows it at once.
constexpr auto holdTime = std::chrono::milliseconds(5);

void writeLength(base::Bytes &payload, std::size_t at)
{
    const std::size_t length = payload.size() - at - lengthSize;
    for (std::size_t i = 0; i < lengthSize; ++i)
        payload[at + i] = static_cast<uint8_t>(length >> 8 * (lengthSize - 1 - i));
}

} // namespace

AccessUnitBuilder::AccessUnitBuilder(Depacketizer::Client &client, std::unique_ptr<NalCodec> codec)
    : m_client(client)
    , m_codec(std::move(codec))
{
}

void AccessUnitBuilder::beginPacket(const MediaPacket &packet)
{
    m_holdUntil.reset();
    if (packet.afterGap)
        noteGap(packet);
    else if (m_hasTime && packet.time != m_time) {
        if (m_inNal) // its last fragment was not marked as such
            endNal();
        finishAtNext(m_payload.size());
    }
    m_hasTime = true;
    m_time = packet.time;
    m_marker = packet.marker;
    m_arrived = packet.arrived;
    m_sliceInPacket = false;
}

void AccessUnitBuilder::noteGap(const MediaPacket &packet)
{
    const bool inside =
        (m_unit.slices > 0 || m_inNal) && packet.time == m_time && !m_timesStandStill;
    m_lossInside = inside && (m_lossInside || !m_lossPending);
    m_lossPending = true;
    if (m_inNal)
        noteHole();
    if (inside) {
        m_unit.damaged = true;
    } else {
        // The end of the unit at hand is missing unless it was there already.
        const MarkerLesson &lesson = lessonOf(m_unit.isKey());
        const bool whole =
            (m_unit.marked && lesson.mayBelieve()) || lesson.endsAfter(m_unit.slices);
        m_unit.damaged |= m_unit.slices > 0 && !whole;
        finish(m_payload.size(), false);
    }
    m_headMissing = true;
}

void AccessUnitBuilder::endPacket()
{
    if (m_inNal || m_unit.slices == 0)
        return;
    m_unit.completed = m_arrived;
    MarkerLesson &lesson = lessonOf(m_unit.isKey());
    if (m_sliceInPacket || m_marker)
        m_unit.marked = m_marker;
    if (m_unit.marked && lesson.believesMarkers())
        finish(m_payload.size(), true);
    else if (m_unit.tail == none && lesson.endsAfter(m_unit.slices))
        finish(m_payload.size(), true);
    else if (m_marker && lesson.mayBelieve())
        m_holdUntil = m_arrived + holdTime;
}

void AccessUnitBuilder::tick(TimePoint now)
{
    if (!m_holdUntil || now < *m_holdUntil)
        return;
    m_holdUntil.reset();
    if (!m_inNal && m_unit.slices > 0)
        finish(m_payload.size(), true, true);
}

void AccessUnitBuilder::restart()
{
    m_payload.clear();
    m_inNal = false;
    m_unit = Unit();
    m_finished.reset();
    m_holdUntil.reset();
    m_hasTime = false;
    m_headMissing = true;
    m_lossPending |= m_started;
    m_lossInside = false;
}

void AccessUnitBuilder::beginNal()
{
    if (m_inNal)
        endNal();
    m_inNal = true;
    m_nalStart = m_payload.size();
    m_nalBegan = m_arrived;
    m_payload.insert(m_payload.end(), lengthSize, 0);
}

void AccessUnitBuilder::append(std::span<const uint8_t> bytes)
{
    if (!m_inNal)
        return;
    if (m_payload.size() + bytes.size() > maxFrameSize) {
        noteHole();
        m_payload.clear();
        return;
    }
    m_payload.insert(m_payload.end(), bytes.begin(), bytes.end());
}

void AccessUnitBuilder::endNal()
{
    if (!std::exchange(m_inNal, false))
        return;
    const std::span<const uint8_t> bytes = std::span(m_payload).subspan(m_nalStart + lengthSize);
    if (!findStartCode(bytes)) {
        m_payload.resize(m_payload.size() - (bytes.size() - withoutTrailingZeros(bytes).size()));
        completeNal();
        return;
    }
    const base::Bytes copy(bytes.begin(), bytes.end());
    m_payload.resize(m_nalStart);
    forEachNal(copy, [this](std::span<const uint8_t> nal) {
        m_nalStart = m_payload.size();
        m_payload.insert(m_payload.end(), lengthSize, 0);
        m_payload.insert(m_payload.end(), nal.begin(), nal.end());
        completeNal();
    });
}

void AccessUnitBuilder::addNal(std::span<const uint8_t> nal)
{
    beginNal();
    append(nal);
    endNal();
}

void AccessUnitBuilder::noteHole()
{
    m_unit.damaged = true;
    if (!std::exchange(m_inNal, false))
        return;
    const std::span<const uint8_t> begun = std::span(m_payload).subspan(m_nalStart + lengthSize);
    m_unit.facts.reference |= m_codec->mayBeReferred(begun);
    m_payload.resize(m_nalStart);
}

void AccessUnitBuilder::completeNal()
{
    if (m_payload.size() == m_nalStart + lengthSize) {
        m_payload.resize(m_nalStart);
        return;
    }
    writeLength(m_payload, m_nalStart);
    keepNal(m_nalStart);
}

void AccessUnitBuilder::keepNal(std::size_t start)
{
    const NalFacts facts = m_codec->inspect(std::span(m_payload).subspan(start + lengthSize));
    switch (facts.role) {
    case NalRole::Ignored:
        m_payload.resize(start);
        break;
    case NalRole::Broken:
        m_payload.resize(start);
        m_unit.damaged = true;
        break;
    case NalRole::ParameterSet: // the format holds it
        m_payload.resize(start);
        m_sequenceSet |= facts.sequenceSet;
        break;
    case NalRole::Prefix:
        if (m_unit.slices > 0 && m_unit.tail == none)
            m_unit.tail = start;
        m_recoveryPoint |= facts.recoveryPoint;
        break;
    case NalRole::Slice:
        takeSlice(start, facts);
        break;
    case NalRole::Suffix:
        break;
    }
}

void AccessUnitBuilder::takeSlice(std::size_t start, const NalFacts &facts)
{
    if (m_unit.slices > 0 && facts.firstOfPicture) {
        m_timesStandStill = true;
        finishAtNext(std::min(start, m_unit.tail));
    } else if (m_unit.slices > 0 && m_unit.marked) {
        m_unit.marked = false;
        m_unit.markedInside = true;
        lessonOf(m_unit.isKey()).noteLie();
    }
    m_sliceInPacket = true;
    m_unit.tail = none;
    if (m_unit.slices == 0)
        beginUnit(facts);
    ++m_unit.slices;
    m_unit.idr |= facts.key;
    m_unit.intra &= facts.intra;
    m_unit.facts.reference |= facts.slice.reference;
    m_unit.facts.bipredictive |= facts.slice.bipredictive;
    m_sequenceSet = false;
    m_recoveryPoint = false;
}

void AccessUnitBuilder::beginUnit(const NalFacts &facts)
{
    const bool afterGap = std::exchange(m_headMissing, false);
    if (facts.firstOfPicture) {
        m_started = true;
        if (m_finished && m_finished->unproved && !afterGap)
            lessonOf(m_finished->key).noteRight();
    } else if (afterGap) {
        m_unit.damaged = true;
    } else if (m_finished && m_finished->early && m_finished->time == m_time) {
        // More of a picture that was handed over: what was taken for its end was not.
        MarkerLesson &lesson = lessonOf(m_finished->key);
        lesson.noteLie();
        lesson.noteMoreSlices();
        m_unit.damaged = true;
    }
    m_unit.startsSequence = m_sequenceSet;
    m_unit.recoveryPoint = m_recoveryPoint;
    m_unit.time = m_time;
    m_unit.began = m_nalBegan;
    m_unit.completed = m_arrived;
    m_unit.format = m_codec->format();
    m_finished.reset();
}

/// The next unit has begun: the one at hand is known to be whole.
void AccessUnitBuilder::finishAtNext(std::size_t end)
{
    if (m_unit.slices > 0 && !m_unit.damaged)
        lessonOf(m_unit.isKey()).noteEnd(m_unit.marked, m_unit.markedInside, m_unit.slices);
    finish(end, false);
}

/// @param end of the unit in the payload; what follows belongs to the next one
void AccessUnitBuilder::finish(std::size_t end, bool early, bool unproved)
{
    m_holdUntil.reset();
    if (m_unit.slices == 0 && !m_unit.damaged)
        return;
    end = std::min({end, m_unit.tail, m_payload.size()});
    base::Bytes rest(m_payload.begin() + static_cast<std::ptrdiff_t>(end), m_payload.end());
    m_payload.resize(end);
    Unit unit = std::exchange(m_unit, Unit());
    base::Bytes payload = std::exchange(m_payload, std::move(rest));
    if (!unit.isKey()) // these differ little in size
        m_lastSize = payload.size();
    m_payload.reserve(m_payload.size() + m_lastSize + m_lastSize / 4);
    if (payload.capacity() > payload.size() + payload.size() / 2 + smallRest)
        payload.shrink_to_fit();
    m_nalStart -= std::min(m_nalStart, end);
    m_finished = {unit.time, unit.isKey(), early, unproved};
    if (unit.damaged)
        dropDamaged(unit);
    else
        handOver(unit, std::move(payload));
}

void AccessUnitBuilder::dropDamaged(const Unit &unit)
{
    // Who joins in the middle of a picture has lost nothing.
    if (!m_started)
        return;
    m_client.onDamaged();
    const bool lossInside = std::exchange(m_lossInside, false);
    if (!std::exchange(m_lossPending, false) || !lossInside || unit.facts.reference)
        m_client.onReferenceLost();
}

void AccessUnitBuilder::handOver(Unit &unit, base::Bytes payload)
{
    m_lossInside = false;
    if (std::exchange(m_lossPending, false))
        m_client.onReferenceLost();
    if (!unit.format)
        return;
    VideoFrame frame;
    frame.payload = std::move(payload);
    frame.format = std::move(unit.format);
    frame.key = unit.isKey();
    frame.reference = unit.facts.reference;
    frame.bipredictive = unit.facts.bipredictive;
    frame.time = unit.time;
    frame.began = unit.began;
    frame.completed = unit.completed;
    m_client.onFrame(std::move(frame));
}

} // namespace rtsp
