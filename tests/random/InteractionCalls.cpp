// Random cuts, alignments and other contexts; mouse and keys; properties and window events.
#include <array>
#include <cmath>
#include <set>

#include "random/RandomRun.h"

namespace {

using KV_ScenePane::KeyInput;
using KV_ScenePane::MouseInput;
using Corner = std::array<double, 2>;

// ---- the end of a lasso

/// What each object becomes; null where only the viewer knows whether it changes.
struct CutForecast {
    std::vector<ObjectPtr> objects;
    bool isOpen = false, changes = false;
};

CutForecast ForecastCut(Model& model, const ModelLasso& lasso) {
    CutForecast forecast;
    for (const ObjectPtr& object : model.objects) {
        std::vector<Fate> marks;
        const Fate fate = model.hasPicture ? FateOf(*object, lasso, model.view, &marks) : Fate::Stays;
        forecast.isOpen = forecast.isOpen || fate == Fate::Open;
        forecast.changes = forecast.changes || fate == Fate::Goes;
        forecast.objects.push_back(fate == Fate::Stays  ? object
                                   : fate == Fate::Goes ? CutObject(*object, marks, model.cutCount)
                                                        : nullptr);
    }
    return forecast;
}

/// Alignments give a copy the colour of its original back.
void PassColors(Model& model, const ObjectPtr& original, const ObjectPtr& copy) {
    for (ModelDialog& dialog : model.dialogs) {
        const auto isOriginal = [&](const auto& saved) { return saved.first.lock() == original; };
        const auto found = std::ranges::find_if(dialog.savedColors, isOriginal);
        if (found == dialog.savedColors.end()) continue;
        const std::uint32_t color = found->second;
        dialog.savedColors.emplace_back(copy, color);
    }
}

/// Compares the objects after a cut with the forecast, and decides from the viewer what was open.
void TakeCut(RandomRun& run, CutForecast forecast) {
    Model& model = run.model;
    const std::vector<int> cuts = run.viewer->CutCounts();
    run.Require(cuts.size() == model.objects.size(), "a cut has changed the number of objects");
    const std::vector<ObjectPtr> before = model.objects;
    for (std::size_t i = 0; i < cuts.size(); ++i) {
        const auto former = static_cast<int>(before[i]->masks.size());
        ObjectPtr& after = forecast.objects[i];
        if (after == nullptr) {
            run.Require(cuts[i] == former || cuts[i] == former + 1, "an object has lost its cuts");
            after = cuts[i] == former ? before[i] : CutObject(*before[i], {}, model.cutCount);
        }
        run.Require(cuts[i] == static_cast<int>(after->masks.size()),
                    "object " + std::to_string(i) + " of " + std::to_string(before[i]->points.size()) + " points has " +
                        std::to_string(cuts[i]) + " cuts in place of " + std::to_string(after->masks.size()));
        if (after != before[i]) PassColors(model, before[i], after);
    }
    model.undo.push_back(before);
    model.objects = std::move(forecast.objects);
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (model.objects[i] == before[i]) continue;
        run.AdoptObject(i);
        run.Require(model.objects[i]->vertexCount <= before[i]->vertexCount, "a cut has made vertices");
    }
}

/// Events and objects after a cut that has just been made.
void CompareCut(RandomRun& run, const ModelLasso& lasso) {
    Model& model = run.model;
    ++model.cutCount;
    model.session.reset();
    model.LeaveLasso();
    CutForecast forecast = ForecastCut(model, lasso);
    std::vector<Event> events = run.viewer->TakeEvents();
    const std::vector<ExpectedEvent> before = std::exchange(model.events, {});
    run.Require(events.size() > before.size(), "no event of the cut");
    for (std::size_t i = 0; i < before.size(); ++i)
        run.Require(events[i].name == before[i].name && events[i].arguments == before[i].arguments,
                    "another event before the cut");
    events.erase(events.begin(), events.begin() + std::ssize(before));
    const bool changed = events.size() == 2;
    run.Require(changed ? events[0].name == "CutMaskApplied" : events.size() == 1, "other events of a cut");
    run.Require(events.back().name == "SegmentationDone", "no end of the session");
    run.Require(changed || !forecast.changes, "the cut has hit nothing");
    run.Require(!changed || forecast.changes || forecast.isOpen, "the cut has hit something");
    const double count = changed ? static_cast<double>(model.objects.size()) : -1.0;
    run.Require(events.back().arguments[0] == count, "another number of objects");
    if (changed) TakeCut(run, std::move(forecast));
}

ModelLasso PolygonOf(const Model& model) { return {model.cutKind, false, model.plainCorners, model.corners}; }

/// A corner in the middle of no pixel, away from the edges of the window.
Corner SomeCorner(RandomRun& run) {
    const ModelView& view = run.model.view;
    return {run.random.Int(3, std::max(view.width - 4, 4)) + 0.25,
            run.random.Int(3, std::max(view.height - 4, 4)) + 0.25};
}

void CutWithLasso(RandomRun& run) {
    Model& model = run.model;
    if (!model.view.sizeKnown) return;
    const std::int16_t mode = run.random.Short(0, 5);
    std::vector<Corner> corners(static_cast<std::size_t>(run.random.Int(2, mode < 3 ? 6 : 3)));
    for (Corner& corner : corners) corner = SomeCorner(run);
    if (run.random.Chance(0.15))
        corners = {{1.25, 1.25},
                   {model.view.width - 1.75, 1.25},
                   {model.view.width - 1.75, model.view.height - 1.75},
                   {1.25, model.view.height - 1.75}};
    std::vector<KV_ScenePane::LassoPoint> points;
    std::string text = "cut with lasso, mode " + std::to_string(mode) + ":";
    for (const Corner& corner : corners) {
        points.push_back({corner[0] / model.view.width, corner[1] / model.view.height});
        text += " " + std::to_string(corner[0]) + " " + std::to_string(corner[1]) + ",";
    }
    run.BeginCall(text);
    if (model.HasLasso()) model.AbandonLasso();
    const bool hadSession = model.session.has_value();
    model.StartLasso(mode);
    run.viewer->Cut(mode, points);
    ModelLasso lasso{model.cutKind, mode >= 3, model.plainColors && !hadSession, corners};
    if (mode >= 3 && !model.plainColors) {
        // The session may have refused its colours.
        lasso.plain = false;
    }
    CompareCut(run, lasso);
}

// ---- sessions

void StartSegmentation(RandomRun& run) {
    const std::int16_t mode = run.random.Chance(0.85) ? run.random.Short(0, 5) : run.random.WildShort();
    run.model.StartLasso(mode);
    run.Call("StartSegmentation", {mode});
}

void EndSegmentation(RandomRun& run) {
    if (run.model.HasLasso()) run.model.AbandonLasso();
    run.Call("EndSegmentation", {});
}

void SetLassoCuttingColors(RandomRun& run) {
    Random& random = run.random;
    run.model.plainColors = random.Chance(0.7);
    if (run.model.plainColors) {
        run.Call("SetLassoCuttingColors", {0xFF, 0.5f, 0, 0.0f});
        return;
    }
    run.Call("SetLassoCuttingColors", {random.WildInt(), random.WildFloat(), random.WildInt(), random.WildFloat()});
}

// ---- alignments

void AlignInteractive(RandomRun& run) {
    if (run.model.dialogs.size() > 3) return;
    run.model.OpenDialog(6);
    run.Call("AlignInteractive", {});
}

void AlignPickPoints(RandomRun& run) {
    if (run.model.dialogs.size() > 3) return;
    run.model.OpenDialog(7);
    run.Call("AlignPickPoints", {});
}

void FinishInteraction(RandomRun& run) {
    if (run.model.currentDialog) run.model.CloseDialog();
    run.Call("FinishInteraction", {});
}

// ---- another context

void RecreateOpenglContext(RandomRun& run) {
    Model& model = run.model;
    while (!model.dialogs.empty()) model.CloseDialog();
    model.ClearData();
    const bool refused = run.random.Chance(0.15);  // ends the run
    if (refused && model.hasPicture) model.Fire("ReadyStateChange");
    if (model.blocked) model.view.sizeKnown = false;  // the next frame stores the size
    const std::int32_t version = refused ? 99 : 3;
    run.Call("RecreateOpenglContext", {version, 3, run.random.OneOf<std::int32_t>({0, 4})},
             {.result = std::int16_t{-1}});
    run.Require(run.viewer->HasWindow() != (refused && model.hasPicture), "a window in place of none, or none");
}

// ---- keys

void PressKey(RandomRun& run) {
    Model& model = run.model;
    KeyInput key;
    key.nChar =
        run.random.Chance(0.8) ? run.random.OneOf<std::int32_t>({17, 27, 27, 32, 38, 40, 46}) : run.random.WildInt();
    key.nRepCnt = run.random.WildInt();
    key.nFlags = run.random.WildInt();
    key.isDown = run.random.Chance(0.9);
    // Deletes points of an alignment, which the model does not pick.
    run.BeginCall("key " + std::to_string(key.nChar) + (key.isDown ? " down" : " up"));
    if (key.isDown) {
        model.Fire("CustomKeyDown",
                   {static_cast<double>(key.nChar), static_cast<double>(key.nRepCnt), static_cast<double>(key.nFlags)});
        const bool ran = model.animation == Known::Yes, stood = model.animation == Known::No;
        model.animation = Known::No;
        if (key.nChar == 27) {
            if (model.needlePicking) model.DeselectAll();
            if (model.HasLasso()) model.AbandonLasso();
        }
        if (key.nChar == 46 && model.needlePicking) {
            const auto selected = std::ranges::find(model.needles, true, &ModelNeedle::selected);
            if (selected != model.needles.end()) model.DeleteNeedle(selected->id);
        }
        if (key.nChar == 32 && model.spaceStarts && !ran) {
            model.animation = stood ? Known::Yes : Known::Open;
            model.turned = 0;
            if (model.TurnsAnyhow()) model.animation = Known::Open;
        }
        if ((key.nChar == 38 || key.nChar == 40) && model.planeVisible) {
            ++model.planeVersion;
            model.planeKnown =
                model.planeKnown && model.planeNormal[2] > 0.999999;  // else it is no movement along the normal
            model.planeCenter[2] += key.nChar == 38 ? 1 : -1;
        }
        if (key.nChar == 27 && model.currentDialog) model.CloseDialog();
    }
    run.viewer->SendKey(key);
    run.CompareEvents();
}

// ---- mouse

void Send(RandomRun& run, MouseInput::Kind kind, int x, int y, std::uint32_t flags, std::int32_t delta = 0) {
    run.BeginCall("mouse " + std::to_string(static_cast<int>(kind)) + " at " + std::to_string(x) + " " +
                  std::to_string(y) + " flags " + std::to_string(flags) + " delta " + std::to_string(delta));
    run.viewer->SendMouse({kind, flags, x, y, delta});
}

/// Left adds a corner of the lasso, right adds the last one and cuts.
void ClickInLasso(RandomRun& run, bool cuts) {
    Model& model = run.model;
    const int x = run.random.Int(3, std::max(model.view.width - 4, 4)),
              y = run.random.Int(3, std::max(model.view.height - 4, 4));
    model.animation = Known::No;
    const Corner corner{static_cast<double>(x), static_cast<double>(y)};
    if (model.mode == 4) {
        model.corners.push_back(corner);
    } else if (model.session) {
        model.session->corners.push_back(corner);
        if (model.session->corners.size() > 3) model.session->plain = false;  // its lines may cross
    } else if (!cuts && model.lassoTextures) {
        model.session = ModelLasso{model.cutKind, true, model.plainColors, {corner}};
        model.lassoTextures = false;
    }
    Send(run, cuts ? MouseInput::Kind::RightDown : MouseInput::Kind::LeftDown, x, y, cuts ? 2 : 1);
    if (!cuts) {
        // Colours that a session refuses leave it without a lasso.
        if (model.mode == 10 && model.session && !model.plainColors) {
            run.CompareEvents();
            if (run.viewer->Control()->m_pCutSession == nullptr) model.session.reset();
        }
    } else if (model.mode == 4 && model.corners.size() >= 2) {
        CompareCut(run, PolygonOf(model));
    } else if (model.mode == 10 && model.session) {
        ModelLasso lasso = *model.session;
        lasso.kind = model.cutKind;
        CompareCut(run, lasso);
    } else {
        model.AbandonLasso();
    }
    run.CompareEvents();
    Send(run, cuts ? MouseInput::Kind::RightUp : MouseInput::Kind::LeftUp, x, y, 0);
    run.CompareEvents();
}

/// Moves the view with the right button: one pixel of the mouse is one pixel of the picture.
void Pan(RandomRun& run) {
    Model& model = run.model;
    ModelView& view = model.view;
    const int x = run.random.Int(0, view.width - 1), y = run.random.Int(0, view.height - 1);
    const int dx = run.random.Int(-20, 20), dy = run.random.Int(-20, 20);
    Send(run, MouseInput::Kind::RightDown, x, y, 2);
    model.animation = Known::No;
    run.CompareEvents();
    Send(run, MouseInput::Kind::Move, x + dx, y + dy, 2);
    if (model.allowMouse == 1) {
        const double unit = 2 * view.HalfWidth() / view.width;
        view.center = view.center - dx * unit * view.right + dy * unit * view.up;
        if (model.tracing) model.Fire("ViewDirectionChanged", {view.toViewer[0], view.toViewer[1], view.toViewer[2]});
        if (!view.axesKnown && model.tracing) model.events.back().arguments = {kAnything, kAnything, kAnything};
    }
    run.CompareEvents();
    Send(run, MouseInput::Kind::RightUp, x + dx, y + dy, 0);
    run.CompareEvents();
}

/// Rotates the view: where to is not known, but the directions stay perpendicular.
void Rotate(RandomRun& run) {
    Model& model = run.model;
    const int x = run.random.Int(0, 90), y = run.random.Int(0, 60);
    Send(run, MouseInput::Kind::LeftDown, x, y, 1);
    model.animation = Known::No;
    run.CompareEvents();
    for (int i = run.random.Int(0, 3); i > 0; --i) {
        Send(run, MouseInput::Kind::Move, run.random.Int(-20, 150), run.random.Int(-20, 150), 1);
        if (model.allowMouse != 1) continue;
        model.view.axesKnown = model.view.centerKnown = false;
        if (model.tracing) model.Fire("ViewDirectionChanged", {kAnything, kAnything, kAnything});
    }
    run.CompareEvents();
    Send(run, MouseInput::Kind::LeftUp, x, y, 0);
    run.CompareEvents();
}

void Wheel(RandomRun& run) {
    Model& model = run.model;
    const std::int32_t delta =
        run.random.Chance(0.8) ? run.random.OneOf<std::int32_t>({120, -120, 240, 1}) : run.random.WildInt();
    if (model.allowMouse == 1 && !model.HasLasso()) {
        const double travel = static_cast<double>(delta / 2) * (model.igd != 0 ? 1 : -1);
        // At a limit the rounding decides whether a step is made.
        const auto isAtLimit = [&] {
            return std::abs(model.view.zoom - 0.1) < 1e-3 || std::abs(model.view.zoom - 10) < 1e-3;
        };
        bool atLimit = isAtLimit();
        double factor = std::abs(travel) / 500 + 1;
        if (-travel > 0) factor = 1 / factor;
        if ((factor >= 1 && model.view.zoom > 0.1) || (factor < 1 && model.view.zoom < 10)) model.view.zoom /= factor;
        atLimit = atLimit || isAtLimit();
        model.view.zoomKnown = model.view.zoomKnown && !atLimit && model.view.zoom > 1e-3 && model.view.zoom < 1e3;
    }
    Send(run, MouseInput::Kind::Wheel, 10, 10, 0, delta);
    run.CompareEvents();
}

void UseMouse(RandomRun& run) {
    Model& model = run.model;
    if (run.random.Chance(0.2)) return Wheel(run);
    // A press in the delayed scheme waits; a needle, a handle of the plane and a pick depend on what is drawn.
    if (model.igd != 0 || !model.view.sizeKnown) return;
    if (model.HasLasso()) return ClickInLasso(run, run.random.Chance(0.35));
    if (model.mode != 0 || model.needlePicking || model.planeVisible || model.currentDialog) return;
    if (model.flip == 0 && model.view.sceneSizeKnown && model.view.zoomKnown && model.view.centerKnown &&
        model.view.axesKnown && run.random.Chance(0.7))
        return Pan(run);
    if (model.flip == 0) Rotate(run);
}

// ---- properties and window events

void UseProperties(RandomRun& run) {
    Model& model = run.model;
    struct Property {
        std::int32_t id;
        std::int32_t Model::*value;
    };
    constexpr Property kProperties[] = {{1, &Model::drawMosaic}, {2, &Model::drawMode}, {3, &Model::moveReduced}};
    const Property property = kProperties[run.random.Index(3)];
    const std::int16_t value = run.random.Chance(0.7) ? run.random.Short(0, 7) : run.random.WildShort();
    run.Act("property " + std::to_string(property.id) + " = " + std::to_string(value), [&] {
        run.viewer->PutProperty(property.id, value);
        const bool isMode = property.id == 2;
        model.*property.value = isMode ? value : value != 0 ? -1 : 0;
    });
}

void ProcessEvents(RandomRun& run) {
    run.Act("process events", [&] { run.viewer->ProcessEvents(); });
}

constexpr CallRow kRows[] = {{"StartSegmentation", 1.5, StartSegmentation},
                             {"EndSegmentation", 0.5, EndSegmentation},
                             {"SetLassoCuttingColors", 0.4, SetLassoCuttingColors},
                             {"AlignInteractive", 0.5, AlignInteractive},
                             {"AlignPickPoints", 0.5, AlignPickPoints},
                             {"FinishInteraction", 0.8, FinishInteraction},
                             {"RecreateOpenglContext", 0.02, RecreateOpenglContext}};

constexpr CallRow kOtherSteps[] = {{"(cut with a lasso)", 3, CutWithLasso},
                                   {"(key)", 2, PressKey},
                                   {"(mouse)", 8, UseMouse},
                                   {"(property)", 1, UseProperties},
                                   {"(process events)", 3, ProcessEvents}};

}  // namespace

std::span<const CallRow> InteractionCalls() { return kRows; }
std::span<const CallRow> OtherSteps() { return kOtherSteps; }
