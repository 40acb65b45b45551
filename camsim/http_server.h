#pragma once

#include "camsim/camera_model.h"
#include "camsim/command_forms.h"
#include "camsim/link.h"
#include "camsim/message_splitter.h"
#include "camsim/onvif_server.h"
#include "camsim/options.h"

#include <libsoup/soup.h>

#include <memory>
#include <string>

namespace camsim {

/// The HTTP server of one camera, on its own port on loopback: ONVIF services, command requests and
/// a small web page. Runs on the default main context.
class HttpServer
{
public:
    HttpServer(CameraModel &camera, OnvifLogin onvifLogin);
    ~HttpServer();
    HttpServer(const HttpServer &) = delete;
    HttpServer &operator=(const HttpServer &) = delete;

    int port() const { return m_port; }
    CommandForms &forms() { return m_forms; }
    const OnvifServer &onvif() const { return m_onvif; }

private:
    bool isProven(SoupServerMessage *message, SoupAuthDomain *domain) const;
    bool isProven(SoupServerMessage *message) const;
    void challenge(SoupServerMessage *message);
    void onOnvif(SoupServerMessage *message);
    bool mayAsk(SoupServerMessage *message, const soap::Request &request) const;
    void onForm(SoupServerMessage *message, const char *path);
    void onPage(SoupServerMessage *message);

    CameraModel &m_camera;
    const OnvifLogin m_onvifLogin;
    OnvifServer m_onvif;
    CommandForms m_forms;
    SoupServer *m_server;
    SoupAuthDomain *m_digest;
    SoupAuthDomain *m_basic;
    int m_port = 0;
};

/// Relays HTTP. Command requests carry no Host header, which HTTP/1.1 demands and libsoup insists
/// on: it is put in.
class HttpPolicy : public LinkPolicy
{
public:
    HttpPolicy();
    void fromClient(std::string_view bytes, Link &link) override;
    void fromServer(std::string_view bytes, Link &link) override { link.toClient(bytes); }

private:
    Link *m_link = nullptr;
    MessageSplitter m_requests;
};

} // namespace camsim
