// The component registry, which hps files and textures need, is started as long as one of these objects exists.
#pragma once
#include "KV_ScenePane/_DKV_ScenePane.h"

/// Objects nest: the registry counts its starts and ends with the last one.
class RegistryStart {
public:
    /// @param methods  of a viewer that outlives this object
    explicit RegistryStart(KV_ScenePane::_DKV_ScenePane& methods) : m_methods(methods) { m_methods.InitializeKVReg(); }
    ~RegistryStart() { m_methods.FinalizeKVReg(); }
    RegistryStart(const RegistryStart&) = delete;
    RegistryStart& operator=(const RegistryStart&) = delete;

private:
    KV_ScenePane::_DKV_ScenePane& m_methods;
};
