// One line for any exception that a method of the viewer, or a library that it calls, throws.
#include "CaughtError.h"

#include <exception>
#include <new>

#include "MessageTable.h"

std::string TextOfCaughtError() {
    try {
        throw;  // the exception that the caller is handling
    } catch (const std::bad_alloc&) {
        // In place of its own text, which is the name of the class.
        return PlainWords("there is not enough memory");
    } catch (const std::exception& error) {
        const std::string text = PlainLines(error.what());
        return text.empty() ? "an error without a text" : text;
    } catch (...) {
        return "an unknown error";
    }
}
