#pragma once

#include <functional>

class CMainForm;

namespace zelvaro {

/// The whole program: prepares the application, starts the sessions, shows the main window, runs
/// the event loop and takes everything down again, in that order.
/// @param shown is called once the main window is shown, before the event loop runs
/// @return the exit code of the process
int runProgram(int &argc, char **argv, const std::function<void(CMainForm &)> &shown = {});

} // namespace zelvaro
