// The events of the viewer as text, for the log that a user reads.
#pragma once
#include <cstdint>
#include <string>

#include "KV_ScenePane/_DKV_ScenePaneEvents.h"

/// Turns each event into one line: its name, then its arguments by name, as in "NeedleCreated(id = 3)". A derived class
/// that overrides an event must call the method of this class too, or the event has no line.
class EventFormatter : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    void ReadyStateChange() override;
    void SelectViewDirection(float px, float py, float pz, float vx, float vy, float vz) override;
    void SelectObjCoords(std::int16_t idx, float px, float py, float pz, std::int32_t shiftModifiers,
                         std::int32_t mouseX, std::int32_t mouseY) override;
    void SegmentationDone(std::int16_t numObj) override;
    void ViewDirectionChanged(float vx, float vy, float vz) override;
    void AlignmentDone() override;
    void NeedleCreated(std::int32_t id) override;
    void NeedleSelected(std::int32_t id) override;
    void NeedleDeleted(std::int32_t id) override;
    void NeedleDeselected(std::int32_t id) override;
    void CustomKeyDown(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) override;
    void PickPointCountChanged(std::int32_t newCount) override;
    void CutMaskApplied(std::int64_t addr) override;

protected:
    ~EventFormatter() = default;

private:
    /// Called for each event, during the call or the input that caused it. @param line  without a line feed
    virtual void ReportLine(const std::string& line) = 0;
};
