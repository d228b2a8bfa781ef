// Part of every program under the address sanitizer: what its leak check at the end of the process needs.

// Libraries stay loaded until then: the check can neither name nor suppress what a graphics driver left behind when the
// driver has been unloaded.
extern "C" __attribute__((visibility("default"))) int dlclose(void*) noexcept { return 0; }

// The sanitizer takes a thread-local block of a library loaded late for one of glibc 2.19, with a header in front, when
// it lies 16 bytes into a page, reads its own allocation header as that, scans what is not memory, and dies: "Tracer
// caught signal 11", once in some hundred layouts of the heap. Not followed at all, such blocks count as reachable. g++
// 12 has that, and tests/support/LeakCheckTest.cpp passes without the option where it is mended.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "intercept_tls_get_addr=0";
}
