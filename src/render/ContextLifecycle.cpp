// How the OpenGL context comes up on the control's window, what a failure tells the user, and the tear-down.
// The log lines keep the words that support people search for, whatever the window system and the requested version.
#include <GL/glew.h>

#include <span>
#include <string>

#include "control/ScenePaneCtrl.h"
#include "log/Log.h"
#include "platform/Fonts.h"

namespace {

void LogFound(bool found, const char* foundText, const char* missingText) {
    if (found)
        Log(LogLevel::Info) << foundText << std::endl;
    else
        Log(LogLevel::Error) << missingText << std::endl;
}

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

/// The first of 96 lists, for the characters from the blank on; they draw nothing where there is no font.
GLuint MakeBoldLists() {
    constexpr std::size_t kFirst = ' ', kCount = 96;
    const GLuint base = glGenLists(kCount);
    const GlyphSet bold = RasterizeFont({.family = "Courier New", .weight = 700, .height = -16});
    if (!bold.IsEmpty()) CompileGlyphs(base, std::span(bold.glyphs).subspan(kFirst, kCount));
    return base;
}

std::string FailureMessage(bool formatValid, std::int32_t major, std::int32_t minor) {
    std::string text = "OpenGL context could not be created. ";
    if (formatValid) text += "Requested version: " + std::to_string(major) + "." + std::to_string(minor);
    return text +
           "\n\nThe 3D viewer could not be initialized. Possibly the wrong graphics card is used, the currently "
           "connected graphics card is deactivated in the Windows device manager or the correct driver is missing.";
}

}  // namespace

int CKV_ScenePaneCtrl::OnCreate() {
    Log(LogLevel::Info) << "Create temporary ogl context" << std::endl;
    const ChosenFormat format = FindPixelFormat(m_nGlSamples);
    const bool created = format.valid && CreateRenderContext(format.index, m_nGlMajorVersion, m_nGlMinorVersion);
    GLint alphaBits = 0;
    if (created) glGetIntegerv(GL_ALPHA_BITS, &alphaBits);
    Log(LogLevel::Info) << "Alphabits: " << alphaBits << std::endl;
    if (created) {
        m_nWidth = m_nHeight = -1;  // a new context has neither viewport nor matrices: its first frame sets both
        RefreshControl();
        return 0;
    }
    Log(LogLevel::Error) << "Failed to create opengl context. " << std::flush;
    if (format.valid) Log(LogLevel::Error) << "No OGL 3.3 context possible! " << std::flush;
    Log(LogLevel::Error) << "Using wrong graphic card?" << std::endl;
    m_pWindow->ShowModalMessage(FailureMessage(format.valid, m_nGlMajorVersion, m_nGlMinorVersion));
    return -1;
}

CKV_ScenePaneCtrl::ChosenFormat CKV_ScenePaneCtrl::FindPixelFormat(std::int32_t samples) {
    const BootstrapReport report = m_pWindow->BeginBootstrap();
    if (!report.contextMade) {
        Log(LogLevel::Error) << "Error setting temporary pixel format " << report.formatNumber << std::endl;
        m_pWindow->EndBootstrap();
        return {};
    }
    LogFound(report.entryPointsLoaded, "Init glew successfull", "Init glew failed");
    LogFound(report.pixelFormatExtension, "WGL_ARB_pixel_format found.", "WGL_ARB_pixel_format not found.");
    LogFound(report.createContextExtension, "WGL_ARB_create_context found. ", "WGL_ARB_create_context not found. ");
    LogFound(report.version33, "Opengl 3.3 supported.", "Opengl 3.3 not supported.");

    ChosenFormat chosen;
    if (report.entryPointsLoaded && report.pixelFormatExtension && report.createContextExtension && report.version33) {
        Log(LogLevel::Debug) << "calling wglChoosePixelFormatARB" << std::endl;
        PixelFormatAttributes attributes;
        attributes.sampleBuffers = samples > 0 ? 1 : 0;
        attributes.samples = samples;
        chosen.valid = m_pWindow->ChoosePixelFormat(attributes, &chosen.index);
        if (!chosen.valid) Log(LogLevel::Error) << "No valid pixel format!" << std::endl;
    }
    m_pWindow->EndBootstrap();
    return chosen;
}

bool CKV_ScenePaneCtrl::CreateRenderContext(std::int32_t format, std::int32_t major, std::int32_t minor) {
    Log(LogLevel::Debug) << "Getting new device context + HDC" << std::endl;
    m_pDC = m_pWindow.get();
    if (!m_pDC->SetPixelFormat(format)) {
        Log(LogLevel::Error) << "Error setting pixel format " << format << std::endl;
        return false;
    }
    if (!m_pDC->CreateContext({major, minor})) {
        Log(LogLevel::Error) << "Failed to create Opengl 3.3 context. " << std::endl;
        return false;
    }
    m_hRC = m_pDC->ContextHandle();
    Log(LogLevel::Info) << "Opengl 3.3 context created." << std::endl;
    if (!MakeContextCurrent()) return false;
    InitFramebuffers();
    m_textDraw.CreateFonts(RasterizeFont);
    m_nFontListBase = MakeBoldLists();
    SetInitialGlState();
    UploadOverlays();
    return true;
}

void CKV_ScenePaneCtrl::OnDestroy() {
    if (m_pInteractionDlg != nullptr) m_pInteractionDlg->Finish();
    ClearData();
    // The textures go with the context, and the next one gives their names to others until it has the images again.
    for (Overlay& overlay : m_vOverlays) overlay.m_uTexture = 0;
    m_pWindow->DeleteContext();
    m_hRC = nullptr;
    m_pDC = nullptr;
}

CKV_ScenePaneCtrl::VARIANT_BOOL CKV_ScenePaneCtrl::RecreateOpenglContext(std::int32_t majorVersion,
                                                                         std::int32_t minorVersion,
                                                                         std::int32_t numberOfSamples) {
    m_nGlMajorVersion = majorVersion;
    m_nGlMinorVersion = minorVersion;
    m_nGlSamples = numberOfSamples;
    m_pWindow->Recreate();
    return KV_ScenePane::kVariantTrue;
}
