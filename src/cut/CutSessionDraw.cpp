// A freehand lasso: its textures and its drawing.
#include <GL/glew.h>

#include "cut/CutSession.h"

CutMaskTextures::~CutMaskTextures() = default;

void CutSession::Draw(bool /*withFill*/) {}
