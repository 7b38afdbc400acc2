#include "tests/memory/Images.h"
#include "tests/support/DebugMessages.h"

#include <QDebug>
#include <QString>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

using namespace test;

namespace
{

using Lines = std::vector<std::string>;

TEST(DebugMessages, KeepsMessagesInOrderAndShowsQuotesOfStrings)
{
    const DebugMessages messages;
    qDebug() << "plain";
    qDebug() << QStringLiteral("quoted");
    EXPECT_EQ(lines_of(messages), (Lines{"plain", "\"quoted\""}));
}

TEST(DebugMessages, InnerCatcherTakesOverWhileItLives)
{
    const DebugMessages outer;
    qDebug() << "before";
    {
        const DebugMessages inner;
        qDebug() << "within";
        EXPECT_EQ(lines_of(inner), Lines{"within"});
    }
    qDebug() << "after";
    EXPECT_EQ(lines_of(outer), (Lines{"before", "after"}));
}

TEST(DebugMessages, PassesWarningsOnEvenWhenNested)
{
    static std::string warning;
    warning.clear();
    const QtMessageHandler original =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
            warning = text.toStdString();
        });
    {
        const DebugMessages outer;
        const DebugMessages inner;
        qWarning() << "careful";
        EXPECT_EQ(lines_of(inner), Lines{});
        EXPECT_EQ(lines_of(outer), Lines{});
    }
    qInstallMessageHandler(original);
    EXPECT_EQ(warning, "careful");
}

TEST(DebugMessages, CatchesMessagesOfOtherThreads)
{
    const DebugMessages messages;
    std::thread([] { qDebug() << "from elsewhere"; }).join();
    EXPECT_EQ(lines_of(messages), Lines{"from elsewhere"});
}

} // namespace
