#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class CMainForm;

namespace zelvaro {

/// What is done for a picture of a page, one after the other: an act, and when its result can be
/// seen.
struct ScreenshotStep
{
    std::function<void()> act;
    std::function<bool()> done;
};

/// "manager", "single", "grid", "photos", "videos", "setup"
QStringList screenshotPages();

/// How the window comes to show that page with something on it, by what a user would click: photos
/// and recordings are taken first, so it is for settings and an album that are thrown away. Empty
/// for a page of another name. The steps are for this window.
std::vector<ScreenshotStep> screenshotSteps(CMainForm &window, const QString &page);

} // namespace zelvaro
