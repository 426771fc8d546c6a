// A library that wants to be told before it goes.
namespace {
int* g_cleanups = nullptr;
}

extern "C" {
__attribute__((visibility("default"))) void dyna_first_count(int* cleanups) { g_cleanups = cleanups; }
__attribute__((visibility("default"))) void dyna_first_cleanup() {
    if (g_cleanups) ++*g_cleanups;
}
}
