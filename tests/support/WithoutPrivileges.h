#pragma once

#include <cstdlib>
#include <unistd.h>

namespace zelto::test {

/// Gives up the right to read and write everywhere, which root has, while it lives.
class WithoutPrivileges {
  public:
    WithoutPrivileges() : m_former(geteuid()) {
        constexpr uid_t NOBODY = 65534;
        if (m_former == 0)
            m_dropped = setresuid(NOBODY, NOBODY, m_former) == 0;
    }
    ~WithoutPrivileges() {
        if (m_dropped && setresuid(m_former, m_former, m_former) != 0)
            std::abort();
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

  private:
    uid_t m_former;
    bool m_dropped = false;
};

} // namespace zelto::test
