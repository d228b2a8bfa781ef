// The text of an exception, for a user.
#pragma once
#include <string>

/// The text of the exception that is being handled, as one line; never empty. Must be called inside a catch block.
[[nodiscard]] std::string TextOfCaughtError();
