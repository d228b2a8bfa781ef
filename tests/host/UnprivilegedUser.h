// File permissions do not apply to root. A test of them gives up the rights of root for a moment.
#pragma once
#include <unistd.h>

/// While it exists, a process of root has the rights of user 65534, which is nobody. Any other process is unchanged.
class UnprivilegedUser {
public:
    // Real and effective user: access() checks the real one, open() the effective one. The saved one stays root.
    UnprivilegedUser() : m_bIsRoot(geteuid() == 0), m_bChanged(m_bIsRoot && setresuid(65534, 65534, 0) == 0) {}
    ~UnprivilegedUser() {
        if (m_bChanged && setresuid(0, 0, 0) != 0) _exit(1);  // no later test may run with other rights
    }
    UnprivilegedUser(const UnprivilegedUser&) = delete;
    UnprivilegedUser& operator=(const UnprivilegedUser&) = delete;

    /// False in a process of root that may not change its user.
    [[nodiscard]] bool HasEffect() const { return !m_bIsRoot || m_bChanged; }

private:
    const bool m_bIsRoot, m_bChanged;
};
