// Names and identities of the component and its parts, for hosts that register them or look them up. They never change.
#pragma once
#include <string_view>

namespace KV_ScenePane {

// ---- the type library
inline constexpr std::string_view kTypeLibraryName = "KV_SCENEPANELib";
inline constexpr int kTypeLibraryMajor = 1, kTypeLibraryMinor = 0;
inline constexpr std::string_view kTypeLibraryId = "{3FAC36D0-D252-4BFC-BC1D-528A2D693738}";

// ---- the methods and properties, _DKV_ScenePane
inline constexpr std::string_view kDispatchName = "_DKV_ScenePane";
inline constexpr std::string_view kDispatchHelp = "Dispatch interface for KV_ScenePane Control";
inline constexpr std::string_view kDispatchId = "{49CD63A6-195A-4339-9A41-8E2CF4415AF7}";

// ---- the events, _DKV_ScenePaneEvents
inline constexpr std::string_view kEventsName = "_DKV_ScenePaneEvents";
inline constexpr std::string_view kEventsHelp = "Event interface for KV_ScenePane Control";
inline constexpr std::string_view kEventsId = "{8B559603-64E7-4F67-9A3B-3840F65DA6C9}";

// ---- the viewer
inline constexpr std::string_view kControlName = "KV_ScenePane Control";
inline constexpr std::string_view kControlProgId = "KVSCENEPANE.KVScenePaneCtrl.1";
inline constexpr std::string_view kControlId = "{C65C1197-E1F2-4E7C-A84E-A73E8285A94D}";

// ---- the property page, PropertyPage.h
inline constexpr std::string_view kPropertyPageName = "KV_ScenePane Property Page";
inline constexpr std::string_view kPropertyPageProgId = "KVSCENEPANE.KVScenePanePropPage.1";
inline constexpr std::string_view kPropertyPageId = "{BB176A70-B883-4396-B6C9-8F3C484C5102}";

}  // namespace KV_ScenePane
