#include "ui/common/page_host.h"

#include <QWidget>

namespace {
PageHost *g_host = nullptr;
}

PageHost *pageHost()
{
    return g_host;
}

QWidget *dialogParent(QWidget *page)
{
    QWidget *parent = g_host ? g_host->dialogParent() : nullptr;
    return parent ? parent : page->window();
}

void setPageHost(PageHost *host)
{
    g_host = host;
}
