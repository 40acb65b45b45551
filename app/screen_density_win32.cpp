#include "app/screen_density.h"

namespace zelvaro {

// Each screen has the factor that the user chose for it, and 1 stays 1.
bool isDenseDesktop()
{
    return true;
}

} // namespace zelvaro
