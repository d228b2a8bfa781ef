// The keys of the settings file and their start values.
#include "Settings.h"

#include <QSettings>

namespace {
constexpr const char* kSmoothEdges = "view/smoothEdges";

QSettings Stored() { return QSettings("scenepane", "scenepane"); }
}  // namespace

bool HasSmoothEdges() { return Stored().value(kSmoothEdges, true).toBool(); }

void SetSmoothEdges(bool on) { Stored().setValue(kSmoothEdges, on); }
