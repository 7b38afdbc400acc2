#pragma once

#include "sim/line/PortLock.h"

#include <QString>
#include <gtest/gtest.h>

#include <array>
#include <pty.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace test
{

/// A line whose far end reads nothing: sent bytes stay in its buffer until that is full.
class StalledLine
{
public:
    /// A number that is free again may still be locked by the host that had it before; such lines
    /// are held until the end.
    StalledLine()
    {
        do {
            open_another();
        } while (sim::has_port_lock(port_path()));
    }

    ~StalledLine() { unplug(); }

    StalledLine(const StalledLine&) = delete;
    StalledLine& operator=(const StalledLine&) = delete;

    QString port_path() const
    {
        std::array<char, 64> name{};
        EXPECT_EQ(::ttyname_r(m_descriptors.back(), name.data(), name.size()), 0);
        return QString::fromLocal8Bit(name.data());
    }

    /// Removes the line with everything that is on it.
    void unplug()
    {
        for (const int descriptor : m_descriptors) {
            ::close(descriptor);
        }
        m_descriptors.clear();
    }

private:
    void open_another()
    {
        termios raw{};
        ::cfmakeraw(&raw);
        int master = -1;
        int slave = -1;
        ASSERT_EQ(::openpty(&master, &slave, nullptr, &raw, nullptr), 0);
        m_descriptors.insert(m_descriptors.end(), {master, slave});
    }

    std::vector<int> m_descriptors;
};

} // namespace test
