#pragma once

#include <cstdlib>
#include <stdexcept>
#include <sys/prctl.h>
#include <unistd.h>

namespace test
{

/// Makes a process of root one of a user without rights as long as it lives: only then can a file
/// be closed to it. A process of anybody else stays as it is.
class OtherUser
{
public:
    OtherUser()
    {
        constexpr uid_t nobody = 65534;
        if (m_is_root && !become(nobody)) {
            throw std::runtime_error("cannot become another user");
        }
    }

    ~OtherUser()
    {
        if (m_is_root && !become(0)) {
            ::_exit(EXIT_FAILURE);
        }
    }

    OtherUser(const OtherUser&) = delete;
    OtherUser& operator=(const OtherUser&) = delete;

private:
    /// A process that changes its user is closed to debuggers, and to the search for leaks, until
    /// it says otherwise.
    static bool become(uid_t user)
    {
        return ::setresuid(user, user, 0) == 0 && ::prctl(PR_SET_DUMPABLE, 1) == 0;
    }

    const bool m_is_root = ::geteuid() == 0;
};

} // namespace test
