// The exported reader of points: reasons instead of exceptions.
#include "KV_ScenePane/PointFiles.h"

#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "io/ByteInput.h"
#include "io/PointFile.h"

namespace KV_ScenePane {
namespace {
bool Refuse(std::string* reason, const char* text) {
    if (reason != nullptr) *reason = text;
    return false;
}
}  // namespace

bool ReadPointFile(const std::string& path, PointCloud* cloud, std::string* reason,
                   const std::function<bool(double)>& progress) {
    try {
        *cloud = ReadPoints(path, progress);
        return true;
    } catch (const FileReadError& error) {
        return Refuse(reason, error.what());
    } catch (const std::bad_alloc&) {
        return Refuse(reason, "not enough memory");
    } catch (const std::length_error&) {
        return Refuse(reason, "not enough memory");
    }
}

}  // namespace KV_ScenePane
