#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <vector>

namespace gang
{

struct OptionText {
    const char* name;
    const char* value; ///< what follows the option; empty for nothing
    const char* text;
};

/// Reads the words of a command line by a table of options.
class OptionParser
{
public:
    OptionParser(const char* description, const std::vector<OptionText>& options,
                 const char* positional, const char* positional_syntax);

    /// Throws ArgumentError for what it does not know.
    void parse(const QStringList& command_line);

    bool has(const char* name) const;
    /// Throws ArgumentError if the option is there without a value.
    QString value(const char* name, const QString& preset = {}) const;
    /// Throws ArgumentError if the value is not within the limits.
    double number(const char* name, double preset, double lowest, double highest) const;
    int whole_number(const char* name, int preset, int lowest, int highest) const;

    QStringList words() const { return m_parser.positionalArguments(); }

    QString help_text() const { return m_parser.helpText(); }

private:
    QCommandLineParser m_parser;
};

} // namespace gang
