// The methods of the clip plane.
#include <gtest/gtest.h>
