// A viewer as the random calls drive it: by the automation table in C++, or by the functions of the C interface.
#pragma once
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "control/AutomationTable.h"
#include "support/ControlFixture.h"

using Event = EventsRecorder::Event;

/// What a call by id gave.
struct Outcome {
    AutomationStatus status = AutomationStatus::Done;
    bool failed = false;  ///< an exception left the method
    std::string text;     ///< of the exception
    AutomationValue result;
};

class Viewer {
public:
    virtual ~Viewer() = default;

    virtual Outcome Invoke(std::int32_t id, std::span<const AutomationValue> arguments) = 0;
    /// Properties by their ids, as 32-bit numbers.
    virtual std::int32_t GetProperty(std::int32_t id) = 0;
    virtual void PutProperty(std::int32_t id, std::int16_t value) = 0;
    virtual void SendMouse(const KV_ScenePane::MouseInput& input) = 0;
    virtual void SendKey(const KV_ScenePane::KeyInput& input) = 0;
    virtual void ProcessEvents() = 0;
    virtual bool HasWindow() = 0;
    virtual bool Cut(std::int16_t mode, const std::vector<KV_ScenePane::LassoPoint>& points) = 0;
    virtual std::int32_t UndoSteps() = 0;
    /// Cuts that each object has had since its last save.
    virtual std::vector<int> CutCounts() = 0;
    /// The control behind it; null where the interface hides it.
    virtual CKV_ScenePaneCtrl* Control() = 0;

    /// The events since the last call.
    virtual std::vector<Event> TakeEvents() = 0;
};

/// @return null, with a failure of the test, when there is no viewer
std::unique_ptr<Viewer> MakeDirectViewer(const KV_ScenePane::WindowRequest& request);
std::unique_ptr<Viewer> MakeCViewer(const KV_ScenePane::WindowRequest& request);
