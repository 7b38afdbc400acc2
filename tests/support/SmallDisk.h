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
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        if (m_handler == SIG_ERR || setrlimit(RLIMIT_FSIZE, &limit) != 0) {
            throw std::runtime_error("cannot limit the size of files");
        }
    }

    ~SmallDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        static_cast<void>(std::signal(SIGXFSZ, m_handler));
    }

    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int) = nullptr;
};

} // namespace test
