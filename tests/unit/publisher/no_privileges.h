#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>

namespace vorthmere::publish::testing {

/// While it lives, the process has the rights of an ordinary account.
class NoPrivileges {
public:
    NoPrivileges() {
        if (account_ == 0 && seteuid(kNobody) != 0) throw std::runtime_error("the account cannot be changed");
    }
    ~NoPrivileges() {
        EXPECT_EQ(seteuid(account_), 0);
    }
    NoPrivileges(const NoPrivileges&) = delete;
    NoPrivileges& operator=(const NoPrivileges&) = delete;

private:
    static constexpr uid_t kNobody = 65534;
    const uid_t account_ = geteuid();
};

}  // namespace vorthmere::publish::testing
