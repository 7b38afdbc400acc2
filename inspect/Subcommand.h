#pragma once

#include "inspect/Report.h"

#include <vector>

namespace inspect
{

class CommandWords;

struct OptionText {
    const char* name;
    const char* value; ///< what follows the option; empty for nothing
    const char* text;
};

/// A subcommand of the program.
struct Subcommand {
    const char* name;
    const char* summary;             ///< for the list of subcommands
    const char* description;         ///< for its own help
    const char* file_syntax;         ///< how its files are written in the help; empty for none
    const char* files;               ///< what its files are
    std::vector<OptionText> options; ///< beside --help, --version and --json
    /// Does the work. Throws UsageError when it cannot even begin.
    Report (*run)(const CommandWords& words);
};

const Subcommand& table_command();
const Subcommand& image_command();
const Subcommand& log_command();
const Subcommand& ports_command();
const Subcommand& plan_command();

/// All of them, in the order of the help.
const std::vector<const Subcommand*>& subcommands();

} // namespace inspect
