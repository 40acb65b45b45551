#pragma once

#include "tests/platform/rtsp/case_media.h"
#include "tests/platform/rtsp/scripted_camera.h"

#include <map>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

/**
 * A camera as its text describes it: lines "key: value", then answers under "== METHOD" (any of
 * it), "== METHOD 2" (the second of it), "== METHOD tcp" and "== METHOD udp". What has no answer
 * there is answered as a good camera does. Words in braces stand for what is known only at run
 * time; a line "!close", "!silence" or "!good" in place of an answer does that.
 */
struct CameraCase
{
    std::string name; ///< of the file
    std::map<std::string, std::string> keys;
    std::map<std::string, std::string> answers;

    std::string key(const std::string &name, const std::string &otherwise = {}) const;
    bool plays() const { return key("ends").empty(); }
    /// Each request as "METHOD /path transport", what is expected.
    std::vector<std::string> sends() const;

    static CameraCase read(const std::string &path);
    /// For the messages of a test.
    friend void PrintTo(const CameraCase &each, std::ostream *stream) { *stream << each.name; }
    /// All of a folder, by name.
    static std::vector<CameraCase> readAll(const std::string &folder);
};

/// Plays the part of such a camera.
class CaseCamera
{
public:
    explicit CaseCamera(const CameraCase &text, const std::string &folder);

    ScriptedCamera &camera() { return *m_camera; }
    std::string url() const { return m_camera->url(m_case.key("path", "/live")); }
    const CaseClip &clip() const { return m_clip; }
    /// What came, as CameraCase::sends() has it; a request that came again and again counts once.
    std::vector<std::string> sent() const;

private:
    bool answer(const ScriptedCamera::Request &request, ScriptedCamera::Connection &connection);
    std::string filled(std::string text, const ScriptedCamera::Request &request,
                       ScriptedCamera::Connection &connection);
    std::string value(const std::string &word, const ScriptedCamera::Request &request,
                      ScriptedCamera::Connection &connection) const;
    const std::string *answerTo(const ScriptedCamera::Request &request);
    CasePacking packing() const;

    const CameraCase m_case;
    const std::string m_folder;
    const CaseClip m_clip;
    std::mutex m_mutex; ///< for what follows
    std::map<std::string, int> m_counts;
    std::map<int, std::unique_ptr<CaseMedia>> m_media; ///< by connection
    std::unique_ptr<ScriptedCamera> m_camera;
};
