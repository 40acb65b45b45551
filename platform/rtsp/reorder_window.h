#pragma once

#include "platform/base/access_unit.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace rtsp {

/**
 * Brings packets that come over UDP into the order of their numbers. A packet that is next is
 * passed on at once and not copied; others wait for what is missing before them, 20 to 60 ms by how
 * late packets were so far. Duplicates and what comes too late are dropped. Not thread-safe.
 */
class ReorderWindow
{
public:
    using TimePoint = base::SteadyClock::time_point;

    class Client
    {
    public:
        virtual ~Client() = default;
        /// @param missing packets that were given up before this one
        virtual void onOrdered(std::span<const uint8_t> packet, TimePoint arrived,
                               unsigned missing) = 0;
    };

    /// The client must outlive the window.
    explicit ReorderWindow(Client &client) : m_client(client) {}

    void take(uint16_t number, std::span<const uint8_t> packet, TimePoint arrived);
    /// When tick() has to be called; nullopt while nothing is held back.
    [[nodiscard]] std::optional<TimePoint> deadline() const;
    /// Gives up what has been waited for long enough.
    void tick(TimePoint now);
    /// Drops what is held back; the next packet is the first.
    void restart();

    [[nodiscard]] uint64_t reordered() const { return m_reordered; }
    [[nodiscard]] uint64_t dropped() const { return m_dropped; }

private:
    struct Slot
    {
        base::Bytes packet; ///< its memory is used again
        TimePoint arrived;
        bool used = false;
    };
    static constexpr std::size_t capacity = 64; ///< packets; divides 65536

    Slot &slotOf(uint16_t number) { return m_slots[number % capacity]; }
    void start(uint16_t number);
    bool isNewStart(uint16_t number);
    void takeLate(uint16_t number);
    void passOn(std::span<const uint8_t> packet, TimePoint arrived);
    void hold(uint16_t number, std::span<const uint8_t> packet, TimePoint arrived);
    void releaseNext();
    void giveUpNext();
    void noteLateness(base::SteadyClock::duration late);

    Client &m_client;
    std::array<Slot, capacity> m_slots;
    unsigned m_held = 0;
    bool m_started = false;
    uint16_t m_next = 0;
    unsigned m_missing = 0;             ///< given up since the last packet that was passed on
    std::optional<uint16_t> m_newStart; ///< what comes next where the numbers have jumped
    uint16_t m_lastGivenUp = 0;         ///< the last number of the last gap
    unsigned m_lastGap = 0;             ///< its length
    TimePoint m_heldSince;
    base::SteadyClock::duration m_wait = std::chrono::milliseconds(20);
    uint64_t m_reordered = 0;
    uint64_t m_dropped = 0;
};

} // namespace rtsp
