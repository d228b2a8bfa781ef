// The entry of the program; everything else is Run.h.
#include <iostream>
#include <string_view>
#include <vector>

#include "Run.h"

int main(int argc, char** argv) {
    const std::vector<std::string_view> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return simulate::Run(arguments, std::cout, std::cerr);
}
