#pragma once

#include "inspect/SentCommand.h"

#include <optional>

namespace inspect
{

/// Which commands can follow each other within one run of the uploader. A run works through its
/// operations in their order (erase, write, read, verify), or updates page by page ("-wv"); what
/// fits neither of them belongs to another run.
class RunOrder
{
public:
    /// Takes the next memory command of the run; retries are not taken again. False when the run
    /// cannot have sent it; then another run has begun here at the latest.
    bool take(const SentCommand& command);

    /// The last command was given up. Only the comparison of "-wv" goes on after that.
    void give_up();

private:
    bool take_in_order(const SentCommand& command);
    bool take_page_by_page(const SentCommand& command) const;
    bool takes_page_read(const SentCommand& command) const;
    void remember(const SentCommand& command);

    std::optional<SentCommand> m_last;
    std::optional<SentCommand> m_last_erase;
    std::optional<SentCommand> m_last_flash_write;
    bool m_is_given_up = false; ///< the last command
    bool m_may_be_in_order = true;
    bool m_may_be_page_by_page = true;
};

} // namespace inspect
