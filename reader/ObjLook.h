// A look at an obj file before the library reads it, which does not say what it leaves out or misreads.
#pragma once
#include <string>
#include <string_view>
#include <vector>

struct ObjLook {
    bool hasFaces = false;
    bool usesMaterials = false;
    std::vector<std::string> materialFiles;  ///< as the file names them
    std::string notFinite;  ///< "line N: ..." of the first coordinate that is not finite; empty without one
};

[[nodiscard]] ObjLook LookAtObj(std::string_view text);
