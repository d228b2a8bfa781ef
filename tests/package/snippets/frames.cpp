// What the C++ fragments of the documents assume around them. Each line "//@ DOCUMENT: TEXT" is replaced by the
// fragment of that document that holds the text; snippets.py does it, and fails for a fragment that no such line names.
// The program runs all of them: exit status 0 when each has done what its document says.
#include <KV_ScenePane/CutMask.h>
#include <KV_ScenePane/MeshBuffers.h>
#include <KV_ScenePane/PathText.h>
#include <KV_ScenePane/PointFiles.h>
#include <KV_ScenePane/PropertyPage.h>
#include <KV_ScenePane/ScenePane.h>
#include <X11/Xlib.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

std::vector<std::string> errors, warnings;
void ShowError(const std::string& text) { errors.push_back(text); }
void ShowWarning(const std::string& text) { warnings.push_back(text); }

int failures = 0;
void Expect(bool is, const char* what) {
    if (is) return;
    std::fprintf(stderr, "%s; errors:", what);
    for (const std::string& error : errors) std::fprintf(stderr, " \"%s\"", error.c_str());
    std::fputs("\n", stderr);
    ++failures;
}

std::unique_ptr<KV_ScenePane::ScenePane> OffScreenViewer() {
    KV_ScenePane::WindowRequest request;
    std::string reason;
    auto viewer = CreateScenePane(request, &reason);
    if (viewer == nullptr) throw std::runtime_error(reason);
    errors.clear();
    warnings.clear();
    return viewer;
}

std::unique_ptr<KV_ScenePane::ScenePane> ViewerOf(const char* file) {
    auto viewer = OffScreenViewer();
    std::string reason;
    if (!viewer->ImportFile(file, {}, &reason)) throw std::runtime_error(reason);
    viewer->Methods().CenterView();
    return viewer;
}

int VertexCount(KV_ScenePane::ScenePane& viewer, std::int16_t index) {
    std::int32_t vertices = 0, triangles = 0;
    viewer.Methods().GetMeshDataSize(index, &vertices, &triangles);
    return vertices;
}

// ---- the first steps

void Readme(Window myX11Window) {
    //@ README.md: myX11Window
    Expect(pane->Methods().GetNumObjects() == 1, "README.md: no object");
}

void Embedding(Window myX11Window) {
    //@ docs/hosting.md: myX11Window
    Expect(viewer->Methods().GetNumObjects() == 1 && errors.empty(), "hosting.md: no object");
}

void Versions() {
    errors.clear();
    //@ docs/hosting.md: this host needs ImportFile()
    Expect(errors.empty(), "hosting.md: the versions differ");
}

void Samples() {
    errors.clear();
    warnings.clear();
    //@ docs/hosting.md: smoothViewer
    Expect(errors.empty(), "hosting.md: no viewer with samples");
}

// ---- input

struct Pixel {};
struct Clicks {
    int seen = 0;
    std::optional<Pixel> See(const KV_ScenePane::MouseInput& input, double) {
        ++seen;
        return input.kind == KV_ScenePane::MouseInput::Kind::RightUp ? std::optional(Pixel()) : std::nullopt;
    }
};

void Input() {
    const auto viewer = ViewerOf("part.ply");
    Clicks clicks;
    int rightClicks = 0;
    const auto RightClicked = [&](Pixel) { ++rightClicks; };
#define emit
    //@ docs/hosting.md: RightClicked
#undef emit
    float before[3], after[3], rest[7];
    viewer->Methods().GetViewParams(&before[0], &before[1], &before[2], &rest[0], &rest[1], &rest[2], &rest[3],
                                    &rest[4], &rest[5], &rest[6]);
    //@ docs/hosting.md: using KV_ScenePane::MouseInput
    viewer->Methods().GetViewParams(&after[0], &after[1], &after[2], &rest[0], &rest[1], &rest[2], &rest[3], &rest[4],
                                    &rest[5], &rest[6]);
    Expect(clicks.seen == 3, "hosting.md: the filter has not seen three inputs");
    Expect(before[0] != after[0], "hosting.md: the drag has not turned the view");
    mouse.kind = MouseInput::Kind::RightUp;
    viewer->SendMouse(mouse);
    Expect(rightClicks == 1, "hosting.md: no click of the right button");
}

// ---- markers and the clip plane

void Points() {
    const auto viewer = OffScreenViewer();
    std::string reason;
    //@ docs/hosting.md: ReadPointFile
    Expect(id >= 0, "hosting.md: no points");
}

void ClipPlane() {
    const auto viewer = ViewerOf("part.ply");
    //@ docs/hosting.md: SetClipPlaneEnabled(1)
    float center[3], normal[3];
    viewer->Methods().GetClipPlane(&center[0], &center[1], &center[2], &normal[0], &normal[1], &normal[2]);
    Expect(center[2] == 5 && normal[2] == 1, "hosting.md: another plane");
    viewer->Methods().FinalizeKVReg();
}

// ---- cuts

void Cuts() {
    const auto viewer = ViewerOf("part.ply");
    const int whole = VertexCount(*viewer, 0);
    {
        //@ docs/hosting.md: StartSegmentation
        Expect(steps == 0, "hosting.md: there is a cut");
        viewer->Methods().EndSegmentation();
    }
    //@ docs/hosting.md: CutWithLasso
    Expect(errors.empty() && VertexCount(*viewer, 0) < whole, "hosting.md: nothing was cut");
}

bool AskTheUser(const std::vector<std::string>& files) { return files.size() == 1; }
void RefuseToSave(const std::wstring&) { errors.emplace_back("moved"); }
int reports = 0;
void Report(const KV_ScenePane::CutSaveEntry& entry) {
    if (entry.outcome == KV_ScenePane::CutWritten) ++reports;
}

void SaveCuts() {
    const auto viewer = ViewerOf("cut.pcm");
    const KV_ScenePane::LassoPoint corners[] = {{0.2, 0.2}, {0.8, 0.2}, {0.8, 0.8}};
    if (!viewer->CutWithLasso(KV_ScenePane::PolygonInside, corners)) throw std::runtime_error("no cut");
    std::vector<std::string> files;
    const auto save = [&] {
        //@ docs/hosting.md: PlanCutSave()
    };
    save();
    Expect(errors.empty() && reports == 1, "hosting.md: the cut was not saved");
}

struct MaskEvents : KV_ScenePane::_DKV_ScenePaneEvents {
    struct Region {
        int pixels = 0;
        void Add(int, int) { ++pixels; }
    } region;
    //@ docs/hosting.md: void CutMaskApplied
};

void Masks() {
    const auto viewer = ViewerOf("part.ply");
    MaskEvents events;
    viewer->Connect(&events);
    const KV_ScenePane::LassoPoint corners[] = {{0.2, 0.2}, {0.8, 0.2}, {0.8, 0.8}};
    (void)viewer->CutWithLasso(KV_ScenePane::PolygonInside, corners);
    viewer->Connect(nullptr);
    // Half of 0.6 x 0.6 of 640 x 480 pixels.
    Expect(events.region.pixels > 50000 && events.region.pixels < 60000, "hosting.md: another region");
}

// ---- alignment

struct AlignEvents : KV_ScenePane::_DKV_ScenePaneEvents {
    KV_ScenePane::ScenePane* viewer = nullptr;
    int ended = 0, shown = 0;
    void ReportNoTransform() { ++ended; }
    template <typename Transform>
    void ShowTransform(const Transform&) {
        ++shown;
    }
    void ShowResidual(std::size_t, double) {}
    //@ docs/hosting.md: void AlignmentDone
};

void Alignment() {
    const auto viewer = ViewerOf("part.ply");
    AlignEvents events;
    events.viewer = viewer.get();
    viewer->Connect(&events);
    const std::int16_t movingIndex = 0;
    //@ docs/hosting.md: ResetVariableObjects
    viewer->Methods().FinishInteraction();
    Expect(events.ended == 1, "hosting.md: the alignment has not ended");
    viewer->Connect(nullptr);
    //@ docs/hosting.md: AlignByPairs(pairs)
    Expect(errors.size() == 1, "hosting.md: no pair has a transform");
}

// ---- pictures and files

void Screenshot() {
    const auto viewer = ViewerOf("part.ply");
    //@ docs/hosting.md: CaptureScreenShot(pixels.data())
    Expect(width == 2048 && height == 2048 && pixels.front() != 0, "hosting.md: another picture");
}

void OneFile() {
    const auto viewer = OffScreenViewer();
    //@ docs/hosting.md: options.skip
    Expect(errors.empty() && viewer->Methods().GetNumObjects() == 1, "hosting.md: no scan");
}

//@ docs/hosting.md: void ImportAll

void ParallelImport() {
    const auto viewer = OffScreenViewer();
    ImportAll(viewer->Methods(), {L"part.pcm", L"missing.pcm", L"tooth.pcm"});
    Expect(viewer->Methods().GetNumObjects() == 2, "hosting.md: not two scans");
    Expect(errors == std::vector<std::string>{"cannot be opened: No such file or directory"}, "hosting.md: no reason");
}

void Export() {
    const auto source = ViewerOf("part.ply");
    source->Methods().InitializeKVReg();
    source->Methods().ExportMesh(0, L"part.hps");
    source->Methods().FinalizeKVReg();
    const auto viewer = OffScreenViewer();
    std::string reason;
    //@ docs/hosting.md: copy.hps
    Expect(errors.empty() && viewer->ImportFile("copy.hps", {}, &reason), "hosting.md: no copy");
    viewer->Methods().FinalizeKVReg();
}

// ---- properties

struct Settings {
    std::string store;
    std::string Read(const char*) const { return store; }
    void Write(const char*, const std::string& text) { store = text; }
};

void Properties() {
    const auto viewer = OffScreenViewer();
    Settings settings;
    settings.store = viewer->SaveProperties(KV_ScenePane::PropertyFormat::Text);
    viewer->Methods().SetDrawMode(2);
    //@ docs/hosting.md: settings.Read
    Expect(warnings.empty(), "hosting.md: the store was refused");
}

void PropertyPage() {
    const auto viewer = OffScreenViewer();
    int lists = 0, boxes = 0;
    const auto AddList = [&](auto, auto) { ++lists; };
    const auto AddCheckBox = [&](auto) { ++boxes; };
    const auto ShowValues = [](auto&) {};
    //@ docs/hosting.md: CKV_ScenePanePropPage
    Expect(lists > 0 && boxes > 0, "hosting.md: no controls");
}

}  // namespace

int main() {
    Display* const display = XOpenDisplay(nullptr);
    if (display == nullptr) return std::fputs("no X display\n", stderr), 2;
    const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 800, 600, 0, 0, 0);
    XSync(display, False);
    int run = 0;
    const std::function<void()> frames[] = {[&] { Readme(window); },
                                            [&] { Embedding(window); },
                                            Versions,
                                            Samples,
                                            Input,
                                            Points,
                                            ClipPlane,
                                            Cuts,
                                            SaveCuts,
                                            Masks,
                                            Alignment,
                                            Screenshot,
                                            OneFile,
                                            ParallelImport,
                                            Export,
                                            Properties,
                                            PropertyPage};
    for (const auto& frame : frames) {
        try {
            frame();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "frame %d: %s\n", run, error.what());
            ++failures;
        }
        ++run;
    }
    XCloseDisplay(display);
    std::printf("%d fragments\n", run);
    return failures == 0 ? 0 : 1;
}
