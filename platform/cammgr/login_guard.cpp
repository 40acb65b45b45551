#include "platform/cammgr/login_guard.h"

#include "platform/base/glib_ptr.h"
#include "platform/base/text.h"

#include <gst/rtsp/gstrtspextension.h>

#include <algorithm>
#include <mutex>
#include <regex>
#include <string>
#include <utility>
#include <vector>

namespace cammgr {

namespace {

/// The guard of the request that this thread sends: "rtspsrc" passes an extension of its protocol
/// what was answered, but not which element it belongs to.
thread_local LoginGuard *currentGuard = nullptr;

struct GuardElement
{
    GstElement parent;
};

struct GuardElementClass
{
    GstElementClass parent;
};

/// Comes before noteRequest(): a request of an element without a guard finds none.
GstRTSPResult forgetGuard(GstRTSPExtension *, GstRTSPMessage *)
{
    currentGuard = nullptr;
    return GST_RTSP_OK;
}

GstRTSPResult takeResponse(GstRTSPExtension *, GstRTSPMessage *, GstRTSPMessage *response)
{
    if (LoginGuard *guard = std::exchange(currentGuard, nullptr))
        guard->filter(response);
    return GST_RTSP_OK;
}

void describeElement(gpointer elementClass, gpointer)
{
    gst_element_class_set_static_metadata(
        GST_ELEMENT_CLASS(elementClass), "Login guard", "Network/Extension/Protocol",
        "Lets RTSP answer a challenge once, and not all of them", "Zelvaro");
}

void addExtension(gpointer interface, gpointer)
{
    auto *extension = static_cast<GstRTSPExtensionInterface *>(interface);
    extension->before_send = &forgetGuard;
    extension->after_send = &takeResponse;
}

/// Before the first "rtspsrc", which looks for extensions once.
void registerExtension()
{
    static std::once_flag once;
    std::call_once(once, [] {
        const GType type = g_type_register_static_simple(
            GST_TYPE_ELEMENT, "CammgrLoginGuard", sizeof(GuardElementClass), &describeElement,
            sizeof(GuardElement), nullptr, static_cast<GTypeFlags>(0));
        const GInterfaceInfo extension{&addExtension, nullptr, nullptr};
        g_type_add_interface_static(type, GST_TYPE_RTSP_EXTENSION, &extension);
        gst_element_register(nullptr, "cammgrloginguard", GST_RANK_PRIMARY, type);
    });
}

gboolean noteRequest(GstElement *, GstRTSPMessage *, gpointer guard)
{
    currentGuard = static_cast<LoginGuard *>(guard);
    return TRUE;
}

std::vector<std::string> headersOf(const GstRTSPMessage *response, GstRTSPHeaderField field)
{
    std::vector<std::string> headers;
    gchar *value = nullptr;
    for (gint i = 0; gst_rtsp_message_get_header(response, field, &value, i) == GST_RTSP_OK; ++i)
        headers.emplace_back(value);
    return headers;
}

std::string parameterOf(const base::HttpChallenge &challenge, const char *name)
{
    const auto found = challenge.parameters.find(name);
    return found == challenge.parameters.end() ? std::string() : found->second;
}

std::string headerOf(const base::HttpChallenge &challenge)
{
    const std::string realm = "realm=\"" + parameterOf(challenge, "realm") + '"';
    if (challenge.scheme != "digest")
        return "Basic " + realm;
    const std::string opaque = parameterOf(challenge, "opaque");
    return "Digest " + realm + ", nonce=\"" + parameterOf(challenge, "nonce") + '"' +
           (opaque.empty() ? "" : ", opaque=\"" + opaque + '"');
}

/// The only digest that the element computes.
bool isMd5(const base::HttpChallenge &challenge)
{
    const std::string algorithm = base::lowerAscii(parameterOf(challenge, "algorithm"));
    return challenge.scheme == "digest" && (algorithm.empty() || algorithm == "md5");
}

/// The challenge that the element may and can answer; null when there is none.
const base::HttpChallenge *choose(const std::vector<base::HttpChallenge> &challenges,
                                  bool permitsBasic)
{
    const auto md5 = std::find_if(challenges.begin(), challenges.end(), isMd5);
    if (md5 != challenges.end())
        return &*md5;
    const auto basic =
        std::find_if(challenges.begin(), challenges.end(),
                     [](const base::HttpChallenge &each) { return each.scheme == "basic"; });
    return basic == challenges.end() || !permitsBasic ? nullptr : &*basic;
}

/// "url=rtsp://c/1;seq=0;rtptime=5" without its ";seq=0".
void dropFirstSequences(GstRTSPMessage *response)
{
    const std::vector<std::string> headers = headersOf(response, GST_RTSP_HDR_RTP_INFO);
    if (headers.empty())
        return;
    static const std::regex sequence(";\\s*seq=[0-9]*", std::regex::icase);
    gst_rtsp_message_remove_header(response, GST_RTSP_HDR_RTP_INFO, -1);
    for (const std::string &header : headers)
        gst_rtsp_message_add_header(response, GST_RTSP_HDR_RTP_INFO,
                                    std::regex_replace(header, sequence, "").c_str());
}

} // namespace

GstElement *LoginGuard::makeSource()
{
    registerExtension();
    GstElement *source = gst_element_factory_make("rtspsrc", nullptr);
    if (source)
        g_signal_connect(source, "before-send", G_CALLBACK(&noteRequest), this);
    return source;
}

void LoginGuard::filter(GstRTSPMessage *response)
{
    GstRTSPStatusCode code = GST_RTSP_STS_OK;
    if (gst_rtsp_message_parse_response(response, &code, nullptr, nullptr) != GST_RTSP_OK)
        return;
    if (code != GST_RTSP_STS_UNAUTHORIZED) {
        m_answers = 0;
        dropFirstSequences(response);
        return;
    }
    const std::vector<std::string> headers = headersOf(response, GST_RTSP_HDR_WWW_AUTHENTICATE);
    const std::vector<base::HttpChallenge> challenges = base::parseChallenges(headers);
    const base::HttpChallenge *chosen =
        choose(challenges, m_policy->permitsBasic(challenges, m_tls));
    // A nonce that grew old says nothing about the login.
    if (m_answers++ >=
        (chosen && base::lowerAscii(parameterOf(*chosen, "stale")) == "true" ? 2 : 1))
        chosen = nullptr;
    if (chosen && challenges.size() == 1)
        return;
    gst_rtsp_message_remove_header(response, GST_RTSP_HDR_WWW_AUTHENTICATE, -1);
    // Of several challenges the element would take the last one.
    if (chosen)
        gst_rtsp_message_add_header(response, GST_RTSP_HDR_WWW_AUTHENTICATE,
                                    headerOf(*chosen).c_str());
}

} // namespace cammgr
