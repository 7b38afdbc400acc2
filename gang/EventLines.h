#pragma once

#include "gang/Display.h"
#include "gang/EventOutput.h"

namespace gang
{

/// Prints a line of text for each event.
class EventLines : public Display
{
public:
    void started(const RunStates& states, int run) override;

    void changed(const RunStates&, int) override {}

    void failed_try(const RunStates& states, int run) override;
    void ended(const RunStates& states, int run, const RunRecord& record) override;
    void summed_up(const RunStates& states, const Tally& tally) override;

private:
    void print(const QString& line);

    EventOutput m_out;
};

/// Returns the line for a run that has ended, such as "ttyUSB0: ok, 12.3 s, version 0x0110".
QString line_of(const QString& port_name, const RunRecord& record);

} // namespace gang
