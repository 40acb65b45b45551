#include "ui/common/page_host.h"

namespace {
PageHost *g_host = nullptr;
}

PageHost *pageHost()
{
    return g_host;
}

void setPageHost(PageHost *host)
{
    g_host = host;
}
