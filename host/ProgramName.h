// What the program calls itself, to the user and in the files that it writes.
#pragma once

inline constexpr char kProgramName[] = "scenepane";
inline constexpr char kProgramVersion[] = "5.5.0";
