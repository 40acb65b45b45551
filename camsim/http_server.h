#pragma once

#include "camsim/camera_model.h"
#include "camsim/command_forms.h"
#include "camsim/link.h"
#include "camsim/login_gate.h"
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
    HttpServer(CameraModel &camera, Account &account, const OnvifOptions &options);
    ~HttpServer();
    HttpServer(const HttpServer &) = delete;
    HttpServer &operator=(const HttpServer &) = delete;

    int port() const { return m_port; }
    CommandForms &forms() { return m_forms; }
    const OnvifServer &onvif() const { return m_onvif; }
    int snapshots() const { return m_snapshots; }

private:
    bool isServedAt(SoupServerMessage *message, bool isOnvif) const;
    bool isProven(SoupServerMessage *message, SoupAuthDomain *domain) const;
    bool isProven(SoupServerMessage *message) const;
    void refuse(SoupServerMessage *message);
    void noteRefusal(SoupServerMessage *message, bool hadToken);
    void onOnvif(SoupServerMessage *message);
    bool mayAsk(SoupServerMessage *message, const soap::Request &request) const;
    void onForm(SoupServerMessage *message, const char *path);
    void onSnapshot(SoupServerMessage *message, const std::string &token);
    void onPage(SoupServerMessage *message);

    CameraModel &m_camera;
    Account &m_account;
    const OnvifOptions m_options;
    OnvifServer m_onvif;
    CommandForms m_forms;
    SoupServer *m_server;
    SoupAuthDomain *m_digest;
    SoupAuthDomain *m_basic;
    int m_port = 0;
    int m_snapshots = 0;
};

/// Relays HTTP. Command requests carry no Host header, which HTTP/1.1 demands and libsoup insists
/// on: it is put in, and so is the port that the client has chosen.
class HttpPolicy : public LinkPolicy
{
public:
    /// What is served at a port.
    enum class Front
    {
        All,
        Web,
        Onvif
    };

    HttpPolicy(Front front, bool closesAfter401);
    void fromClient(std::string_view bytes, Link &link) override;
    void fromServer(std::string_view bytes, Link &link) override;

private:
    const Front m_front;
    const bool m_closesAfter401;
    bool m_wasRefused = false;
    Link *m_link = nullptr;
    MessageSplitter m_requests;
};

} // namespace camsim
