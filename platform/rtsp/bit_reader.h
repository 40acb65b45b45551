#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace rtsp {

/// Reads bits, the highest of each byte first. Past the end it gives zeros and is no longer good().
class BitReader
{
public:
    enum class Escapes
    {
        None,
        Nal ///< emulation prevention bytes are left out (ITU-T H.264 7.4.1, H.265 7.4.2)
    };

    explicit BitReader(std::span<const uint8_t> bytes, Escapes escapes = Escapes::None)
        : m_bytes(bytes)
        , m_escapes(escapes)
    {
    }

    /// @param count 0 to 32
    uint32_t bits(int count)
    {
        uint32_t value = 0;
        for (int i = 0; i < count; ++i)
            value = value << 1 | bit();
        return value;
    }
    bool flag() { return bit() != 0; }
    void skip(int count)
    {
        for (int i = 0; i < count && m_good; ++i)
            bit();
    }

    /// Unsigned Exp-Golomb code (H.264 9.1); one of more than 32 bits is not good.
    uint32_t ue()
    {
        int zeros = 0;
        while (!flag()) {
            if (!m_good || ++zeros > 31) {
                m_good = false;
                return 0;
            }
        }
        return (uint32_t{1} << zeros) - 1 + bits(zeros);
    }
    /// Signed Exp-Golomb code.
    int32_t se()
    {
        const uint32_t code = ue();
        const auto half = static_cast<int32_t>(code / 2);
        return code % 2 != 0 ? half + 1 : -half;
    }

    [[nodiscard]] bool good() const { return m_good; }
    /// Bits that were read, and that are left; where nothing is escaped.
    [[nodiscard]] std::size_t position() const { return m_at * 8 - m_left; }
    [[nodiscard]] std::size_t left() const { return m_bytes.size() * 8 - position(); }

private:
    uint32_t bit()
    {
        if (m_left == 0 && !nextByte()) {
            m_good = false;
            return 0;
        }
        --m_left;
        return m_byte >> m_left & 1;
    }

    bool nextByte()
    {
        if (m_escapes == Escapes::Nal && m_zeros >= 2 && m_at < m_bytes.size() &&
            m_bytes[m_at] == 3) {
            ++m_at;
            m_zeros = 0;
        }
        if (m_at >= m_bytes.size())
            return false;
        m_byte = m_bytes[m_at++];
        m_zeros = m_byte == 0 ? m_zeros + 1 : 0;
        m_left = 8;
        return true;
    }

    std::span<const uint8_t> m_bytes;
    Escapes m_escapes;
    std::size_t m_at = 0;
    unsigned m_zeros = 0; ///< bytes before m_at
    uint32_t m_byte = 0;
    unsigned m_left = 0; ///< bits of m_byte
    bool m_good = true;
};

} // namespace rtsp
