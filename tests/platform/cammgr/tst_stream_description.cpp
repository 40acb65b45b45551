#include "platform/cammgr/stream_description.h"

#include <gtest/gtest.h>

using cammgr::encodingNameOf;

TEST(StreamDescription, NamesTheEncodingOfAStream)
{
    const auto name = [](const char *text) -> std::string {
        GstStructure *format = gst_structure_from_string(text, nullptr);
        const char *encoding = encodingNameOf(format);
        const std::string copy = encoding ? encoding : "none";
        gst_structure_free(format);
        return copy;
    };
    gst_init(nullptr, nullptr);
    EXPECT_EQ(name("application/x-rtp, payload=(int)0, encoding-name=(string)OPUS"), "OPUS");
    EXPECT_EQ(name("application/x-rtp, payload=(int)0"), "PCMU");
    EXPECT_EQ(name("application/x-rtp, payload=(int)8"), "PCMA");
    EXPECT_EQ(name("application/x-rtp, payload=(int)96"), "none");
    EXPECT_EQ(name("application/x-rtp, payload=(int)-1"), "none");
    EXPECT_EQ(name("application/x-rtp"), "none");
}
