#include "gang/NumberFile.h"
#include "tests/gang/GangTest.h"

using namespace test;

namespace
{

using gang::FileError;
using gang::NumberFile;

class NumberFiles : public GangTest
{
protected:
    NumberFile counter(const QByteArray& contents) const
    {
        put_file(QStringLiteral("numbers"), contents);
        return NumberFile(name());
    }

    QString name() const { return path(QStringLiteral("numbers")); }

    static quint64 draw(NumberFile& numbers, const char* to = "me")
    {
        return numbers.draw(QString::fromLatin1(to), [](quint64) {});
    }

    std::string contents() const { return file(QStringLiteral("numbers")).toStdString(); }

    std::string refusal(const QByteArray& text) const
    {
        NumberFile numbers = counter(text);
        try {
            numbers.next();
        } catch (const FileError& error) {
            return QString::fromStdString(error.what()).remove(folder()).toStdString();
        }
        return "none";
    }
};

TEST_F(NumberFiles, CountFromTheFirstNumber)
{
    NumberFile numbers = counter("1000\n");
    EXPECT_EQ(numbers.next(), 1000U);
    EXPECT_EQ(draw(numbers, "a b"), 1000U);
    EXPECT_EQ(draw(numbers, "c"), 1001U);
    EXPECT_EQ(contents(), "1000\n1000 a b\n1001 c\n");
}

TEST_F(NumberFiles, TakeAFirstNumberWithoutALineEnd)
{
    NumberFile numbers = counter("7");
    EXPECT_EQ(draw(numbers), 7U);
    EXPECT_EQ(contents(), "7\n7 me\n");
}

TEST_F(NumberFiles, SeeWhatOthersHaveGiven)
{
    NumberFile one = counter("1\n");
    NumberFile other(name());
    EXPECT_EQ(draw(one), 1U);
    EXPECT_EQ(draw(other), 2U);
    EXPECT_EQ(draw(one), 3U);
    EXPECT_EQ(other.given().size(), 3U);
}

TEST_F(NumberFiles, GoOnAfterACrash)
{
    NumberFile numbers = counter("5\n5 a\n6 b\n7 cut o");
    EXPECT_EQ(draw(numbers), 7U) << "a number whose line was cut short was never used";
    EXPECT_EQ(contents(), "5\n5 a\n6 b\n7 me\n");
}

TEST_F(NumberFiles, SkipRemarksAndJumpAhead)
{
    NumberFile numbers = counter("# serial numbers\n\n10\n10 a\n# next batch\n500\n");
    EXPECT_EQ(draw(numbers), 500U);
}

TEST_F(NumberFiles, JumpAheadWithoutALineEnd)
{
    NumberFile numbers = counter("10\n10 a\n500");
    EXPECT_EQ(draw(numbers), 500U);
    EXPECT_EQ(contents(), "10\n10 a\n500\n500 me\n");
}

TEST_F(NumberFiles, RemoveNothingThatAUserWrote)
{
    EXPECT_EQ(refusal("10\n10 a\nfive"),
              "/numbers, line 3: does not begin with a number from 0 to 9007199254740991");
    EXPECT_EQ(contents(), "10\n10 a\nfive\n");
}

TEST_F(NumberFiles, StayOneLineForEachNumber)
{
    NumberFile numbers = counter("1\n");
    EXPECT_EQ(draw(numbers, "a\n7 b"), 1U);
    EXPECT_EQ(contents(), "1\n1 a 7 b\n");
    EXPECT_EQ(NumberFile(name()).next(), 2U);
}

TEST_F(NumberFiles, NoticeThatTheyWereCutShort)
{
    NumberFile numbers = counter("1\n");
    EXPECT_EQ(draw(numbers), 1U);
    put_file(QStringLiteral("numbers"), "1\n");
    EXPECT_THROW(draw(numbers), FileError);
}

TEST_F(NumberFiles, GiveNothingOutThatIsNotAccepted)
{
    NumberFile numbers = counter("300\n");
    EXPECT_THROW(numbers.draw(QStringLiteral("me"), [](quint64) { throw FileError(QString()); }),
                 FileError);
    EXPECT_EQ(contents(), "300\n");
    EXPECT_EQ(draw(numbers), 300U);
}

TEST_F(NumberFiles, RefuseWhatMightGiveANumberTwice)
{
    EXPECT_EQ(refusal("10\n10 a\n11 b\n10 c\n"),
              "/numbers, line 4: goes back to a number that was given out or skipped");
    EXPECT_EQ(refusal("10\n10 a\n5\n"),
              "/numbers, line 3: goes back to a number that was given out or skipped");
    EXPECT_EQ(refusal("ten\n"),
              "/numbers, line 1: does not begin with a number from 0 to 9007199254740991");
    EXPECT_EQ(refusal("9007199254740992\n"),
              "/numbers, line 1: does not begin with a number from 0 to 9007199254740991");
    EXPECT_EQ(refusal("-1\n"),
              "/numbers, line 1: does not begin with a number from 0 to 9007199254740991");
    EXPECT_EQ(refusal(""), "/numbers: holds no number; write the first one into it, such as 1000");
}

TEST_F(NumberFiles, HaveToBeThere)
{
    EXPECT_THROW(NumberFile{name()}, FileError);
}

} // namespace
