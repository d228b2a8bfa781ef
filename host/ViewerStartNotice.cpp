// exit() destroys no object of main() and of what it calls, but calls the functions that are registered for it. The
// line is a literal: the cause is most often that there is no memory left.
#include "ViewerStartNotice.h"

#include <cstdio>
#include <cstdlib>

namespace {

bool g_isStarting = false;

void PrintIfStarting() {
    if (!g_isStarting) return;
    std::fputs(
        "scenepane: there is no viewer: the graphics driver could not make what it draws with, most often for lack of "
        "memory: close other programs (the reason is in viewer.log in the folder for temporary files)\n",
        stderr);
}

}  // namespace

ViewerStartNotice::ViewerStartNotice() {
    static const bool isRegistered = std::atexit(&PrintIfStarting) == 0;
    g_isStarting = isRegistered;
}

ViewerStartNotice::~ViewerStartNotice() { g_isStarting = false; }
