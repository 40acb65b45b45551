#include "platform/media/unit_wrapper.h"

#include "platform/media/g726_packing.h"

#include <utility>

namespace media {

namespace {

void setCodecData(GstCaps *caps, const base::Bytes &configuration)
{
    if (configuration.empty())
        return;
    GstBuffer *data = gst_buffer_new_memdup(configuration.data(), configuration.size());
    gst_caps_set_simple(caps, "codec_data", GST_TYPE_BUFFER, data, nullptr);
    gst_buffer_unref(data);
}

/// A read-only buffer over bytes that it shares.
BufferRef bufferOver(std::shared_ptr<const base::Bytes> bytes)
{
    using Owner = std::shared_ptr<const base::Bytes>;
    auto *owner = new Owner(std::move(bytes));
    const auto release = +[](gpointer held) { delete static_cast<Owner *>(held); };
    // Never written to: the flag makes who wants to write copy it.
    return BufferRef::adopt(gst_buffer_new_wrapped_full(
        GST_MEMORY_FLAG_READONLY, const_cast<uint8_t *>((*owner)->data()), (*owner)->size(), 0,
        (*owner)->size(), owner, release));
}

BufferRef bufferAt(std::shared_ptr<const base::Bytes> bytes, uint64_t time)
{
    BufferRef buffer = bufferOver(std::move(bytes));
    GST_BUFFER_PTS(buffer.get()) = time;
    return buffer;
}

} // namespace

CapsRef videoCaps(const base::VideoFormat &format)
{
    GstCaps *caps = nullptr;
    switch (format.codec) {
    case base::VideoCodec::H264:
        caps = gst_caps_new_simple("video/x-h264", "stream-format", G_TYPE_STRING, "avc",
                                   "alignment", G_TYPE_STRING, "au", nullptr);
        break;
    case base::VideoCodec::H265:
        caps = gst_caps_new_simple("video/x-h265", "stream-format", G_TYPE_STRING, "hvc1",
                                   "alignment", G_TYPE_STRING, "au", nullptr);
        break;
    case base::VideoCodec::Jpeg:
        caps = gst_caps_new_simple("image/jpeg", "parsed", G_TYPE_BOOLEAN, TRUE, nullptr);
        break;
    }
    if (format.width > 0 && format.height > 0)
        gst_caps_set_simple(caps, "width", G_TYPE_INT, format.width, "height", G_TYPE_INT,
                            format.height, nullptr);
    setCodecData(caps, format.configuration);
    return CapsRef::adopt(caps);
}

CapsRef audioCaps(const base::AudioFormat &format)
{
    GstCaps *caps = nullptr;
    switch (format.codec) {
    case base::AudioCodec::Pcmu:
        caps = gst_caps_new_empty_simple("audio/x-mulaw");
        break;
    case base::AudioCodec::Pcma:
        caps = gst_caps_new_empty_simple("audio/x-alaw");
        break;
    case base::AudioCodec::G726:
        caps = gst_caps_new_simple("audio/x-adpcm", "layout", G_TYPE_STRING, "g726", "bitrate",
                                   G_TYPE_INT, format.bitsPerSample * format.rate, nullptr);
        break;
    case base::AudioCodec::L16:
        caps = gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, "S16BE", "layout",
                                   G_TYPE_STRING, "interleaved", nullptr);
        break;
    case base::AudioCodec::Aac:
        caps = gst_caps_new_simple("audio/mpeg", "mpegversion", G_TYPE_INT, 4, "stream-format",
                                   G_TYPE_STRING, "raw", "framed", G_TYPE_BOOLEAN, TRUE, nullptr);
        break;
    case base::AudioCodec::Opus:
        caps =
            gst_caps_new_simple("audio/x-opus", "channel-mapping-family", G_TYPE_INT, 0, nullptr);
        break;
    }
    gst_caps_set_simple(caps, "rate", G_TYPE_INT, format.rate, "channels", G_TYPE_INT,
                        format.channels, nullptr);
    setCodecData(caps, format.configuration);
    return CapsRef::adopt(caps);
}

AccessUnit UnitWrapper::wrap(const base::AccessUnit &unit)
{
    if (unit.format != m_videoFormat) {
        m_videoFormat = unit.format;
        m_videoCaps = videoCaps(*unit.format);
    }
    AccessUnit wrapped;
    wrapped.buffer = bufferAt(unit.payload, unit.time);
    if (!unit.key)
        GST_BUFFER_FLAG_SET(wrapped.buffer.get(), GST_BUFFER_FLAG_DELTA_UNIT);
    wrapped.caps = m_videoCaps;
    wrapped.number = unit.number;
    wrapped.time = unit.time;
    wrapped.key = unit.key;
    wrapped.reference = unit.reference;
    wrapped.bipredictive = unit.bipredictive;
    wrapped.arrived = unit.arrived;
    return wrapped;
}

AudioUnit UnitWrapper::wrap(const base::AudioUnit &unit)
{
    if (unit.format != m_audioFormat) {
        m_audioFormat = unit.format;
        m_audioCaps = audioCaps(*unit.format);
    }
    std::shared_ptr<const base::Bytes> payload = unit.payload;
    if (unit.format->codec == base::AudioCodec::G726)
        payload = std::make_shared<base::Bytes>(
            g726WithFirstCodeHigh(*payload, unit.format->bitsPerSample));
    return {bufferAt(std::move(payload), unit.time), m_audioCaps, unit.time};
}

} // namespace media
