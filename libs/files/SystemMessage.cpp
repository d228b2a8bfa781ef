// The untranslated texts of the C library.
#include "files/SystemMessage.h"

#include <cstring>

namespace FileStorage {

std::string SystemMessage(int error) {
    const char* const text = ::strerrordesc_np(error);
    return text == nullptr ? "Unknown error " + std::to_string(error) : text;
}

namespace {

class Category final : public std::error_category {
public:
    [[nodiscard]] const char* name() const noexcept override { return "system"; }
    [[nodiscard]] std::string message(int error) const override { return SystemMessage(error); }
    [[nodiscard]] std::error_condition default_error_condition(int error) const noexcept override {
        return {error, std::generic_category()};
    }
};

}  // namespace

const std::error_category& SystemErrors() {
    static const Category category;
    return category;
}

}  // namespace FileStorage
