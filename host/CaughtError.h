// What an exception has to say to a user.
#pragma once
#include <string>

/// Of the exception that is being handled, as one line; never empty. To be called inside a catch block only.
[[nodiscard]] std::string TextOfCaughtError();
