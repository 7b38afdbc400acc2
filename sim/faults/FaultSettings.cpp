#include "sim/faults/FaultSettings.h"

#include "sim/device/Error.h"

#include <QRegularExpression>
#include <QStringList>

namespace sim
{

namespace
{

constexpr int longest_delay_ms = 600000;

/// What the user wrote, split into words but not yet interpreted.
struct Words {
    QString kind;
    QStringList parameters;
    QChar trigger; ///< '=' or '@', null without one
    QString when;
};

Words words_of(const QString& text)
{
    const int at = text.indexOf(QRegularExpression(QStringLiteral("[=@]")));
    QStringList parts = text.left(at).split(QLatin1Char(':'));
    Words words;
    words.kind = parts.takeFirst();
    words.parameters = parts;
    if (at >= 0) {
        words.trigger = text.at(at);
        words.when = text.mid(at + 1);
    }
    return words;
}

FaultKind kind_of(const Words& words)
{
    const std::optional<FaultKind> kind = fault_kind_named(words.kind);
    if (!kind) {
        throw Error(QStringLiteral("unknown kind of fault '%1'; the kinds are %2")
                        .arg(words.kind, fault_kind_list()));
    }
    return *kind;
}

unsigned int number_in(const QString& text, unsigned int lowest, unsigned int highest)
{
    bool converted = false;
    const bool hexadecimal = text.startsWith(QLatin1String("0x"));
    const unsigned int number = text.toUInt(&converted, hexadecimal ? 16 : 10);
    if (!converted || number < lowest || number > highest) {
        throw Error(QStringLiteral("'%1' is not a number from %2 to %3")
                        .arg(text, QString::number(lowest), QString::number(highest)));
    }
    return number;
}

Chance chance_of(const QString& text)
{
    bool converted = false;
    const double probability = text.toDouble(&converted);
    if (!converted || !(probability >= 0 && probability <= 1)) {
        throw Error(QStringLiteral("'%1' is not a probability from 0 to 1").arg(text));
    }
    return Chance(probability);
}

void expect_parameters(const Words& words, int count, const char* form)
{
    if (words.parameters.size() != count) {
        throw Error(
            QStringLiteral("%1 must have the form %2").arg(words.kind, QString::fromLatin1(form)));
    }
}

StuckBits stuck_bits_of(const Words& words)
{
    expect_parameters(words, words.trigger.isNull() ? 3 : -1, "stuck-bits:ADDRESS:MASK:LEVEL");
    StuckBits bits;
    bits.address = number_in(words.parameters.at(0), 0, 0xFFFFFFFFU);
    bits.mask = static_cast<unsigned char>(number_in(words.parameters.at(1), 1, 0xFF));
    bits.level = number_in(words.parameters.at(2), 0, 1) == 1;
    return bits;
}

Chance byte_chance_of(const Words& words)
{
    expect_parameters(words, words.trigger == QLatin1Char('=') ? 0 : -1, "KIND=P");
    return chance_of(words.when);
}

void set_trigger(FaultRule& rule, const Words& words)
{
    if (words.trigger.isNull()) {
        throw Error(QStringLiteral("it does not say when: write KIND=P with a probability, or "
                                   "KIND@N[,N...] with the numbers of commands"));
    }
    if (words.trigger == QLatin1Char('=')) {
        rule.chance = chance_of(words.when);
        return;
    }
    for (const QString& number : words.when.split(QLatin1Char(','))) {
        rule.commands.insert(number_in(number, 1, 0xFFFFFFFFU));
    }
}

FaultRule rule_of(FaultKind kind, const Words& words)
{
    FaultRule rule;
    rule.kind = kind;
    if (kind == FaultKind::DelayResponse) {
        expect_parameters(words, 1, "delay-response:MS=P or delay-response:MS@N[,N...]");
        rule.delay_ms = static_cast<int>(number_in(words.parameters.first(), 0, longest_delay_ms));
    } else {
        expect_parameters(words, 0, "KIND=P or KIND@N[,N...]");
    }
    set_trigger(rule, words);
    return rule;
}

} // namespace

void add_fault(FaultSettings& settings, const QString& text)
{
    const Words words = words_of(text);
    const FaultKind kind = kind_of(words);
    if (kind == FaultKind::StuckBits) {
        settings.stuck_bits.push_back(stuck_bits_of(words));
    } else if (kind == FaultKind::RequestBytes) {
        settings.request_bytes = byte_chance_of(words);
    } else if (kind == FaultKind::ResponseBytes) {
        settings.response_bytes = byte_chance_of(words);
    } else {
        settings.rules.push_back(rule_of(kind, words));
    }
}

} // namespace sim
