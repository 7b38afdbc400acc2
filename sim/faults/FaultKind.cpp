#include "sim/faults/FaultKind.h"

namespace sim
{

const char* name_of(FaultKind kind)
{
    return name_in(fault_kinds, kind);
}

std::optional<FaultKind> fault_kind_named(const QString& name)
{
    return find_in(fault_kinds, name);
}

QString form_of(FaultKind kind)
{
    QString name = QString::fromLatin1(name_of(kind));
    switch (kind) {
    case FaultKind::StuckBits:
        return name + QStringLiteral(":ADDRESS:MASK:LEVEL");
    case FaultKind::DelayResponse:
        return name + QStringLiteral(":MS");
    default:
        return name;
    }
}

QString fault_kind_list()
{
    return names_in(fault_kinds);
}

bool hits_bytes(FaultKind kind)
{
    return kind == FaultKind::RequestBytes || kind == FaultKind::ResponseBytes;
}

} // namespace sim
