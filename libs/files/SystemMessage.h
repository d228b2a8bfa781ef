// The texts of the system's error numbers. strerror() and std::generic_category() translate them into the language of
// the process's locale; reasons must be the same in all of them.
#pragma once
#include <string>
#include <system_error>

namespace FileStorage {

/// "No such file or directory" for ENOENT; "Unknown error N" for a number that the system does not have.
[[nodiscard]] std::string SystemMessage(int error);

/// The category of errno for std::system_error, with the texts of SystemMessage(). Its codes compare equal to the
/// values of std::errc like those of std::generic_category().
[[nodiscard]] const std::error_category& SystemErrors();

}  // namespace FileStorage
