#pragma once

#include <csignal>
#include <stdexcept>
#include <sys/resource.h>

namespace test
{

/// Lets no file of this process grow beyond a size as long as it lives: for a writer, the disk
/// is full.
class SmallDisk
{
public:
    explicit SmallDisk(rlim_t largest_file)
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{largest_file, m_before.rlim_max};
        Action ignore{};
        ignore.sa_handler = SIG_IGN;
        if (sigaction(SIGXFSZ, &ignore, &m_handler) != 0 || setrlimit(RLIMIT_FSIZE, &limit) != 0) {
            throw std::runtime_error("cannot limit the size of files");
        }
    }

    ~SmallDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        sigaction(SIGXFSZ, &m_handler, nullptr);
    }

    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    using Action = struct sigaction;

    rlimit m_before{};
    Action m_handler{};
};

} // namespace test
