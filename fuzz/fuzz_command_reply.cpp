#include "camera/command_channel.h"
#include "fuzz/expect.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const zelvaro::CommandReply reply = zelvaro::parse_reply(text);
    const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const bool isSuccess = !lines.isEmpty() && lines.first() == QLatin1String("000 Success");
    FUZZ_EXPECT(reply.code == (isSuccess ? 0 : -1));
    FUZZ_EXPECT(reply.keys.size() == reply.values.size());
    FUZZ_EXPECT(isSuccess || reply.keys.isEmpty());
    for (int i = 0; i < reply.keys.size(); ++i) {
        const QString line = reply.keys[i] + QLatin1Char('=') + reply.values[i];
        FUZZ_EXPECT(line.count(QLatin1Char('=')) == 1 && lines.contains(line));
    }
    return 0;
}
