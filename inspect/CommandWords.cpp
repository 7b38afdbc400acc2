#include "inspect/CommandWords.h"

#include "inspect/Subcommand.h"
#include "inspect/UsageError.h"

namespace inspect
{

CommandWords::CommandWords(const Subcommand& subcommand, const QStringList& words)
{
    const QString name = QString::fromLatin1(subcommand.name);
    m_parser.setApplicationDescription(QString::fromLatin1(subcommand.description));
    const std::vector<OptionText> common = {
        {"help", "", "Show this help and exit."},
        {"version", "", "Show the version and exit."},
        {"json", "", "Print the report as one JSON object."},
    };
    for (const std::vector<OptionText>& options : {common, subcommand.options}) {
        for (const OptionText& option : options) {
            m_parser.addOption({QString::fromLatin1(option.name), QString::fromLatin1(option.text),
                                QString::fromLatin1(option.value)});
        }
    }
    m_parser.addPositionalArgument(name, QString::fromLatin1(subcommand.summary), name);
    if (*subcommand.file_syntax != '\0') {
        m_parser.addPositionalArgument(QStringLiteral("file"),
                                       QString::fromLatin1(subcommand.files),
                                       QString::fromLatin1(subcommand.file_syntax));
    }
    if (!m_parser.parse(QStringList(QStringLiteral("zserial-inspect ") + name) + words)) {
        throw UsageError(m_parser.errorText());
    }
}

std::optional<QString> CommandWords::value(const char* option) const
{
    if (!has(option)) {
        return std::nullopt;
    }
    QString value = m_parser.value(QString::fromLatin1(option));
    if (value.isEmpty()) {
        throw UsageError(QStringLiteral("--%1 needs a value").arg(QString::fromLatin1(option)));
    }
    return value;
}

QString CommandWords::help_text() const
{
    return m_parser.helpText();
}

} // namespace inspect
