#include "gang/ConsoleText.h"

#include <gtest/gtest.h>

namespace
{

using gang::ConsoleText;

std::string kept(const std::vector<const char*>& pieces)
{
    ConsoleText text;
    for (const char* piece : pieces) {
        text.add(piece);
    }
    return text.text().toStdString();
}

TEST(ConsoleText, KeepsTheLastOfProgressInARow)
{
    EXPECT_EQ(kept({"a\n\rProgress 1%\rProgress 2%\rProgress 3%"}), "a\n\rProgress 3%");
    EXPECT_EQ(kept({"a\n\rProgress 1%", "\rProgress 2%", "\rProgress 3%"}), "a\n\rProgress 3%");
}

TEST(ConsoleText, KeepsWhatComesBetween)
{
    EXPECT_EQ(kept({"\rProgress 1%\rProgress 2%error\n\rProgress 2%\rProgress 3%\nend"}),
              "\rProgress 2%error\n\rProgress 3%\nend");
}

TEST(ConsoleText, TakesPiecesOfAnySize)
{
    const std::string text = "x\rProgress 1%\rProgress 23%y\n\rProgress 100%";
    ConsoleText console;
    for (const char c : text) {
        console.add(QByteArray(1, c));
    }
    EXPECT_EQ(console.text().toStdString(), "x\rProgress 23%y\n\rProgress 100%");
}

TEST(ConsoleText, LeavesOtherCarriageReturnsAlone)
{
    EXPECT_EQ(kept({"\rProgress x%\rProgress 1%\r", "\rProgress "}),
              "\rProgress x%\rProgress 1%\r\rProgress ");
}

TEST(ConsoleText, SaysThePercentageItEndsWith)
{
    ConsoleText text;
    EXPECT_EQ(text.percentage(), -1);
    text.add("a\rProgress 7%");
    EXPECT_EQ(text.percentage(), 7);
    text.add("\rProgress 12");
    EXPECT_EQ(text.percentage(), -1);
    text.add("%");
    EXPECT_EQ(text.percentage(), 12);
    text.add("\rProgress 130%");
    EXPECT_EQ(text.percentage(), 100);
    text.add("\n");
    EXPECT_EQ(text.percentage(), -1);
}

} // namespace
