#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

namespace sim
{

/// The program's command line, split according to the table of its options.
class OptionParser
{
public:
    /// Throws Error for an unknown option or a missing value.
    explicit OptionParser(const QStringList& command_line);

    bool has(const char* name) const { return m_parser.isSet(QString::fromLatin1(name)); }

    /// The option's value, the last one given; the preset without the option. Throws Error
    /// when it is empty.
    QString value(const char* name, const QString& preset = QString()) const;
    /// All values given, in their order.
    QStringList values(const char* name) const;

    /// The words that are neither options nor their values.
    QStringList rest() const { return m_parser.positionalArguments(); }

    QString help_text() const { return m_parser.helpText(); }

private:
    QCommandLineParser m_parser;
};

} // namespace sim
