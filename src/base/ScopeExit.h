// Work that a scope owes at its end, whichever way it is left.
#pragma once
#include <utility>

/// Calls a function at the end of its scope, also when an exception leaves it. The function must not throw.
template <typename Function>
class ScopeExit {
public:
    explicit ScopeExit(Function function) : m_function(std::move(function)) {}
    ~ScopeExit() { m_function(); }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;

private:
    Function m_function;
};
