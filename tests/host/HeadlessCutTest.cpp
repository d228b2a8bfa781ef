// --cut, --save-cuts and --export: the whole runs without a window.
#include <gtest/gtest.h>
