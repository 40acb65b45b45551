#include "bench/screen_reader.h"

#include "camsim/timecode.h"

#include <stdexcept>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace bench {

struct ScreenReader::Private
{
    Display *display = nullptr;
    XImage *image = nullptr;
    XShmSegmentInfo segment{};
    int width = 0;
    int height = 0;
};

ScreenReader::ScreenReader(int width, int height) : d(std::make_unique<Private>())
{
    d->display = XOpenDisplay(nullptr);
    if (d->display == nullptr || !XShmQueryExtension(d->display))
        throw std::runtime_error("no display with shared memory");
    d->width = width;
    d->height = height;
    const int screen = DefaultScreen(d->display);
    // Only the rows with the code are fetched: a look must cost less than a frame's time.
    const int codeHeight =
        height * (camsim::timecode::rows + 1) / camsim::timecode::cellsPerHeight + 1;
    const int codeWidth =
        height * (camsim::timecode::columns + 1) / camsim::timecode::cellsPerHeight + 1;
    d->image = XShmCreateImage(d->display, DefaultVisual(d->display, screen),
                               static_cast<unsigned>(DefaultDepth(d->display, screen)), ZPixmap,
                               nullptr, &d->segment, static_cast<unsigned>(codeWidth),
                               static_cast<unsigned>(codeHeight));
    const std::size_t size = static_cast<std::size_t>(d->image->bytes_per_line) *
                             static_cast<std::size_t>(d->image->height);
    d->segment.shmid = shmget(IPC_PRIVATE, size, IPC_CREAT | 0600);
    d->segment.shmaddr = static_cast<char *>(shmat(d->segment.shmid, nullptr, 0));
    d->image->data = d->segment.shmaddr;
    XShmAttach(d->display, &d->segment);
    XSync(d->display, False);
    shmctl(d->segment.shmid, IPC_RMID, nullptr); // freed with the last attachment
}

ScreenReader::~ScreenReader()
{
    XShmDetach(d->display, &d->segment);
    XDestroyImage(d->image);
    shmdt(d->segment.shmaddr);
    XCloseDisplay(d->display);
}

std::optional<std::uint32_t> ScreenReader::read()
{
    if (!XShmGetImage(d->display, DefaultRootWindow(d->display), d->image, 0, 0, AllPlanes))
        return std::nullopt;
    const auto code = camsim::timecode::readRgb(
        reinterpret_cast<const std::uint8_t *>(d->image->data), d->image->bytes_per_line,
        d->image->bits_per_pixel / 8, d->width, d->height);
    // A black place reads as zero with fitting check bits.
    return code == 0U ? std::nullopt : code;
}

void ScreenReader::clear()
{
    // Painted, not cleared: a root window without a background keeps what stood there.
    const int screen = DefaultScreen(d->display);
    XSetForeground(d->display, DefaultGC(d->display, screen), BlackPixel(d->display, screen));
    XFillRectangle(d->display, DefaultRootWindow(d->display), DefaultGC(d->display, screen), 0, 0,
                   static_cast<unsigned>(d->width), static_cast<unsigned>(d->height));
    XSync(d->display, False);
}

} // namespace bench
