#pragma once

#include <QList>

class CCamera;

namespace zelvaro {

/// The cameras that the grid of live pictures shows at the moment, in the order of its tiles.
/// Empty while the grid is not shown. GUI thread only; the sessions are not owned.
QList<CCamera *> &shownCameras();

} // namespace zelvaro
