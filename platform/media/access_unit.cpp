#include "platform/media/access_unit.h"

namespace media {

namespace {

constexpr int nalSlice = 1;
constexpr int nalDataPartitionA = 2;
constexpr int nalIdrSlice = 5;

/// Reads unsigned Exp-Golomb codes (H.264 9.1). The few bytes a slice header starts with never
/// hold an emulation prevention byte that matters for the first two codes of a valid stream.
class BitReader
{
public:
    BitReader(const uint8_t *data, size_t size) : m_data(data), m_bits(size * 8) {}

    bool readUe(unsigned &value)
    {
        int zeros = 0;
        bool bit = false;
        while (readBit(bit) && !bit)
            if (++zeros > 31)
                return false;
        if (!bit)
            return false;
        unsigned rest = 0;
        for (int i = 0; i < zeros; ++i) {
            if (!readBit(bit))
                return false;
            rest = rest << 1 | (bit ? 1u : 0u);
        }
        value = (1u << zeros) - 1 + rest;
        return true;
    }

private:
    bool readBit(bool &bit)
    {
        if (m_position >= m_bits)
            return false;
        bit = m_data[m_position / 8] >> (7 - m_position % 8) & 1;
        ++m_position;
        return true;
    }

    const uint8_t *m_data;
    size_t m_bits;
    size_t m_position = 0;
};

bool isBSlice(const uint8_t *data, size_t size)
{
    BitReader reader(data, size);
    unsigned firstMacroblock = 0;
    unsigned sliceType = 0;
    return reader.readUe(firstMacroblock) && reader.readUe(sliceType) && sliceType % 5 == 1;
}

} // namespace

SliceFacts readSliceFacts(const uint8_t *data, size_t size, int lengthSize)
{
    SliceFacts facts;
    const auto prefix = static_cast<size_t>(lengthSize);
    size_t position = 0;
    while (size - position > prefix) {
        size_t length = 0;
        for (size_t i = 0; i < prefix; ++i)
            length = length << 8 | data[position + i];
        position += prefix;
        if (length == 0 || length > size - position)
            break;
        const int type = data[position] & 0x1f;
        if (type == nalSlice || type == nalDataPartitionA || type == nalIdrSlice) {
            facts.reference |= (data[position] & 0x60) != 0;
            facts.bipredictive |= isBSlice(data + position + 1, length - 1);
        }
        position += length;
    }
    return facts;
}

AccessUnit makeAccessUnit(GstBuffer *buffer, GstCaps *caps, GstClockTime time, uint64_t number)
{
    AccessUnit unit;
    unit.buffer = BufferRef::share(buffer);
    unit.caps = CapsRef::share(caps);
    unit.number = number;
    unit.time = time;
    unit.key = !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
    unit.arrived = SteadyClock::now();
    GstMapInfo map;
    if (gst_buffer_map(buffer, &map, GST_MAP_READ)) {
        const SliceFacts facts = readSliceFacts(map.data, map.size);
        unit.reference = facts.reference;
        unit.bipredictive = facts.bipredictive;
        gst_buffer_unmap(buffer, &map);
    }
    return unit;
}

} // namespace media
