// GLib's GMutex is a bare futex on Linux, so ThreadSanitizer never sees it taken. FluidSynth
// guards its process-wide sample cache with one: two synths that load samples on their own
// decode threads then look as if they raced on the cache's list. In the sanitized build these
// wrappers stand in for GLib's (the executable's symbols come first) and tell TSAN what the lock
// orders, so a report about FluidSynth is a real one. FluidSynth never calls g_mutex_trylock.
#if defined(__SANITIZE_THREAD__)
#include <dlfcn.h>

extern "C" {
void __tsan_acquire(void* address);
void __tsan_release(void* address);

void g_mutex_lock(void* mutex) {
    static auto real = reinterpret_cast<void (*)(void*)>(dlsym(RTLD_NEXT, "g_mutex_lock"));
    real(mutex);
    __tsan_acquire(mutex);
}

void g_mutex_unlock(void* mutex) {
    static auto real = reinterpret_cast<void (*)(void*)>(dlsym(RTLD_NEXT, "g_mutex_unlock"));
    __tsan_release(mutex);
    real(mutex);
}
}
#endif
