// An import has worked when the viewer's list has grown; why not, its exception and the debugger output tell.
#include "FileImport.h"

#include "CaughtError.h"
#include "DebugCapture.h"
#include "KV_ScenePane/PathText.h"
#include "SceneFile.h"

void ApplySettings(KV_ScenePane::_DKV_ScenePane& methods, const ImportSettings& settings) {
    methods.SetScanSkipVal(settings.skip);
    methods.SetConfidenceFilter(settings.confidence);
}

ImportResult ImportFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file, std::int32_t color) {
    if (std::string reason = WhyNoSceneFile(file); !reason.empty()) return {ImportResult::State::Failed, reason};
    const std::wstring path = KV_ScenePane::WidePath(file);
    const std::int16_t before = methods.GetNumObjects();
    const DebugCapture capture;
    std::string thrown;
    try {
        if (KindOfFile(file) == FileKind::Mesh)
            methods.ImportMesh(path.c_str());
        else
            methods.ImportScan(path.c_str(), color);
    } catch (...) {
        thrown = TextOfCaughtError();
    }
    if (methods.GetNumObjects() == before) return {ImportResult::State::Failed, ReasonOf(file, capture.Text(), thrown)};
    return {ImportResult::State::Added, TextAbout(file, capture.Text(), thrown)};
}

void FitView(KV_ScenePane::_DKV_ScenePane& methods, float zoom) {
    methods.CenterView();
    if (zoom == 1.0f) return;
    float right[3], up[3], center[3], fitted = 0.0f;
    methods.GetViewParams(&right[0], &right[1], &right[2], &up[0], &up[1], &up[2], &center[0], &center[1], &center[2],
                          &fitted);
    methods.SetViewParams(right[0], right[1], right[2], up[0], up[1], up[2], center[0], center[1], center[2], zoom, 0);
}
