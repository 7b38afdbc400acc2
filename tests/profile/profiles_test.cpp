#include "profile/Profiles.h"
#include "tests/profile/TestData.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/RowName.h"

#include <QDir>
#include <QException>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <memory>
#include <string>

using namespace test;

namespace
{

const QString table_name = QStringLiteral("device.txt");

/// Ends the process as a program does, with the leak check at its end. The status reports failures.
[[noreturn]] void exit_with_test_result()
{
    const testing::TestResult* result =
        testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result->total_part_count(); ++i) {
        std::cerr << result->GetTestPartResult(i).summary() << std::endl;
    }
    std::exit(result->Failed() ? EXIT_FAILURE : EXIT_SUCCESS);
}

/// The registry reads its table once in the life of a process, so each test asks it in a process of
/// its own, started in a folder of its own.
class ProfilesTest : public testing::Test
{
protected:
    void write_table(const QByteArray& table) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(table), table.size());
    }

    QString path() const { return m_folder.filePath(table_name); }

    void in_new_process(const std::function<void()>& checks) const
    {
        EXPECT_EXIT(
            {
                EXPECT_TRUE(QDir::setCurrent(m_folder.path()));
                checks();
                exit_with_test_result();
            },
            testing::ExitedWithCode(EXIT_SUCCESS), "");
    }

private:
    QTemporaryDir m_folder;
};

/// The message on the debug channel if the first query threw; empty if it did not.
QStringList message_of_failing_question()
{
    const DebugMessages messages;
    try {
        Profiles::has_profile(0x0102);
        // The registry throws a pointer on purpose.
    } catch (QException* exception) { // NOLINT(cert-err61-cpp)
        const std::unique_ptr<QException> owner(exception);
        return messages.texts();
    }
    return {};
}

TEST_F(ProfilesTest, FindsDevicesByVersion)
{
    write_table(test_data("two_devices.txt"));
    in_new_process([] {
        EXPECT_TRUE(Profiles::has_profile(0x0102));
        EXPECT_TRUE(Profiles::has_profile(0x0203));
        EXPECT_FALSE(Profiles::has_profile(0));
        EXPECT_FALSE(Profiles::has_profile(0x0201));
        EXPECT_EQ(Profiles::get_profile(0x0102)->name, QLatin1String("DEV-A128"));
        EXPECT_EQ(Profiles::get_profile(0x0203)->name, QLatin1String("DEV-B64"));
        EXPECT_EQ(Profiles::get_profile(0x0203), Profiles::get_profile(0x0203));
    });
}

TEST_F(ProfilesTest, HandsFieldNToAttributeN)
{
    write_table(test_data("two_devices.txt"));
    in_new_process([] {
        const Profile* profile = Profiles::get_profile(0x0102);
        EXPECT_EQ(profile->attributes[Profile::bootloader_version], 0x0102U);
        EXPECT_EQ(profile->attributes[Profile::max_baud], 115200U);
        EXPECT_EQ(profile->attributes[Profile::bootloader_end_address], 0x800U);
        EXPECT_EQ(profile->attributes[Profile::flash_unencrypted_end_address], 0x10000U);
    });
}

TEST_F(ProfilesTest, OwnsItsProfiles)
{
    write_table(test_data("two_devices.txt"));
    in_new_process([] {
        EXPECT_EQ(Profiles::get_profile(0x0102)->parent(), &Profiles::get_instance());
        EXPECT_EQ(Profiles::get_instance().children().size(), 2);
        EXPECT_EQ(&Profiles::get_instance(), &Profiles::get_instance());
    });
}

TEST_F(ProfilesTest, DumpsInAscendingOrderOfVersion)
{
    write_table(test_data("devices_in_descending_order.txt"));
    in_new_process([] {
        EXPECT_EQ(Profiles::dump(), (QStringList{QStringLiteral("00000102 DEV-A128"),
                                                 QStringLiteral("00000203 DEV-B64")}));
    });
}

TEST_F(ProfilesTest, DumpShowsVersionsInUpperCase)
{
    write_table(test_data("version_in_mixed_case_digits.txt"));
    in_new_process([] {
        EXPECT_EQ(Profiles::dump(), QStringList{QStringLiteral("0000ABCD DEV-A128")});
        EXPECT_TRUE(Profiles::has_profile(0xABCD));
    });
}

TEST_F(ProfilesTest, LowestBaudIsThatOfTheSlowestDevice)
{
    write_table(test_data("two_devices.txt"));
    in_new_process([] { EXPECT_EQ(Profiles::get_lowest_baud(), 57600U); });
}

TEST_F(ProfilesTest, LowestBaudComparesUnsigned)
{
    write_table(test_data("one_tab_at_end.txt").replace("115200", "4294967294"));
    in_new_process([] { EXPECT_EQ(Profiles::get_lowest_baud(), 4294967294U); });
}

TEST_F(ProfilesTest, LaterRowOfAVersionReplacesTheEarlier)
{
    write_table(test_data("same_version_twice.txt"));
    in_new_process([] {
        EXPECT_EQ(Profiles::dump(), QStringList{QStringLiteral("00000102 DEV-B64")});
        EXPECT_EQ(Profiles::get_lowest_baud(), 57600U);
        EXPECT_EQ(Profiles::get_instance().children().size(), 1);
    });
}

TEST_F(ProfilesTest, UnknownVersionLeavesANullEntryThatNothingTripsOver)
{
    write_table(test_data("two_devices.txt"));
    in_new_process([] {
        EXPECT_FALSE(Profiles::has_profile(0x0150));
        EXPECT_EQ(Profiles::get_profile(0x0150), nullptr);
        EXPECT_TRUE(Profiles::has_profile(0x0150));
        EXPECT_EQ(Profiles::get_profile(0x0150), nullptr);
        EXPECT_EQ(Profiles::dump(), (QStringList{QStringLiteral("00000102 DEV-A128"),
                                                 QStringLiteral("00000203 DEV-B64")}));
        EXPECT_EQ(Profiles::get_lowest_baud(), 57600U);
    });
}

TEST_F(ProfilesTest, ReadsTheTableAtTheFirstQuestionAndNeverAgain)
{
    in_new_process([] {
        const QByteArray table = test_data("one_tab_at_end.txt");
        QFile file(table_name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(table), table.size());
        file.close();
        EXPECT_EQ(Profiles::dump(), QStringList{QStringLiteral("00000102 DEV-A128")});
        EXPECT_TRUE(file.remove());
        EXPECT_TRUE(Profiles::has_profile(0x0102));
    });
}

TEST_F(ProfilesTest, AFailedFirstQuestionLeavesTheNextToReadAgain)
{
    in_new_process([] {
        EXPECT_EQ(message_of_failing_question(),
                  QStringList{QStringLiteral("\"file not found: ./device.txt\"")});
        EXPECT_TRUE(QFile::copy(QStringLiteral(PROFILE_TEST_DATA "/two_devices.txt"), table_name));
        EXPECT_TRUE(Profiles::has_profile(0x0203));
    });
}

struct EmptyTable {
    const char* name;
    QByteArray table;
};

class ProfilesOfAnEmptyTable : public ProfilesTest, public testing::WithParamInterface<EmptyTable>
{
};

TEST_P(ProfilesOfAnEmptyTable, KnowNoDevice)
{
    write_table(GetParam().table);
    in_new_process([] {
        EXPECT_EQ(Profiles::dump(), QStringList());
        EXPECT_EQ(Profiles::get_lowest_baud(), 4294967295U);
        for (unsigned int version = 0; version <= 0xFFFF; ++version) {
            EXPECT_FALSE(Profiles::has_profile(static_cast<unsigned short>(version)));
        }
    });
}

INSTANTIATE_TEST_SUITE_P(
    , ProfilesOfAnEmptyTable,
    testing::Values(EmptyTable{"NoBytes", QByteArray()},
                    EmptyTable{"HeaderOnly", test_data("header_only.txt")},
                    EmptyTable{"NoRowOf25Fields", test_data("no_row_of_25_fields.txt")},
                    EmptyTable{"BlanksForTabs", test_data("blanks_between_columns.txt")}),
    row_name);

struct BadTable {
    std::string name;
    const char* message;
};

class ProfileTableError : public ProfilesTest, public testing::WithParamInterface<BadTable>
{
};

TEST_P(ProfileTableError, IsReportedAndThrownByPointer)
{
    write_table(test_data((GetParam().name + ".txt").c_str()));
    in_new_process([] {
        EXPECT_EQ(message_of_failing_question(), QStringList{QLatin1String(GetParam().message)});
    });
}

constexpr const char* unparsable = "\"unparsable profile data\"";

INSTANTIATE_TEST_SUITE_P(, ProfileTableError,
                         testing::Values(BadTable{"tab_at_start", unparsable},
                                         BadTable{"version_title_in_lower_case", unparsable},
                                         BadTable{"version_title_in_upper_case", unparsable},
                                         BadTable{"version_with_capital_v", unparsable},
                                         BadTable{"version_of_five_characters", unparsable},
                                         BadTable{"bad_row_after_a_good_one", unparsable}),
                         row_name);

TEST_F(ProfilesTest, FileThatIsMissingIsNotFound)
{
    in_new_process([] {
        EXPECT_EQ(message_of_failing_question(),
                  QStringList{QStringLiteral("\"file not found: ./device.txt\"")});
    });
}

TEST_F(ProfilesTest, FolderOfTheNameIsAReadError)
{
    ASSERT_TRUE(QDir().mkdir(path()));
    in_new_process([] {
        EXPECT_EQ(message_of_failing_question(),
                  QStringList{QStringLiteral("\"file read error: ./device.txt\"")});
    });
}

TEST_F(ProfilesTest, FailureWhileReadingIsAReadError)
{
    // Opens for its owner, but nothing is mapped at its start.
    ASSERT_TRUE(QFile::link(QStringLiteral("/proc/self/mem"), path()));
    in_new_process([] {
        EXPECT_EQ(message_of_failing_question(),
                  QStringList{QStringLiteral("\"file read error: ./device.txt\"")});
    });
}

struct BadValue {
    const char* name;
    const char* file;
    const char* message;
};

class ProfileTableFieldError : public ProfilesTest, public testing::WithParamInterface<BadValue>
{
};

TEST_P(ProfileTableFieldError, IsReportedAndThrownByValue)
{
    write_table(test_data(GetParam().file));
    in_new_process([] {
        const DebugMessages messages;
        EXPECT_THROW(Profiles::has_profile(0x0102), QException);
        EXPECT_EQ(messages.texts(), QStringList{QLatin1String(GetParam().message)});
    });
}

INSTANTIATE_TEST_SUITE_P(
    , ProfileTableFieldError,
    testing::Values(BadValue{"Version", "version_not_hexadecimal.txt",
                             "\"could not parse attr 'bootloader version' (value = '0x12G4') for "
                             "device profile ''\""},
                    BadValue{"PageSize", "bad_field_after_a_good_row.txt",
                             "\"could not parse attr 'flash page size' (value = 'wide') for device "
                             "profile 'DEV-B64'\""}),
    row_name);

} // namespace
