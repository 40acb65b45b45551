#include "camsim/media_lines.h"

namespace camsim {

namespace {

const char *videoPart(VideoCodec codec)
{
    switch (codec) {
    case VideoCodec::H265:
        return "video/x-h265,stream-format=byte-stream,alignment=au ! rtph265pay";
    case VideoCodec::Mjpeg:
        return "image/jpeg ! jpegparse ! rtpjpegpay";
    case VideoCodec::H264:
        break;
    }
    return "video/x-h264,stream-format=byte-stream,alignment=au ! rtph264pay";
}

/// From mu-law to packets; the payload type is the static one where there is one (RFC 3551, 6).
const char *audioPart(AudioCodec codec)
{
    switch (codec) {
    case AudioCodec::Pcma:
        return "mulawdec ! alawenc ! rtppcmapay pt=8";
    case AudioCodec::G726:
        return "mulawdec ! avenc_g726 bitrate=32000 ! rtpg726pay pt=97";
    case AudioCodec::Aac:
        return "mulawdec ! audioconvert ! audioresample ! audio/x-raw,rate=16000 "
               "! avenc_aac bitrate=32000 ! aacparse ! rtpmp4gpay pt=97";
    case AudioCodec::Latm:
        return "mulawdec ! audioconvert ! audioresample ! audio/x-raw,rate=16000 "
               "! avenc_aac bitrate=32000 ! aacparse ! rtpmp4apay pt=97";
    case AudioCodec::L16:
        return "mulawdec ! audioconvert ! audioresample "
               "! audio/x-raw,format=S16BE,rate=16000,channels=1 ! rtpL16pay pt=97";
    case AudioCodec::Opus:
        return "mulawdec ! audioconvert ! audioresample ! audio/x-raw,rate=48000 "
               "! opusenc ! rtpopuspay pt=97";
    case AudioCodec::Pcmu:
        break;
    }
    return "rtppcmupay pt=0";
}

} // namespace

std::string videoLine(VideoCodec codec)
{
    return std::string("appsrc name=video is-live=true format=time do-timestamp=true "
                       "max-buffers=60 max-bytes=0 leaky-type=downstream caps=") +
           videoPart(codec) + " name=pay0 pt=" + (codec == VideoCodec::Mjpeg ? "26 " : "96 ");
}

std::string audioLine(AudioCodec codec, int payloader)
{
    return std::string("appsrc name=audio is-live=true format=time do-timestamp=true "
                       "max-buffers=25 max-bytes=0 leaky-type=downstream "
                       "caps=audio/x-mulaw,rate=8000,channels=1 ! ") +
           audioPart(codec) + " name=pay" + std::to_string(payloader) + ' ';
}

std::string backChannelLine()
{
    return "( capsfilter caps=\"application/x-rtp,media=audio,payload=0,clock-rate=8000,"
           "encoding-name=PCMU\" name=depay_backchannel ! rtppcmudepay "
           "! appsink name=heard sync=false async=false )";
}

} // namespace camsim
