// Many changes of a scene with one frame after them.
#pragma once
#include "KV_ScenePane/_DKV_ScenePane.h"

/// Holds back the frames of a viewer while it lives; what was requested meanwhile is drawn once at its end. These do
/// not nest: the end of the inner one allows painting again.
class PaintBlock {
public:
    explicit PaintBlock(KV_ScenePane::_DKV_ScenePane& methods) : m_methods(methods) {
        m_methods.BlockPaintEvents(KV_ScenePane::kVariantTrue);
    }
    ~PaintBlock() { m_methods.BlockPaintEvents(KV_ScenePane::kVariantFalse); }
    PaintBlock(const PaintBlock&) = delete;
    PaintBlock& operator=(const PaintBlock&) = delete;

private:
    KV_ScenePane::_DKV_ScenePane& m_methods;
};
