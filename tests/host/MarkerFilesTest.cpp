#include "MarkerFiles.h"

#include <gtest/gtest.h>

namespace {}
