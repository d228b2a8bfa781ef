// A library with thread-local data, for a test that loads it at run time.
namespace {
thread_local char g_value[8];
}

extern "C" __attribute__((visibility("default"))) char* LateThreadLocal() { return g_value; }
