#pragma once

#include <QString>

/// How a registered camera is reached.
enum CameraType
{
    CAMERA_TYPE_IP = 0, ///< by its host address
    CAMERA_TYPE_P2P = 1 ///< by its peer-to-peer UID
};

/// One registered camera, as stored in the settings file. Owned by CameraSettings; sessions refer
/// to it by pointer. GUI thread only.
struct CameraRecord
{
    int type = CAMERA_TYPE_P2P;
    QString hostname; ///< the UID, or the host address; unique in the list
    QString username;
    QString password;
    QString name;                                            ///< what the user calls the camera
    QString streamPath = QStringLiteral("/live/1/h264.sdp"); ///< not saved
    bool multiLive = false;                                  ///< shown in the grid of live views
    bool recordSelected = false; ///< chosen for recording in that grid; not saved
};
