#pragma once

namespace sim
{

/// How a command that was run on the port ended.
struct CommandEnd {
    enum class Kind { Exited, Killed, NotStarted };

    Kind kind = Kind::NotStarted;
    int number = 0; ///< its exit status, or the number of the signal that killed it

    bool is_good() const { return kind == Kind::Exited && number == 0; }
};

} // namespace sim
