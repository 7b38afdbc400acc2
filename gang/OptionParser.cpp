#include "gang/OptionParser.h"

#include "gang/ArgumentError.h"

#include <cmath>

namespace gang
{

namespace
{

QString text_of(const char* name)
{
    return QString::fromLatin1(name);
}

} // namespace

OptionParser::OptionParser(const char* description, const std::vector<OptionText>& options,
                           const char* positional, const char* positional_syntax)
{
    m_parser.setApplicationDescription(text_of(description));
    for (const OptionText& option : options) {
        m_parser.addOption({text_of(option.name), text_of(option.text), text_of(option.value)});
    }
    m_parser.addPositionalArgument(text_of(positional), {}, text_of(positional_syntax));
}

void OptionParser::parse(const QStringList& command_line)
{
    if (!m_parser.parse(command_line)) {
        throw ArgumentError(m_parser.errorText());
    }
}

bool OptionParser::has(const char* name) const
{
    return m_parser.isSet(text_of(name));
}

QString OptionParser::value(const char* name, const QString& preset) const
{
    if (!has(name)) {
        return preset;
    }
    QString value = m_parser.value(text_of(name));
    if (value.isEmpty()) {
        throw ArgumentError(QStringLiteral("--%1 needs a value").arg(text_of(name)));
    }
    return value;
}

double OptionParser::number(const char* name, double preset, double lowest, double highest) const
{
    if (!has(name)) {
        return preset;
    }
    bool converted = false;
    const double number = value(name).toDouble(&converted);
    // Negated, so that NaN is refused.
    if (!converted || !(number >= lowest && number <= highest)) {
        throw ArgumentError(
            QStringLiteral("--%1 must be a number from %2 to %3")
                .arg(text_of(name), QString::number(lowest), QString::number(highest, 'f', 0)));
    }
    return number;
}

int OptionParser::whole_number(const char* name, int preset, int lowest, int highest) const
{
    const double value = number(name, preset, lowest, highest);
    if (value != std::floor(value)) {
        throw ArgumentError(QStringLiteral("--%1 must be a whole number").arg(text_of(name)));
    }
    return static_cast<int>(value);
}

} // namespace gang
