// GLib is not built with the thread sanitizer, which therefore does not see its locks: memory that
// GLib passes from one thread to another under such a lock looks like a race.
#if defined(__SANITIZE_THREAD__)
extern "C" __attribute__((visibility("default"))) const char *__tsan_default_suppressions();

extern "C" const char *__tsan_default_suppressions()
{
    return "race:^g_realloc$\n"
           "race:^g_malloc$\n"
           "race:^g_malloc0$\n"
           "race:^g_free$\n"
           "race:^g_slice_alloc$\n"
           "race:^g_slice_alloc0$\n"
           "race:^g_slice_free1$\n";
}
#endif
