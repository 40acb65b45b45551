#include "app/compositing.h"

namespace zelvaro {

// Since Windows 8 the desktop window manager cannot be switched off.
bool desktopComposes()
{
    return true;
}

} // namespace zelvaro
