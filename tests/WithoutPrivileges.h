#pragma once

#include <system_error>
#include <unistd.h>

/// While it lives, permissions count for this process: root, who ignores them, is nobody. Other
/// users stay who they are.
class WithoutPrivileges {
public:
    WithoutPrivileges() { become(nobody); }
    ~WithoutPrivileges() { static_cast<void>(seteuid(before_)); }
    WithoutPrivileges(const WithoutPrivileges &) = delete;
    WithoutPrivileges &operator=(const WithoutPrivileges &) = delete;

private:
    static constexpr uid_t nobody = 65534;

    void become(uid_t user) const {
        if (before_ == 0 && seteuid(user) != 0)
            throw std::system_error(errno, std::generic_category(), "seteuid");
    }

    uid_t before_ = geteuid();
};
