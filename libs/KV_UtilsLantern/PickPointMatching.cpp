#include "KV_UtilsLantern/KV_UtilsLantern.h"

int LANDLL_PickPointMatching(int /*count*/, const float* /*sourceXYZ*/, const float* /*targetXYZ*/, float* /*result*/) {
    return -1;
}
