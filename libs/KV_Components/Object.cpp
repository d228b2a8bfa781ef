// Reference counts, and the three operations of every object.
#include "Object.h"

namespace KvComponents {

namespace {
std::atomic<std::int32_t> g_liveCount{0};

// The operations of every object, as entries of its tables.
std::int32_t Query(Object* object, const char* guid, Object** out) {
    if (out == nullptr) return kInvalidArgument;
    *out = nullptr;
    if (guid == nullptr) return kInvalidArgument;
    Component& owner = *static_cast<Interface*>(object)->m_pOwner;
    Interface* const found = owner.FindInterface(guid);
    if (found == nullptr) return kNoInterface;
    owner.AddReference();
    *out = found;
    return kSucceeded;
}

void AddReference(Object* object) { static_cast<Interface*>(object)->m_pOwner->AddReference(); }

void Release(Object* object) { static_cast<Interface*>(object)->m_pOwner->Release(); }

std::int32_t NotImplemented(Object*) { return kNotImplemented; }

template <class Function>
Object::Entry AsEntry(Function function) {
    return reinterpret_cast<Object::Entry>(function);
}
}  // namespace

Component::Component() { ++g_liveCount; }

Component::~Component() { --g_liveCount; }

void Component::AddReference() { ++m_iReferences; }

void Component::Release() {
    if (--m_iReferences == 0) delete this;
}

std::int32_t Component::LiveCount() { return g_liveCount; }

OperationTable::OperationTable() {
    m_entries.fill(AsEntry(&NotImplemented));
    m_entries[kQuery.m_uPosition] = AsEntry(&Query);
    m_entries[kAddReference.m_uPosition] = AsEntry(&AddReference);
    m_entries[kRelease.m_uPosition] = AsEntry(&Release);
}

}  // namespace KvComponents
