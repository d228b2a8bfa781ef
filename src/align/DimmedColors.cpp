#include "align/DimmedColors.h"

void DimmedColors::Dim(const std::shared_ptr<Mesh>& /*mesh*/) {}

void DimmedColors::Restore() { m_vSavedColors.clear(); }
