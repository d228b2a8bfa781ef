// The entry of generate-bindings; everything else is Generator.h.
#include <iostream>
#include <string_view>
#include <vector>

#include "Generator.h"

int main(int argc, char** argv) {
    const std::vector<std::string_view> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return bindings::Run(arguments, std::cout, std::cerr);
}
