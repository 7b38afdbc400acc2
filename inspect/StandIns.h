#pragma once

#include "sim/line/Descriptor.h"

#include <QString>

#include <vector>

namespace inspect
{

/// Files in memory in place of those that a command line names; what is written to one never gets
/// to the file. Two names of one file have one stand-in.
class StandIns
{
public:
    /// The name of a stand-in that begins with what the file holds, and with nothing when there is
    /// none; nothing for nothing. Throws UsageError when the system gives none or the file cannot
    /// be read.
    QString copy_of(const QString& name);

    /// The same for a file whose contents do not matter: it begins with nothing, unless the file
    /// has a stand-in already.
    QString empty_for(const QString& name);

    /// A text in which stand-ins have the names of their files again.
    QString with_files(QString text) const;

private:
    struct StandIn {
        QString file;
        sim::Descriptor descriptor;

        QString name() const;
    };

    const StandIn* find(const QString& name) const;
    const StandIn& add(const QString& name);
    static void fill(const StandIn& stand_in);

    std::vector<StandIn> m_stand_ins;
};

} // namespace inspect
