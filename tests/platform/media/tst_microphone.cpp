#include "platform/media/g726_packing.h"
#include "platform/media/microphone.h"

#include <gtest/gtest.h>

#include <glib.h>

#include <vector>

using media::Microphone;
using media::VoiceCodec;
using media::VoiceFormat;

namespace {

using namespace std::chrono_literals;

void useSource(const char *line)
{
    g_setenv("ZELVARO_TALKBACK_SOURCE", line, TRUE);
}

std::vector<Microphone::Piece> take(Microphone &microphone, size_t count)
{
    std::vector<Microphone::Piece> pieces;
    const auto end = base::SteadyClock::now() + 30s;
    while (pieces.size() < count && base::SteadyClock::now() < end)
        if (auto piece = microphone.take(50ms))
            pieces.push_back(std::move(*piece));
    EXPECT_EQ(pieces.size(), count);
    return pieces;
}

TEST(Microphone, GivesPiecesOf20MillisecondsInEachCodec)
{
    useSource("audiotestsrc is-live=true samplesperbuffer=4410 wave=sine");
    struct Case
    {
        VoiceFormat format;
        size_t size;
        uint64_t step;
    };
    for (const Case &each : {Case{{VoiceCodec::MuLaw, 8000, 1, 0}, 160, 160},
                             Case{{VoiceCodec::ALaw, 8000, 1, 0}, 160, 160},
                             Case{{VoiceCodec::MuLaw, 16000, 1, 0}, 320, 320},
                             Case{{VoiceCodec::ALaw, 16000, 2, 0}, 640, 320},
                             Case{{VoiceCodec::G726, 8000, 1, 16000}, 40, 160},
                             Case{{VoiceCodec::G726, 8000, 1, 32000}, 80, 160},
                             Case{{VoiceCodec::G726Aal2, 8000, 1, 40000}, 100, 160}}) {
        Microphone microphone(each.format);
        const std::vector<Microphone::Piece> pieces = take(microphone, 20);
        ASSERT_FALSE(microphone.hasFailed());
        EXPECT_EQ(pieces.front().time, 0U);
        for (size_t i = 0; i < pieces.size(); ++i)
            EXPECT_EQ(pieces[i].sound.size(), each.size);
        for (size_t i = 1; i < pieces.size(); ++i)
            EXPECT_EQ(pieces[i].time - pieces[i - 1].time, each.step);
    }
}

TEST(Microphone, GivesAacFrameByFrame)
{
    useSource("audiotestsrc is-live=true wave=sine");
    Microphone microphone({VoiceCodec::AacLc, 16000, 1, 0});
    const std::vector<Microphone::Piece> pieces = take(microphone, 10);
    for (size_t i = 1; i < pieces.size(); ++i) {
        EXPECT_EQ(pieces[i].time - pieces[i - 1].time, 1024U);
        EXPECT_GT(pieces[i].sound.size(), 4U);
        EXPECT_NE(pieces[i].sound.front(), 0xff) << "no ADTS header";
    }
}

// The same tone in both packings: one is the other with its codes turned round.
TEST(Microphone, PacksG726AsAskedFor)
{
    useSource("audiotestsrc is-live=true wave=sine");
    Microphone low({VoiceCodec::G726, 8000, 1, 32000});
    Microphone high({VoiceCodec::G726Aal2, 8000, 1, 32000});
    const base::Bytes first = take(low, 1).front().sound;
    base::Bytes second = take(high, 1).front().sound;
    for (uint8_t &byte : second)
        byte = static_cast<uint8_t>(byte << 4 | byte >> 4);
    EXPECT_EQ(first, second);
}

TEST(G726Packing, TheWayThereAndBackIsNone)
{
    const base::Bytes packed = {0x12, 0x34, 0x56, 0x78, 0x9a, 0xbc, 0xde, 0xf0,
                                0x5a, 0xa5, 0x01, 0x80, 0xff, 0x00, 0x77};
    for (int bits = 2; bits <= 5; ++bits) {
        EXPECT_EQ(media::g726WithFirstCodeLow(media::g726WithFirstCodeHigh(packed, bits), bits),
                  packed)
            << bits;
        EXPECT_NE(media::g726WithFirstCodeLow(packed, bits), packed);
    }
    // Codes 1, 2, 3, 4 ... of two bits.
    EXPECT_EQ(media::g726WithFirstCodeLow({0b00011011}, 2), base::Bytes{0b11100100});
    EXPECT_TRUE(media::g726WithFirstCodeLow(packed, 6).empty());
}

TEST(Microphone, KeepsTheTimeOfASourceThatHasAllAtOnce)
{
    useSource("audiotestsrc is-live=false");
    for (const VoiceFormat &format : {VoiceFormat{VoiceCodec::MuLaw, 8000, 1, 0},
                                      VoiceFormat{VoiceCodec::G726, 8000, 1, 32000}}) {
        Microphone microphone(format);
        take(microphone, 1);
        const auto begin = base::SteadyClock::now();
        take(microphone, 50);
        EXPECT_GT(base::SteadyClock::now() - begin, 700ms) << "1 s of sound";
    }
}

TEST(Microphone, TellsThatThereIsNone)
{
    useSource("no-such-element");
    Microphone missing({});
    EXPECT_TRUE(missing.hasFailed());
    EXPECT_FALSE(missing.take(0ms));

    useSource("audiotestsrc is-live=true num-buffers=5");
    Microphone unplugged({});
    const auto end = base::SteadyClock::now() + 30s;
    while (!unplugged.hasFailed() && base::SteadyClock::now() < end)
        static_cast<void>(unplugged.take(50ms));
    EXPECT_TRUE(unplugged.hasFailed());
}

} // namespace
