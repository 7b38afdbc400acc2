#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <vector>

namespace gang
{

struct OptionText {
    const char* name;
    const char* value; ///< name of its value; empty if it takes none
    const char* text;
};

/// Parses a command line by a table of options.
class OptionParser
{
public:
    OptionParser(const char* description, const std::vector<OptionText>& options,
                 const char* positional, const char* positional_syntax);

    /// Throws ArgumentError for an unknown option or a missing value.
    void parse(const QStringList& command_line);

    bool has(const char* name) const;
    /// Returns `preset` if the option is not given. Throws ArgumentError if its value is empty.
    QString value(const char* name, const QString& preset = {}) const;
    /// Returns `preset` if the option is not given. Throws ArgumentError if its value is not a
    /// number from `lowest` to `highest`.
    double number(const char* name, double preset, double lowest, double highest) const;
    int whole_number(const char* name, int preset, int lowest, int highest) const;

    QStringList words() const { return m_parser.positionalArguments(); }

    QString help_text() const { return m_parser.helpText(); }

private:
    QCommandLineParser m_parser;
};

} // namespace gang
