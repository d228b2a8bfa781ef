// What signals do that end the program, or would.
#pragma once

/// From now on SIGINT, SIGTERM and SIGHUP remove the files that the program is writing, and then end it as before;
/// those that are ignored, as SIGHUP below nohup, stay ignored. A file that would exceed the size limit of the user is
/// an error of the write, with a reason, and no end of the program (SIGXFSZ). Call it once, at the start of main().
void HandleInterruptSignals();
