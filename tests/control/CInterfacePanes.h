// Viewers of the C interface for tests.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <utility>

#include "KV_ScenePane/kv_scenepane.h"

inline kv_window_request Request(std::int32_t kind) {
    kv_window_request request;
    kv_window_request_init(&request);
    request.kind = kind;
    request.width = 100, request.height = 80;
    return request;
}

/// A viewer that ends with its scope, unless the test has destroyed it.
class Pane {
public:
    explicit Pane(const kv_window_request& request) : m_pane(kv_create(&request)) {
        if (m_pane == nullptr) throw std::runtime_error(kv_last_error());
    }
    explicit Pane(std::int32_t kind) : Pane(Request(kind)) {}
    ~Pane() { kv_destroy(m_pane); }
    Pane(const Pane&) = delete;
    Pane& operator=(const Pane&) = delete;

    operator kv_pane*() const { return m_pane; }
    void Destroy() { kv_destroy(std::exchange(m_pane, nullptr)); }

private:
    kv_pane* m_pane;
};

/// Passes every event to a function, which returns what the callback returns.
using Handler = std::function<std::int32_t(std::int32_t id)>;
inline void ConnectHandler(kv_pane* pane, Handler& handler) {
    kv_connect(
        pane,
        [](void* user, std::int32_t id, const kv_value*, std::size_t) { return (*static_cast<Handler*>(user))(id); },
        &handler);
}
