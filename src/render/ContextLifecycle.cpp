// Creation of the OpenGL context on the control's window, the message that the user sees when it fails, and the
// destruction. The log lines are the same for every window system and requested version: support searches for them.
#include <GL/glew.h>

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

#include "base/DebugOutput.h"
#include "control/ScenePaneCtrl.h"
#include "log/Log.h"

namespace {

/// Logs one of two texts, a missing feature as an error.
void LogAvailability(bool found, const char* foundText, const char* missingText) {
    if (found)
        Log(LogLevel::Info) << foundText << std::endl;
    else
        Log(LogLevel::Error) << missingText << std::endl;
}

/// What every frame relies on and no frame sets: materials, global ambient light, two-sided lighting.
void SetInitialGlState() {
    const auto material = [](GLenum face, GLenum name, GLfloat r, GLfloat g, GLfloat b) {
        const GLfloat values[4] = {r, g, b, 1.0f};
        glMaterialfv(face, name, values);
    };
    material(GL_FRONT, GL_DIFFUSE, 0.1f, 0.1f, 0.1f);
    material(GL_FRONT, GL_AMBIENT, 0.3f, 0.3f, 0.3f);
    material(GL_FRONT, GL_SPECULAR, 0.0f, 0.0f, 0.0f);
    glMateriali(GL_FRONT, GL_SHININESS, 64);
    material(GL_BACK, GL_DIFFUSE, 0.3f, 0.3f, 0.3f);
    material(GL_BACK, GL_AMBIENT, 0.1f, 0.2f, 0.1f);
    const GLfloat ambient[4] = {0.3f, 0.3f, 0.3f, 1.0f};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
    glClearDepth(1.0);
    glEnable(GL_MULTISAMPLE);
}

/// What the user sees when no context can be created.
std::string FailureMessage(bool formatValid, std::int32_t major, std::int32_t minor) {
    std::string text = "OpenGL context could not be created. ";
    if (formatValid) text += "Requested version: " + std::to_string(major) + "." + std::to_string(minor);
    return text +
           "\n\nThe 3D viewer could not be initialized. Possibly the wrong graphics card is used, the currently "
           "connected graphics card is deactivated in the Windows device manager or the correct driver is missing.";
}

/// A pixel format of the window, as its system numbers it.
struct ChosenFormat {
    std::int32_t index = 0;
    bool valid = false;
};

ChosenFormat ChooseFormat(PaneWindow& window, std::int32_t samples) {
    PixelFormatAttributes attributes;
    attributes.sampleBuffers = samples > 0 ? 1 : 0;
    attributes.samples = samples;
    ChosenFormat chosen;
    chosen.valid = window.ChoosePixelFormat(attributes, &chosen.index);
    return chosen;
}

/// @param numbers  at most 8
/// @return such as "2, 4 and 8 are", "4 is", "none are"
std::string WhichAre(const std::vector<std::int32_t>& numbers) {
    if (numbers.empty()) return "none are";
    std::string text;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0) text += i + 1 == numbers.size() ? " and " : ", ";
        text += std::to_string(numbers[i]);
    }
    return text += numbers.size() == 1 ? " is" : " are";
}

/// Why the samples of the request were left out. Needs the context of the bootstrap.
std::string SamplesRemark(PaneWindow& window, std::int32_t wanted) {
    std::vector<std::int32_t> offered;
    for (const std::int32_t samples : {2, 4, 6, 8, 12, 16, 24, 32})
        if (ChooseFormat(window, samples).valid) offered.push_back(samples);
    return std::to_string(wanted) + " samples per pixel are not offered by the driver: " + WhichAre(offered);
}

/// @param report  of the bootstrap, which knows the driver's version
std::string VersionRemark(const BootstrapReport& report, std::int32_t major, std::int32_t minor) {
    if (report.major == 0) return {};
    const auto text = [](std::int32_t first, std::int32_t second) {
        return std::to_string(first) + "." + std::to_string(second);
    };
    const std::string offered = text(report.major, report.minor);
    if (!report.version33) return "OpenGL 3.3 is not offered by the driver: it has " + offered;
    return "OpenGL " + text(major, minor) + " is not offered by the driver: request 3.3 to " + offered;
}

/// Asks for a format with the samples per pixel that the control wants, 0 for none; sets them to 0 when they are
/// optional and the driver has no such format. The query needs a context, so that the window makes a temporary one; it
/// is deleted afterwards.
/// @param report  receives what the temporary context found
ChosenFormat FindPixelFormat(CKV_ScenePaneCtrl& control, BootstrapReport& report) {
    PaneWindow& window = *control.m_pWindow;
    report = window.BeginBootstrap({control.m_nGlMajorVersion, control.m_nGlMinorVersion});
    if (!report.contextMade) {
        Log(LogLevel::Error) << "Error setting temporary pixel format " << report.formatNumber << std::endl;
        window.EndBootstrap();
        return {};
    }
    LogAvailability(report.entryPointsLoaded, "Init glew successfull", "Init glew failed");
    LogAvailability(report.pixelFormatExtension, "WGL_ARB_pixel_format found.", "WGL_ARB_pixel_format not found.");
    LogAvailability(report.createContextExtension, "WGL_ARB_create_context found. ",
                    "WGL_ARB_create_context not found. ");
    LogAvailability(report.version33, "Opengl 3.3 supported.", "Opengl 3.3 not supported.");
    if (report.entryPointsLoaded && !report.version33) control.m_strContextRemark = VersionRemark(report, 3, 3);

    ChosenFormat chosen;
    if (report.entryPointsLoaded && report.pixelFormatExtension && report.createContextExtension && report.version33) {
        Log(LogLevel::Debug) << "calling wglChoosePixelFormatARB" << std::endl;
        chosen = ChooseFormat(window, control.m_nGlSamples);
        if (!chosen.valid && control.m_bSamplesOptional && control.m_nGlSamples > 0) {
            control.m_strContextRemark = SamplesRemark(window, control.m_nGlSamples);
            control.m_nGlSamples = 0;
            chosen = ChooseFormat(window, 0);
        }
        if (!chosen.valid) Log(LogLevel::Error) << "No valid pixel format!" << std::endl;
        // That there is such a format decides whether the samples can be had. They are those of the framebuffer of
        // frames (FrameTarget): the window shows their mean, and samples of its own would only be copied and resolved
        // again.
        if (chosen.valid && control.m_nGlSamples > 0)
            if (const ChosenFormat plain = ChooseFormat(window, 0); plain.valid) chosen = plain;
    }
    window.EndBootstrap();
    return chosen;
}

/// Creates the context in the version that the control asks for, makes it current and fills it with what lives as long
/// as it does: programs, framebuffers, fonts, overlay textures.
/// @return false when there is no such context; the log then holds the reason
/// @param report  of the bootstrap
bool CreateRenderContext(CKV_ScenePaneCtrl& control, std::int32_t format, const BootstrapReport& report) {
    DelayedDebugOutput delayed;  // a sink may call any viewer, which would make its context current
    Log(LogLevel::Debug) << "Getting new device context + HDC" << std::endl;
    control.m_pDC = control.m_pWindow.get();
    if (!control.m_pDC->SetPixelFormat(format)) {
        Log(LogLevel::Error) << "Error setting pixel format " << format << std::endl;
        return false;
    }
    if (!control.m_pDC->CreateContext({control.m_nGlMajorVersion, control.m_nGlMinorVersion})) {
        Log(LogLevel::Error) << "Failed to create Opengl 3.3 context. " << std::endl;
        control.m_strContextRemark = VersionRemark(report, control.m_nGlMajorVersion, control.m_nGlMinorVersion);
        return false;
    }
    control.m_hRC = control.m_pDC->ContextHandle();
    Log(LogLevel::Info) << "Opengl 3.3 context created." << std::endl;
    if (!control.MakeContextCurrent()) return false;
    control.InitFramebuffers();
    control.m_nFontListBase = glGenLists(kBoldListCount);
    control.ApplyScale();
    SetInitialGlState();
    control.UploadOverlays();
    for (const TexturePixels& pixels : std::exchange(control.m_vTexturesWithoutContext, {})) PutIntoContext(pixels);
    return true;
}

/// The last alignment that the end of the window has still to end; null when all have ended. One whose AlignmentDone is
/// firing has no window any more: it removes itself after its handler.
CInteractionDlg* NextToEnd(const CKV_ScenePaneCtrl& control) {
    const auto& dialogs = control.m_vInteractionDlgs;
    const auto last = std::find_if(dialogs.rbegin(), dialogs.rend(),
                                   [](const auto& dialog) { return dialog->m_bEndsWithWindow && dialog->HasWindow(); });
    return last == dialogs.rend() ? nullptr : last->get();
}

/// Ends every alignment, the last one first, so that each gives back the colours that it found. One that a handler
/// starts meanwhile stays open: this would not end for a handler that starts one each time.
/// @return what the first handler has thrown
std::exception_ptr EndAlignments(CKV_ScenePaneCtrl& control) {
    std::exception_ptr failure;  // the others end all the same
    for (const auto& dialog : control.m_vInteractionDlgs) dialog->m_bEndsWithWindow = true;
    // Looked up again each time: handlers may end other alignments, which deletes them.
    while (CInteractionDlg* const dialog = NextToEnd(control)) {
        try {
            dialog->Finish();
        } catch (...) {
            if (failure == nullptr) failure = std::current_exception();
        }
    }
    return failure;
}

/// The objects of cuts whose event runs have no list that ClearData() empties: they outlive the context.
void TakePendingCutsOutOfContext(CKV_ScenePaneCtrl& control) {
    if (!control.MakeContextCurrent()) return;
    for (const PendingCut* cut = control.m_pPendingCut; cut != nullptr; cut = cut->m_pOuter)
        for (const auto& mesh : cut->m_vpMeshes) {
            mesh->ReleaseBuffers();
            mesh->MarkBuffersDirty();
            if (mesh->m_pTexture != nullptr) TakeOutOfContext(mesh->m_pTexture, control.m_vTexturesWithoutContext);
        }
}

/// Drops what belonged to a context that is gone. Its names may be those of other objects in the next context.
void ForgetContext(CKV_ScenePaneCtrl& control) {
    for (Overlay& overlay : control.m_vOverlays) overlay.m_uTexture = 0;
    for (auto& [id, points] : control.m_mapFreePoints) points.isContextGone = true;
    control.m_frameTarget.Forget();
    control.m_idTarget.Forget();
    control.m_viewMatrices.Forget();
    control.m_hRC = nullptr;
    control.m_pDC = nullptr;
}

}  // namespace

int CKV_ScenePaneCtrl::OnCreate() {
    if (m_bClosed) return -1;  // destroyed by the host while the former window was closed
    ForgetContext(*this);      // of a creation that was broken off by an exception
    Log(LogLevel::Info) << "Create temporary ogl context" << std::endl;
    m_strContextRemark.clear();
    BootstrapReport report;
    const ChosenFormat format = FindPixelFormat(*this, report);
    const bool created = format.valid && CreateRenderContext(*this, format.index, report);
    GLint alphaBits = 0;
    if (created) glGetIntegerv(GL_ALPHA_BITS, &alphaBits);
    Log(LogLevel::Info) << "Alphabits: " << alphaBits << std::endl;
    if (created) {
        m_nWidth = m_nHeight = -1;  // so that the first frame sets viewport and matrices of the new context
        RefreshControl();
        return 0;
    }
    // One log line in three parts, flushed as a whole so that no other thread's comes between; then the message box.
    Log(LogLevel::Error) << "Failed to create opengl context. ";
    if (format.valid) Log(LogLevel::Error) << "No OGL 3.3 context possible! ";
    Log(LogLevel::Error) << "Using wrong graphic card?" << std::endl;
    ForgetContext(*this);  // of an attempt that came that far
    m_pWindow->ShowModalMessage(FailureMessage(format.valid, m_nGlMajorVersion, m_nGlMinorVersion));
    return -1;
}

void CKV_ScenePaneCtrl::OnDestroy() {
    const std::exception_ptr failure = EndAlignments(*this);  // the rest is done all the same
    TakePendingCutsOutOfContext(*this);
    ClearData();
    m_pWindow->DeleteContext();
    ForgetContext(*this);
    if (failure != nullptr) std::rethrow_exception(failure);
}

// The window calls OnDestroy() and OnCreate(), which use the stored version and number of samples.
CKV_ScenePaneCtrl::VARIANT_BOOL CKV_ScenePaneCtrl::RecreateOpenglContext(std::int32_t majorVersion,
                                                                         std::int32_t minorVersion,
                                                                         std::int32_t numberOfSamples) {
    m_nGlMajorVersion = majorVersion;
    m_nGlMinorVersion = minorVersion;
    m_nGlSamples = numberOfSamples;
    m_bSamplesOptional = false;
    if (m_bRecreating) return KV_ScenePane::kVariantTrue;  // the running one ends with the values that it finds
    m_bRecreating = true;
    try {
        if (m_pWindow->Recreate()) RestartDispatchTimer();
    } catch (...) {
        m_bRecreating = false;
        ReportReadyState();
        throw;
    }
    m_bRecreating = false;
    ReportReadyState();
    return KV_ScenePane::kVariantTrue;
}
