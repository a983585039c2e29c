// GLib's GMutex is a bare futex on Linux, so ThreadSanitizer never sees it taken. FluidSynth
// guards its process-wide sample cache with one: two synths that load samples on their own
// decode threads then look as if they raced on the cache's list. In the sanitized build these
// wrappers stand in for GLib's lock calls (the executable's symbols come first) and tell TSAN
// what the lock orders, so a report about FluidSynth is a real one.
#if defined(__SANITIZE_THREAD__)

#include <dlfcn.h>

extern "C" {
void __tsan_acquire(void* address);
void __tsan_release(void* address);
}

namespace {

template <typename Function> Function realGlib(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

void g_mutex_lock(void* mutex) {
    static auto real = realGlib<void (*)(void*)>("g_mutex_lock");
    real(mutex);
    __tsan_acquire(mutex);
}

int g_mutex_trylock(void* mutex) {
    static auto real = realGlib<int (*)(void*)>("g_mutex_trylock");
    int taken = real(mutex);
    if (taken)
        __tsan_acquire(mutex);
    return taken;
}

void g_mutex_unlock(void* mutex) {
    static auto real = realGlib<void (*)(void*)>("g_mutex_unlock");
    __tsan_release(mutex);
    real(mutex);
}

} // extern "C"

#endif
