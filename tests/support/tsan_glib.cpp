// What the thread sanitizer has to know of libraries that are not built with it; linked into every
// program of a build with it.
//
// 1. GMutex and GCond wait with their own futexes, which the sanitizer does not see: all that
//    one thread hands to another under such a lock would look like a race. The functions here
//    precede those of GLib and report to it which thread waited for which. GRecMutex is a pthread
// mutex;
//    called from here, and not from a library that is to be ignored, it is seen as such.
// 2. Such a library still shows what it does through the C library (memcpy, malloc, free), while
//    the atomic counts and locks that order it stay hidden. Those calls are ignored when they come
//    from one of the libraries listed here; what our own code does stays watched.

#include <dlfcn.h>
#include <glib.h>
#include <sanitizer/tsan_interface.h>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

template <class Function>
Function *behind(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

EXPORTED void g_mutex_lock(GMutex *mutex)
{
    static auto *const next = behind<decltype(g_mutex_lock)>("g_mutex_lock");
    next(mutex);
    __tsan_acquire(mutex);
}

EXPORTED gboolean g_mutex_trylock(GMutex *mutex)
{
    static auto *const next = behind<decltype(g_mutex_trylock)>("g_mutex_trylock");
    const gboolean locked = next(mutex);
    if (locked)
        __tsan_acquire(mutex);
    return locked;
}

EXPORTED void g_mutex_unlock(GMutex *mutex)
{
    static auto *const next = behind<decltype(g_mutex_unlock)>("g_mutex_unlock");
    __tsan_release(mutex);
    next(mutex);
}

EXPORTED void g_cond_wait(GCond *condition, GMutex *mutex)
{
    static auto *const next = behind<decltype(g_cond_wait)>("g_cond_wait");
    __tsan_release(mutex);
    next(condition, mutex);
    __tsan_acquire(mutex);
}

EXPORTED gboolean g_cond_wait_until(GCond *condition, GMutex *mutex, gint64 end)
{
    static auto *const next = behind<decltype(g_cond_wait_until)>("g_cond_wait_until");
    __tsan_release(mutex);
    const gboolean signalled = next(condition, mutex, end);
    __tsan_acquire(mutex);
    return signalled;
}

EXPORTED void g_rec_mutex_lock(GRecMutex *mutex)
{
    static auto *const next = behind<decltype(g_rec_mutex_lock)>("g_rec_mutex_lock");
    next(mutex);
}

EXPORTED gboolean g_rec_mutex_trylock(GRecMutex *mutex)
{
    static auto *const next = behind<decltype(g_rec_mutex_trylock)>("g_rec_mutex_trylock");
    return next(mutex);
}

EXPORTED void g_rec_mutex_unlock(GRecMutex *mutex)
{
    static auto *const next = behind<decltype(g_rec_mutex_unlock)>("g_rec_mutex_unlock");
    next(mutex);
}

EXPORTED const char *__tsan_default_suppressions();

EXPORTED const char *__tsan_default_suppressions()
{
    return
        // GLib and what is built on it: reference counts and lock-free lists are atomic words.
        "called_from_lib:libglib-2.0.so\n"
        "called_from_lib:libgobject-2.0.so\n"
        "called_from_lib:libgio-2.0.so\n"
        "called_from_lib:libffi.so\n"
        "called_from_lib:libsoup-3.0.so\n"
        // The media framework: buffers, caps and structures go from thread to thread by atomic
        // reference counts.
        "called_from_lib:libgstreamer-1.0.so\n"
        "called_from_lib:libgstapp-1.0.so\n"
        "called_from_lib:libgstaudio-1.0.so\n"
        "called_from_lib:libgstbase-1.0.so\n"
        "called_from_lib:libgstcodecparsers-1.0.so\n"
        "called_from_lib:libgstnet-1.0.so\n"
        "called_from_lib:libgstpbutils-1.0.so\n"
        "called_from_lib:libgstrtp-1.0.so\n"
        "called_from_lib:libgstrtsp-1.0.so\n"
        "called_from_lib:libgstrtspserver-1.0.so\n"
        "called_from_lib:libgstsdp-1.0.so\n"
        "called_from_lib:libgsttag-1.0.so\n"
        "called_from_lib:libgstvideo-1.0.so\n"
        // Its elements, of our pipelines and of the simulated cameras'.
        "called_from_lib:libgstalaw.so\n"
        "called_from_lib:libgstapp.so\n"
        "called_from_lib:libgstaudioconvert.so\n"
        "called_from_lib:libgstaudioparsers.so\n"
        "called_from_lib:libgstaudioresample.so\n"
        "called_from_lib:libgstaudiotestsrc.so\n"
        "called_from_lib:libgstautodetect.so\n"
        "called_from_lib:libgstcoreelements.so\n"
        "called_from_lib:libgstisomp4.so\n"
        "called_from_lib:libgstjpeg.so\n"
        "called_from_lib:libgstlibav.so\n"
        "called_from_lib:libgstmulaw.so\n"
        "called_from_lib:libgstplayback.so\n"
        "called_from_lib:libgstrtp.so\n"
        "called_from_lib:libgstrtpmanager.so\n"
        "called_from_lib:libgstrtsp.so\n"
        "called_from_lib:libgsttcp.so\n"
        "called_from_lib:libgstudp.so\n"
        "called_from_lib:libgstvideoconvertscale.so\n"
        "called_from_lib:libgstvideoparsersbad.so\n"
        "called_from_lib:libgstvideotestsrc.so\n"
        "called_from_lib:libgstvolume.so\n"
        "called_from_lib:libgstx264.so\n"
        "called_from_lib:libgstximagesink.so\n"
        // Decoders and scalers with their own worker threads.
        "called_from_lib:libavcodec.so\n"
        "called_from_lib:libavutil.so\n"
        "called_from_lib:libswscale.so\n"
        "called_from_lib:libx264.so\n"
        // Loaded and unloaded at will, which the entries above do not allow; nothing of ours runs
        // below it.
        "race:libproxy.so\n"
        // The RTSP server of the simulated cameras unlocks the state of a stream once too often
        // when it suspends one that failed.
        "mutex:^g_rec_mutex_unlock$\n"
        // The order of the locks of pads and elements is set by the media framework's own rules
        // (stream locks downwards, state changes upwards), which a graph of locks does not know.
        "deadlock:^g_rec_mutex_lock$\n";
}
