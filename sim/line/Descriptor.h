#pragma once

namespace sim
{

/// A file descriptor that is closed with its owner.
class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}

    ~Descriptor() { close(); }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;

    int get() const { return m_number; }

    bool is_open() const { return m_number >= 0; }

    void close();

private:
    int m_number = -1;
};

} // namespace sim
