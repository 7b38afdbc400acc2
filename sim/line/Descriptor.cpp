#include "sim/line/Descriptor.h"

#include <unistd.h>
#include <utility>

namespace sim
{

Descriptor::Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    if (this != &other) {
        close();
        m_number = std::exchange(other.m_number, -1);
    }
    return *this;
}

void Descriptor::close()
{
    if (is_open()) {
        ::close(std::exchange(m_number, -1));
    }
}

} // namespace sim
