#include "sim/faults/FaultKind.h"

#include <QStringList>

namespace sim
{

const char* name_of(FaultKind kind)
{
    switch (kind) {
    case FaultKind::LoseRequest:
        return "lose-request";
    case FaultKind::CorruptRequest:
        return "corrupt-request";
    case FaultKind::AlterRequest:
        return "alter-request";
    case FaultKind::PhantomWrite:
        return "phantom-write";
    case FaultKind::HalfWrite:
        return "half-write";
    case FaultKind::WrongAck:
        return "wrong-ack";
    case FaultKind::PowerLoss:
        return "power-loss";
    case FaultKind::Unplug:
        return "unplug";
    case FaultKind::StuckBits:
        return "stuck-bits";
    case FaultKind::LoseResponse:
        return "lose-response";
    case FaultKind::AlterResponse:
        return "alter-response";
    case FaultKind::CorruptResponse:
        return "corrupt-response";
    case FaultKind::TruncateResponse:
        return "truncate-response";
    case FaultKind::DelayResponse:
        return "delay-response";
    case FaultKind::DuplicateResponse:
        return "duplicate-response";
    case FaultKind::Noise:
        return "noise";
    case FaultKind::RequestBytes:
        return "request-bytes";
    case FaultKind::ResponseBytes:
        break;
    }
    return "response-bytes";
}

std::optional<FaultKind> fault_kind_named(const QString& name)
{
    for (const FaultKind kind : fault_kinds) {
        if (name == QLatin1String(name_of(kind))) {
            return kind;
        }
    }
    return std::nullopt;
}

QString fault_kind_list()
{
    QStringList names;
    for (const FaultKind kind : fault_kinds) {
        names.append(QString::fromLatin1(name_of(kind)));
    }
    return names.join(QStringLiteral(", "));
}

bool hits_bytes(FaultKind kind)
{
    return kind == FaultKind::RequestBytes || kind == FaultKind::ResponseBytes;
}

} // namespace sim
