#include "inspect/Figures.h"
#include "inspect/TextPage.h"

#include <QStringList>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

using inspect::Style;
using inspect::TextPage;

TEST(TextPage, BreaksAtEightyColumns)
{
    TextPage page(false);
    page.labelled(QStringLiteral("label"), QStringLiteral("word ").repeated(40));
    for (const QString& line : page.text().split(QLatin1Char('\n'))) {
        EXPECT_LE(line.size(), 80) << line.toStdString();
    }
    EXPECT_EQ(page.text().count(QStringLiteral("word")), 40);
}

TEST(TextPage, LeavesWhatCannotBeBroken)
{
    TextPage page(false);
    const QString path = QString(100, QLatin1Char('p'));
    page.paragraph(QStringLiteral("see ") + path, 2);
    EXPECT_TRUE(page.text().contains(path));
}

TEST(TextPage, HasNoColourUnlessAsked)
{
    TextPage plain(false);
    plain.heading(QStringLiteral("title"));
    EXPECT_EQ(plain.text().toStdString(), "title\n");
    TextPage coloured(true);
    coloured.heading(QStringLiteral("title"));
    EXPECT_EQ(coloured.text().toStdString(), "\033[1mtitle\033[0m\n");
}

TEST(TextPage, HasAColourForEachStyleButPlain)
{
    const std::vector<std::pair<Style, const char*>> styles = {
        {Style::Plain, "text"},
        {Style::Heading, "\033[1mtext\033[0m"},
        {Style::Error, "\033[1;31mtext\033[0m"},
        {Style::Warning, "\033[33mtext\033[0m"},
        {Style::Good, "\033[32mtext\033[0m"},
        {Style::Faint, "\033[2mtext\033[0m"}};
    for (const auto& [style, shown] : styles) {
        EXPECT_EQ(TextPage(true).styled(QStringLiteral("text"), style).toStdString(), shown);
        EXPECT_EQ(TextPage(false).styled(QStringLiteral("text"), style).toStdString(), "text");
    }
}

TEST(TextPage, ShowsNoControlCharactersOfAFile)
{
    TextPage page(true);
    page.paragraph(QStringLiteral("a\033[2Jb\rc"), 0);
    EXPECT_EQ(page.text().toStdString(), "a?[2Jb?c\n");
}

TEST(Figures, ShowSizesExactly)
{
    EXPECT_EQ(inspect::size_text(0), QStringLiteral("0 bytes"));
    EXPECT_EQ(inspect::size_text(1), QStringLiteral("1 byte"));
    EXPECT_EQ(inspect::size_text(1023), QStringLiteral("1023 bytes"));
    EXPECT_EQ(inspect::size_text(1024), QStringLiteral("1 KiB"));
    EXPECT_EQ(inspect::size_text(1025), QStringLiteral("1025 bytes"));
    EXPECT_EQ(inspect::size_text(1536), QStringLiteral("1.5 KiB"));
    EXPECT_EQ(inspect::size_text(quint64{3} << 30), QStringLiteral("3 GiB"));
}

TEST(Figures, ShowTimes)
{
    EXPECT_EQ(inspect::duration_text(0.125), QStringLiteral("0.13 s"));
    EXPECT_EQ(inspect::duration_text(59.94), QStringLiteral("59.9 s"));
    EXPECT_EQ(inspect::duration_text(200.4), QStringLiteral("3 min 20 s"));
}
