#pragma once

#include "gang/Display.h"
#include "gang/EventOutput.h"

#include <QJsonObject>

namespace gang
{

/// Prints a line of JSON for each event: "start", "progress" (in steps of ten percent), "retry",
/// "end" with all keys of the record, and "summary".
class EventJson : public Display
{
public:
    void started(const RunStates& states, int run) override;
    void changed(const RunStates& states, int run) override;
    void failed_try(const RunStates& states, int run) override;
    void ended(const RunStates& states, int run, const RunRecord& record) override;
    void summed_up(const RunStates& states, const Tally& tally) override;

private:
    void print(const char* event, QJsonObject fields);

    EventOutput m_out;
    QMap<int, QString> m_shown; ///< last progress printed for each run
};

} // namespace gang
