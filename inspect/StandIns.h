#pragma once

#include "sim/line/Descriptor.h"

#include <QString>

#include <vector>

namespace inspect
{

/// Files in memory in place of those that a command line names. A stand-in begins with what the
/// file holds, and with nothing when there is none; what is written to it never gets to the file.
/// Two names of one file have one stand-in.
class StandIns
{
public:
    /// The name of the stand-in; nothing for nothing. Throws UsageError when the system gives none
    /// or the file cannot be read.
    QString stand_in_for(const QString& name);

    /// A text in which stand-ins have the names of their files again.
    QString with_files(QString text) const;

private:
    struct StandIn {
        QString file;
        sim::Descriptor descriptor;

        QString name() const;
    };

    void fill(const StandIn& stand_in) const;

    std::vector<StandIn> m_stand_ins;
};

} // namespace inspect
