#pragma once

#include <list>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// A camera's web server on 127.0.0.1, through which RTSP goes to another port: what it is asked
/// for by GET is answered with what the port says, what comes by POST in base64 goes there.
class HttpFront
{
public:
    /// authorization: the header's value that GET and POST must have; empty for any
    explicit HttpFront(int targetPort, std::string authorization = {});
    ~HttpFront();
    HttpFront(const HttpFront &) = delete;
    HttpFront &operator=(const HttpFront &) = delete;

    int port() const { return m_port; }
    /// The heads of the requests, in order.
    std::vector<std::string> requests() const;

private:
    void accept();
    void serve(int handle);
    void serveGet(int handle, const std::string &cookie);
    void servePost(int handle, const std::string &cookie, std::string body);

    const int m_target;
    const std::string m_authorization;
    int m_listener = -1;
    int m_port = 0;
    mutable std::mutex m_mutex; ///< for what follows
    bool m_ending = false;
    std::list<int> m_open;
    std::map<std::string, int> m_cameras; ///< by cookie
    std::vector<std::string> m_requests;
    std::list<std::thread> m_threads;
    std::thread m_acceptor;
};
