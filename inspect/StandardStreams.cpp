#include "inspect/StandardStreams.h"

#include "inspect/ExitStatus.h"
#include "util/Platform.h"

namespace inspect
{

using Platform::StandardStream;
using Platform::WriteOutcome;

bool standard_output_shows_colour()
{
    return Platform::is_terminal(StandardStream::Output) && qEnvironmentVariableIsEmpty("NO_COLOR");
}

int print(const Outcome& outcome)
{
    Platform::write_all(StandardStream::Error, outcome.err);
    switch (Platform::write_all(StandardStream::Output, outcome.out)) {
    case WriteOutcome::Complete:
        return outcome.status;
    case WriteOutcome::Failed:
        Platform::write_all(StandardStream::Error,
                            "zserial-inspect: cannot write to standard output\n");
        break;
    case WriteOutcome::ReaderGone: // a pager that was closed, for example: not an error
        break;
    }
    return ExitCannot;
}

} // namespace inspect
