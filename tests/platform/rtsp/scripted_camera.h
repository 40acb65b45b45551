#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

/**
 * A camera's RTSP side on 127.0.0.1 (or ::1) that a test can make behave in every odd way. Left
 * alone it is a good camera: H.264 on track1, mu-law sound on track2, interleaved or over UDP, a
 * key frame every 20 ms. Each connection has a thread of its own.
 */
class ScriptedCamera
{
public:
    struct Request
    {
        std::string method;
        std::string url;
        std::string text; ///< the whole head
        int connection = 1;
        std::chrono::steady_clock::time_point time;

        /// The first header of that name (lower case), or the empty text.
        std::string header(const std::string &name) const;
    };

    class Connection
    {
    public:
        /// 1 for the first connection of the camera.
        int number() const { return m_number; }
        void write(std::string_view text) const;
        /// "RTSP/1.0 STATUS", CSeq of the request, further headers (each ended by CRLF) and a body.
        void answer(const Request &request, const std::string &status,
                    const std::string &headers = {}, const std::string &body = {}) const;
        /// What the camera does when left alone.
        void answerWell(const Request &request);
        void sendPacket(int channel, std::string_view packet) const;
        /// A whole RTP packet, on the channel or port of the picture.
        void sendPicturePacket(std::string_view packet) const;
        /// One frame: parameter sets and a slice, on the channel or port of the picture.
        void sendFrame();
        /// The Transport header that accepts what a SETUP asks for.
        std::string transportFor(const Request &request) { return setUp(request); }
        bool isUdp() const { return m_udp >= 0; }
        void play(bool on = true) { m_isPlaying = on; }
        /// The first frame comes some time later.
        void playLate(std::chrono::milliseconds delay);
        void setChannel(int channel) { m_channel = channel; }
        void close();

    private:
        friend class ScriptedCamera;
        Connection(ScriptedCamera &camera, int handle, int number)
            : m_camera(camera)
            , m_handle(handle)
            , m_number(number)
        {
        }
        void run();
        bool read();
        bool takeUnit();
        void sendRtp(std::string_view payload, bool marker);
        std::string setUp(const Request &request);

        ScriptedCamera &m_camera;
        int m_handle;
        int m_number;
        std::string m_input;
        bool m_isPlaying = false;
        std::chrono::steady_clock::time_point m_nextFrame;
        int m_channel = 0;
        int m_udp = -1; ///< socket that is connected to the client's port
        uint16_t m_sequence = 40000;
        uint32_t m_time = 1000;
    };

    struct Behaviour
    {
        /// Answers a request, or leaves it to the camera: false.
        std::function<bool(const Request &, Connection &)> script = {};
        std::string publicMethods = "OPTIONS, DESCRIBE, SETUP, TEARDOWN, PLAY, GET_PARAMETER";
        std::string session = "12345678;timeout=60";
        std::string describeHeaders = {}; ///< beside the length and type
        std::string description = goodDescription();
        bool ipv6 = false;
        /// Sends the media of every 20 ms in place of the camera's own frames.
        std::function<void(Connection &)> media = {};
    };

    static std::string goodDescription(const std::string &videoControl = "track1",
                                       const std::string &audioControl = "track2",
                                       const std::string &sessionControl = "*");

    explicit ScriptedCamera(Behaviour behaviour);
    ScriptedCamera() : ScriptedCamera(Behaviour{}) {}
    ~ScriptedCamera();
    ScriptedCamera(const ScriptedCamera &) = delete;
    ScriptedCamera &operator=(const ScriptedCamera &) = delete;

    int port() const { return m_port; }
    std::string url(const std::string &path = "/live") const;
    std::vector<Request> requests() const;
    /// Their methods, in order.
    std::vector<std::string> methods() const;
    /// The requests of that method.
    std::vector<Request> requests(const std::string &method) const;
    int connectionCount() const;
    int openConnections() const;
    /// RTCP packets that came interleaved: channel and bytes.
    std::vector<std::pair<int, std::string>> reports() const;
    /// Waits, at most 30 s, until the condition holds; checked after each event of the camera.
    bool waitFor(const std::function<bool()> &condition) const;

private:
    void accept();
    void changed() const { m_changed.notify_all(); }

    const Behaviour m_behaviour;
    int m_listener = -1;
    int m_port = 0;
    mutable std::recursive_mutex m_mutex; ///< for what follows
    mutable std::condition_variable_any m_changed;
    bool m_ending = false;
    int m_count = 0;
    std::list<int> m_open;
    std::list<std::thread> m_threads;
    std::vector<Request> m_requests;
    std::vector<std::pair<int, std::string>> m_reports;
    std::thread m_acceptor;
};
