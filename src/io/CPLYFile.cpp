// The header of a ply file: its tokens, and the grammar they make. The data is in PlyDataSection.cpp.
#include "io/CPLYFile.h"
