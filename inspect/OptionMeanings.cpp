#include "inspect/OptionMeanings.h"

#include "inspect/Figures.h"

#include <QHash>

namespace inspect
{

namespace
{

using command_line::GivenWord;

QString version_meaning(const GivenWord& word)
{
    const unsigned int version = word.following.value(0).toUInt(nullptr, 16);
    return version == 0
               ? QStringLiteral("no version")
               : QStringLiteral("bootloader version 0x%1").arg(version, 4, 16, QLatin1Char('0'));
}

QString erase_meaning(const GivenWord& word)
{
    const auto choice = [&word](int index) {
        return QLatin1String(number_in(word.following.value(index)) == 0 ? "without" : "with");
    };
    return QStringLiteral("erase, but not this range (P012); %1 encrypted and %2 unencrypted flash")
        .arg(choice(0), choice(1));
}

/// Those of the options whose meaning does not depend on their arguments; %1 is the last of these.
QString fixed_meaning(const GivenWord& word)
{
    static const QHash<QString, QString> meanings = {
        {QStringLiteral("-h"), QStringLiteral("half duplex: what is sent comes back")},
        {QStringLiteral("-b"), QStringLiteral("find the device by the entry procedure")},
        {QStringLiteral("-V"), QStringLiteral("show the version of a profile that is selected")},
        {QStringLiteral("-M"), QStringLiteral("the rate %1, which is not used")},
        {QStringLiteral("-w"), QStringLiteral("write the image %1, without an erase")},
        {QStringLiteral("-r"), QStringLiteral("read everything into %1")},
        {QStringLiteral("-v"), QStringLiteral("verify the image %1")},
        {QStringLiteral("-wv"), QStringLiteral("erase, write and verify the pages of %1")},
        {QStringLiteral("-R"), QStringLiteral("reset the device at the end")},
        {QStringLiteral("-e"), QStringLiteral("erase all flash; with -wv, compare no page first")},
        {QStringLiteral("-xe"), QStringLiteral("leave encrypted flash alone")},
        {QStringLiteral("-xu"), QStringLiteral("leave unencrypted flash alone")},
        {QStringLiteral("-s"), QStringLiteral("the port %1, which is not opened here")},
        {QStringLiteral("-x"), QStringLiteral("append all frames to %1")},
    };
    const QString meaning = meanings.value(word.text);
    return word.option->arguments == 0 ? meaning : meaning.arg(word.following.last());
}

} // namespace

unsigned int number_in(const QString& text)
{
    return text.toUInt(nullptr, 0);
}

QString range_in(const GivenWord& word)
{
    return QStringLiteral("%1 to %2")
        .arg(address_text(number_in(word.following.value(0))),
             address_text(number_in(word.following.value(1))));
}

QString meaning_of(const GivenWord& word)
{
    if (word.option == nullptr) {
        return QStringLiteral("no option, ignored");
    }
    if (word.following.size() < word.option->arguments) {
        return QStringLiteral("lacks its arguments");
    }
    if (word.text == QLatin1String("-B")) {
        return version_meaning(word);
    }
    if (word.text == QLatin1String("-E")) {
        return erase_meaning(word);
    }
    if (word.text == QLatin1String("-W")) {
        return QStringLiteral("write bytes %1 of the image %2, without an erase")
            .arg(range_in(word), word.following.last());
    }
    if (word.text == QLatin1String("-l")) {
        return QStringLiteral("read bytes %1 into %2").arg(range_in(word), word.following.last());
    }
    return fixed_meaning(word);
}

} // namespace inspect
