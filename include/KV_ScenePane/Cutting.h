// Cuts by lasso and their way back into the measurement files.
#pragma once
#include <cstdint>
#include <string>

namespace KV_ScenePane {

/// The ways to cut: StartSegmentation(). A polygon is drawn by clicks; a freehand lasso by drags and clicks.
enum SegmentationMode : std::int16_t {
    /// Removes what lies outside the lasso.
    PolygonOutside = 0,
    /// Removes what lies inside the lasso, also what is hidden there.
    PolygonInside = 1,
    /// Removes what is visible inside the lasso.
    PolygonVisible = 2,
    FreehandOutside = 3,
    FreehandInside = 4,
    FreehandVisible = 5
};

/// A corner of a lasso: fractions of the drawing area, 0 to 1, y downward.
struct LassoPoint {
    double x = 0.0, y = 0.0;
};

/// What SaveCuttingToPcms() did with an object, or would do.
enum CutSaveOutcome : std::int32_t {
    /// Its file is written by the next save.
    CutToBeWritten = 0,
    /// Its file has the cuts.
    CutWritten = 1,
    /// It has no cut, and no plane clips or a save with this plane has been tried.
    CutNothingToSave = 2,
    /// It has cuts, or a plane clips, but it is not from a pcm file.
    CutNotFromPcm = 3,
    /// Its file could not be read: nothing was written.
    CutFileNotRead = 4,
    /// Its file could not be written and is as before.
    CutFileNotWritten = 5
};

/// One object in a save of cuts.
struct CutSaveEntry {
    /// Index of the object when the entry was made. Above 32,767 it wraps: entries are in the order of the objects.
    std::int16_t object = -1;
    CutSaveOutcome outcome = CutNothingToSave;
    /// The file that it came from, encoded as WidePath() (PathText.h) does.
    std::wstring file;
    /// Why the file was not read or not written, as a sentence without its subject; else empty.
    std::string reason;
    /// Cuts by lasso that the object had before the save; a plane does not count. Afterwards it has none, also when its
    /// file was not read or not written; it keeps them when memory was short between the read and the write.
    int numberOfCuts = 0;
    /// The object has another transform than at its import, by more than the rounding of files, GetTrafoOfScan() and
    /// SetTrafoOfScan(): a plane, and cuts drawn since, would remove other pixels of the file than the window shows.
    bool isMoved = false;
    /// One of the cuts that are not in the file was drawn while the object had another transform than at its import,
    /// also when the move was taken back since: pixels of the file would be removed that are not those that the lasso
    /// enclosed.
    bool isCutWhileMoved = false;
    /// The file was written and has no valid pixel any more: it cannot be opened as an object.
    bool isNothingLeft = false;
};

}  // namespace KV_ScenePane
