// Changes of transforms, by object.
#include "TransformLedger.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// The objects of @p before that are elsewhere in @p now.
TransformsById MovedSince(const TransformsById& before, const TransformsById& now) {
    TransformsById moved;
    for (const auto& [id, transform] : before) {
        const auto present = now.find(id);
        if (present != now.end() && !IsSameTransform(transform, present->second)) moved.emplace(id, transform);
    }
    return moved;
}

/// Objects that are in both.
int CountOf(const TransformsById& objects, const TransformsById& present) {
    return static_cast<int>(
        std::ranges::count_if(objects, [&](const auto& entry) { return present.contains(entry.first); }));
}

}  // namespace

bool IsSameTransform(const Matrix4& a, const Matrix4& b) {
    // As the viewer compares a transform with the one of the import. A rotation is stored as a quaternion, and a file
    // writes the translation in a unit of its own: what is read after it was set differs in the last digits.
    constexpr float kMaxRounding = 1e-6f, kMaxTranslationRounding = 0x1p-22f;
    const auto isSame = [](float x, float y) { return x == y || (std::isnan(x) && std::isnan(y)); };
    for (std::size_t i = 0; i < a.size(); ++i) {
        const bool isTranslation = i % 4 == 3;
        const float allowed =
            isTranslation ? kMaxTranslationRounding * std::max(std::abs(a[i]), std::abs(b[i])) : kMaxRounding;
        if (!isSame(a[i], b[i]) && !(std::abs(a[i] - b[i]) < allowed)) return false;
    }
    return true;
}

void TransformLedger::Begin(std::string name, const TransformsById& now) {
    (void)End(now);
    m_open = {std::move(name), now};
    m_isOpen = true;
    Note(now);
}

int TransformLedger::End(const TransformsById& now) {
    if (!m_isOpen) return 0;
    m_isOpen = false;
    Note(now);
    Level level = std::exchange(m_open, {});
    level.before = MovedSince(level.before, m_last);
    const auto count = static_cast<int>(level.before.size());
    if (count > 0) m_levels.push_back(std::move(level));
    return count;
}

void TransformLedger::Note(const TransformsById& now) {
    for (const auto& [id, transform] : now) m_last.insert_or_assign(id, transform);
}

const TransformLedger::Level* TransformLedger::Newest(const TransformsById& present) const {
    for (auto level = m_levels.rbegin(); level != m_levels.rend(); ++level) {
        if (CountOf(level->before, present) > 0) return &*level;
    }
    return nullptr;
}

int TransformLedger::NewestCount(const TransformsById& present) const {
    const Level* const level = Newest(present);
    return level != nullptr ? CountOf(level->before, present) : 0;
}

std::string TransformLedger::NewestName(const TransformsById& present) const {
    const Level* const level = Newest(present);
    return level != nullptr ? level->name : std::string();
}

TransformsById TransformLedger::TakeBack(const TransformsById& present) {
    if (Newest(present) == nullptr) return {};
    TransformsById before;
    do {
        before = std::move(m_levels.back().before);
        m_levels.pop_back();
        Note(before);  // also of deleted objects: the undo of a cut may bring them back
    } while (CountOf(before, present) == 0);
    return before;
}

TransformsById TransformLedger::Misplaced(const TransformsById& restored) const {
    TransformsById misplaced = MovedSince(restored, m_last);
    for (auto& [id, transform] : misplaced) transform = m_last.at(id);
    return misplaced;
}

void TransformLedger::OnFiled(const TransformsById& filed) {
    for (const auto& [id, transform] : filed) m_filed.insert_or_assign(id, transform);
}

bool TransformLedger::IsFiled(int id, const Matrix4& now) const {
    const auto filed = m_filed.find(id);
    return filed != m_filed.end() && IsSameTransform(filed->second, now);
}
