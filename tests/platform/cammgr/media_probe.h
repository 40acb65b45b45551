#pragma once

#include <gst/pbutils/pbutils.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

/// What other players make of a recording.
struct MediaProbe
{
    /// Presentation times of the video packets in the order of the file, in seconds.
    static std::vector<double> videoTimes(const std::string &path)
    {
        return numbers(
            "ffprobe -v error -select_streams v -show_entries packet=pts_time -of csv=p=0 '" +
            path + "'");
    }
    /// Pictures that really decode.
    static int decodedFrames(const std::string &path)
    {
        const auto found = numbers(
            "ffprobe -v error -count_frames -select_streams v -show_entries stream=nb_read_frames"
            " -of csv=p=0 '" +
            path + "'");
        return found.empty() ? 0 : static_cast<int>(found.front());
    }
    /// Of the picture, in pixels; 0 when there is none.
    static int width(const std::string &path)
    {
        const auto found =
            numbers("ffprobe -v error -select_streams v -show_entries stream=width -of csv=p=0 '" +
                    path + "'");
        return found.empty() ? 0 : static_cast<int>(found.front());
    }
    static double duration(const std::string &path)
    {
        const auto found = numbers("ffprobe -v error -show_entries format=duration -of csv=p=0 '" +
                                   path + "' 2>/dev/null");
        return found.empty() ? 0 : found.front();
    }
    /// Of the sound track, in seconds; 0 without one.
    static double audioDuration(const std::string &path)
    {
        const auto found = numbers("ffprobe -v error -select_streams a -show_entries "
                                   "stream=duration -of csv=p=0 '" +
                                   path + "'");
        return found.empty() ? 0 : found.front();
    }
    /// The longest time between the packets of the sound track, in seconds.
    static double longestAudioGap(const std::string &path)
    {
        const auto times = numbers("ffprobe -v error -select_streams a -show_entries "
                                   "packet=pts_time -of csv=p=0 '" +
                                   path + "'");
        double longest = 0;
        for (size_t i = 1; i < times.size(); ++i)
            longest = std::max(longest, times[i] - times[i - 1]);
        return longest;
    }
    /// Codec names of all streams, separated by spaces.
    static std::string codecs(const std::string &path)
    {
        std::istringstream lines(
            output("ffprobe -v error -show_entries stream=codec_name -of csv=p=0 '" + path + "'"));
        std::string all;
        for (std::string line; std::getline(lines, line);)
            all += (all.empty() ? "" : " ") + line;
        return all;
    }
    /// Time, size and check sum of every packet of all streams, as text.
    static std::string packets(const std::string &path)
    {
        return output("ffmpeg -v error -i '" + path + "' -map 0 -c copy -f framemd5 -");
    }
    /// What ffmpeg complains about while it decodes everything; empty when nothing.
    static std::string complaints(const std::string &path)
    {
        return output("ffmpeg -v error -i '" + path +
                      "' -fps_mode passthrough -enc_time_base -1 -f null - 2>&1");
    }
    /// Length and seekability as the media framework of the album sees them.
    struct Discovered
    {
        double duration = 0;
        bool seekable = false;
        bool video = false;
    };
    static Discovered discover(const std::string &path)
    {
        Discovered result;
        GstDiscoverer *discoverer = gst_discoverer_new(20 * GST_SECOND, nullptr);
        gchar *uri = gst_filename_to_uri(path.c_str(), nullptr);
        GstDiscovererInfo *info = gst_discoverer_discover_uri(discoverer, uri, nullptr);
        if (info) {
            result.duration =
                static_cast<double>(gst_discoverer_info_get_duration(info)) / GST_SECOND;
            result.seekable = gst_discoverer_info_get_seekable(info);
            GList *streams = gst_discoverer_info_get_video_streams(info);
            result.video = streams != nullptr;
            gst_discoverer_stream_info_list_free(streams);
            g_object_unref(info);
        }
        g_free(uri);
        g_object_unref(discoverer);
        return result;
    }
    /// Whether the index comes before the pictures.
    static bool indexFirst(const std::string &path)
    {
        std::unique_ptr<FILE, int (*)(FILE *)> file(fopen(path.c_str(), "rb"), &fclose);
        if (!file)
            return false;
        for (std::array<unsigned char, 8> head; fread(head.data(), 1, 8, file.get()) == 8;) {
            const std::string kind(reinterpret_cast<char *>(head.data()) + 4, 4);
            if (kind == "moov")
                return true;
            if (kind == "mdat")
                return false;
            const long size = long{head[0]} << 24 | head[1] << 16 | head[2] << 8 | head[3];
            if (size < 8 || fseek(file.get(), size - 8, SEEK_CUR) != 0)
                return false;
        }
        return false;
    }

private:
    static std::string output(const std::string &command)
    {
        std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), &pclose);
        std::string text;
        std::array<char, 4096> piece;
        for (size_t size; pipe && (size = fread(piece.data(), 1, piece.size(), pipe.get())) > 0;)
            text.append(piece.data(), size);
        return text;
    }
    static std::vector<double> numbers(const std::string &command)
    {
        std::istringstream lines(output(command));
        std::vector<double> found;
        for (std::string line; std::getline(lines, line);) {
            char *end = nullptr;
            const double value = std::strtod(line.c_str(), &end);
            if (end != line.c_str())
                found.push_back(value);
        }
        return found;
    }
};
