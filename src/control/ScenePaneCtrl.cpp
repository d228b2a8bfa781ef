// Construction, destruction, repaint requests, and what the host's handle passes on beside the automation methods.
#include "control/ScenePaneCtrl.h"

#include <GL/glew.h>
//
#include <GL/glu.h>
#include <unistd.h>

#include <cassert>
#include <utility>

#include "base/ScopeExit.h"
#include "io/PropExchange.h"
#include "render/MeshDraw.h"

std::recursive_mutex* g_drawLock = nullptr;

namespace {

void CreateDrawLockOnce() {
    static std::once_flag created;
    std::call_once(created, [] { g_drawLock = new std::recursive_mutex; });  // never deleted: it outlives all controls
}

}  // namespace

CKV_ScenePaneCtrl::CKV_ScenePaneCtrl(std::unique_ptr<PaneWindow> window) {
    assert(window != nullptr);
    m_pWindow = std::move(window);
    m_nCreatorThreadId = static_cast<std::uint32_t>(gettid());
    ConnectMouseHandlers();
    StartValueExchange startValues;
    DoPropExchange(startValues);
    m_clipPlane.SetCenter({0.0, 0.0, 10.0});
    m_pQuadric = gluNewQuadric();
    m_pQuadric2 = gluNewQuadric();
    CreateDrawLockOnce();
    InstallMeshDrawing();
}

CKV_ScenePaneCtrl::~CKV_ScenePaneCtrl() {
    m_pWindow->Destroy();
    // Without a window this leaves no context current: what the members delete must not be names of another control.
    MakeContextCurrent();
    gluDeleteQuadric(m_pQuadric);
    gluDeleteQuadric(m_pQuadric2);
    // Programs, framebuffers, textures and free points were deleted with the context of the window.
}

bool CKV_ScenePaneCtrl::CreateControlWindow(std::string* reason) {
    const bool created = m_pWindow->Create(*this, reason);
    m_nReadyState = GetReadyState();  // no event: a host connects to a viewer that is there
    return created;
}

bool CKV_ScenePaneCtrl::MakeContextCurrent() { return m_pWindow->MakeCurrent(); }

void CKV_ScenePaneCtrl::RefreshControl() { m_pWindow->Refresh(); }

void CKV_ScenePaneCtrl::InvalidateControl(bool erase) { m_pWindow->Invalidate(erase); }

void CKV_ScenePaneCtrl::Connect(KV_ScenePane::_DKV_ScenePaneEvents* events) { m_pEvents = events; }

int CKV_ScenePaneCtrl::EventDescriptor() const { return m_pWindow->EventDescriptor(); }

// A handler that throws leaves the report to the next call, for which the window stays readable.
void CKV_ScenePaneCtrl::ProcessEvents() {
    m_pWindow->ProcessEvents();
    ReportReadyState();
}

void CKV_ScenePaneCtrl::ReportReadyState() {
    if (m_bRecreating || GetReadyState() == m_nReadyState) return;
    m_nReadyState = GetReadyState();
    Fire(&KV_ScenePane::_DKV_ScenePaneEvents::ReadyStateChange);
}

bool CKV_ScenePaneCtrl::HasWindow() const { return m_pWindow->Exists(); }

std::uintptr_t CKV_ScenePaneCtrl::NativeWindow() const { return m_pWindow->NativeHandle(); }

bool CKV_ScenePaneCtrl::Reparent(std::uintptr_t parent, int x, int y) { return m_pWindow->Reparent(parent, x, y); }

// A handler of an input may send another input: a frame that is deferred is drawn before that, as for queued input.
void CKV_ScenePaneCtrl::SendMouse(const KV_ScenePane::MouseInput& input) {
    m_pWindow->DrawDeferredFrame();
    OnMouse(input);
}

void CKV_ScenePaneCtrl::SendKey(const KV_ScenePane::KeyInput& input) {
    m_pWindow->DrawDeferredFrame();
    OnKey(input);
}

bool CKV_ScenePaneCtrl::GetObjectInfo(std::int16_t idx, KV_ScenePane::ObjectInfo* info) {
    const Mesh* mesh = ObjectAt(idx);
    if (mesh == nullptr) return false;
    info->name = mesh->m_sName;
    info->hasVertexColors = mesh->m_bHasVertexColors;
    return true;
}

bool CKV_ScenePaneCtrl::GetGraphicsInfo(KV_ScenePane::GraphicsInfo* info) {
    if (!MakeContextCurrent()) return false;
    const auto text = [](GLenum name) {
        const GLubyte* const bytes = glGetString(name);
        return bytes == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(bytes));
    };
    *info = {m_pWindow->DeviceName(), text(GL_RENDERER), text(GL_VENDOR), text(GL_VERSION)};
    return true;
}

bool CKV_ScenePaneCtrl::CapturePicture(KV_ScenePane::Picture* picture) {
    if (!MakeContextCurrent()) return false;
    picture->pixels.clear();
    m_pCapture = picture;
    const ScopeExit reset([this] { m_pCapture = nullptr; });  // no later frame writes to a picture that is gone
    RefreshControl();
    return !picture->pixels.empty();
}

void CKV_ScenePaneCtrl::CloseForHost() {
    m_bClosed = true;
    m_pEvents = nullptr;
    m_pMouseFilter.reset();
}
