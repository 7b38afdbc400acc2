#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <optional>

namespace inspect
{

struct Subcommand;

/// The words after the name of a subcommand, split according to its options.
class CommandWords
{
public:
    /// Throws UsageError for an unknown option or a missing value.
    CommandWords(const Subcommand& subcommand, const QStringList& words);

    bool wants_help() const { return has("help"); }

    bool wants_version() const { return has("version"); }

    bool wants_json() const { return has("json"); }

    bool has(const char* option) const { return m_parser.isSet(QString::fromLatin1(option)); }

    /// The option's value, the last one given. Throws UsageError when it is empty.
    std::optional<QString> value(const char* option) const;

    QStringList files() const { return m_parser.positionalArguments(); }

    QString help_text() const;

private:
    QCommandLineParser m_parser;
};

} // namespace inspect
