// Name and version of the program, for its messages and for the files that it writes.
#pragma once

inline constexpr char kProgramName[] = "scenepane";
inline constexpr char kProgramVersion[] = "5.5.0";
