#include "app/CommandLine.h"
#include "tests/support/RowName.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

using namespace test;

namespace
{

constexpr const char* two_reads = "Please specify only one of read (-r) or limited read (-l) "
                                  "operations. Aborting...\n";
constexpr const char* two_writes = "Please specify only one of write (-w) or limited write (-W) or "
                                   "write-and-verify (-wv) operations. Aborting...\n";
constexpr const char* two_erases = "Please specify only one of erase all (-e) or limited erase "
                                   "(-E) operations. Aborting...\n";
constexpr const char* no_version = "No version or version request method can be discerned, please "
                                   "specify -b or -V or -B options. Aborting...";
constexpr const char* two_versions = "Please use QV entry procedure (-b) OR version request (-V) "
                                     "but not both. Aborting...";
constexpr const char* no_action = "No actionable operation specified, please choose a "
                                  "read/write/verify/erase/version/reset command. Aborting...\n\n";

struct CheckCase {
    const char* name;
    void (*change)(Settings& defaults);
    const char* message; ///< empty: accepted
};

std::ostream& operator<<(std::ostream& stream, const CheckCase& check)
{
    return stream << check.name;
}

Settings changed(const CheckCase& check)
{
    Settings settings;
    check.change(settings);
    return settings;
}

std::string message_of(const std::optional<Failure>& outcome)
{
    return outcome ? outcome->message.toStdString() : std::string();
}

/// A version is known without asking a device, and nothing else is wanted.
void want_nothing(Settings& s)
{
    s.entry_procedure_wanted = false;
    s.bootloader_version = 0x102;
}

const CheckCase conflicts[] = {
    {"nothing", [](Settings&) {}, ""},
    {"two_reads", [](Settings& s) { s.read_wanted = s.read_range_wanted = true; }, two_reads},
    {"two_writes", [](Settings& s) { s.write_wanted = s.write_range_wanted = true; }, two_writes},
    {"two_erases", [](Settings& s) { s.erase_all_wanted = s.erase_range_wanted = true; },
     two_erases},
    {"reads_come_before_writes",
     [](Settings& s) {
         s.read_wanted = s.read_range_wanted = true;
         s.write_wanted = s.write_range_wanted = true;
     },
     two_reads},
    {"writes_come_before_erases",
     [](Settings& s) {
         s.write_wanted = s.write_range_wanted = true;
         s.erase_all_wanted = s.erase_range_wanted = true;
     },
     two_writes},
    {"write_and_verify_takes_no_part",
     [](Settings& s) { s.write_and_verify_wanted = s.write_range_wanted = true; }, ""},
    {"write_and_verify_beside_write",
     [](Settings& s) { s.write_and_verify_wanted = s.write_wanted = true; }, ""},
    {"one_of_each",
     [](Settings& s) {
         s.read_wanted = s.write_wanted = s.erase_all_wanted = s.verify_wanted = true;
     },
     ""},
    {"one_limited_of_each",
     [](Settings& s) { s.read_range_wanted = s.write_range_wanted = s.erase_range_wanted = true; },
     ""},
    {"two_ways_to_the_version",
     [](Settings& s) { s.version_request_wanted = s.entry_procedure_wanted = true; }, ""},
};

const CheckCase requests[] = {
    {"entry_procedure_alone", [](Settings&) {}, ""},
    {"version_request_alone",
     [](Settings& s) {
         s.entry_procedure_wanted = false;
         s.version_request_wanted = true;
     },
     ""},
    {"no_way_to_the_version", [](Settings& s) { s.entry_procedure_wanted = false; }, no_version},
    {"no_way_to_the_version_with_something_to_do",
     [](Settings& s) {
         s.entry_procedure_wanted = false;
         s.erase_all_wanted = true;
     },
     no_version},
    {"two_ways_to_the_version", [](Settings& s) { s.version_request_wanted = true; }, two_versions},
    {"two_ways_to_a_version_that_is_given",
     [](Settings& s) {
         s.version_request_wanted = true;
         s.bootloader_version = 0x102;
     },
     two_versions},
    {"nothing_to_do", want_nothing, no_action},
    {"verify_is_nothing_to_do",
     [](Settings& s) {
         want_nothing(s);
         s.verify_wanted = s.write_and_verify_wanted = true;
     },
     no_action},
    {"read",
     [](Settings& s) {
         want_nothing(s);
         s.read_wanted = true;
     },
     ""},
    {"limited_read",
     [](Settings& s) {
         want_nothing(s);
         s.read_range_wanted = true;
     },
     ""},
    {"limited_write",
     [](Settings& s) {
         want_nothing(s);
         s.write_range_wanted = true;
     },
     ""},
    {"write",
     [](Settings& s) {
         want_nothing(s);
         s.write_wanted = true;
     },
     ""},
    {"reset",
     [](Settings& s) {
         want_nothing(s);
         s.reset_wanted = true;
     },
     ""},
    {"erase_all",
     [](Settings& s) {
         want_nothing(s);
         s.erase_all_wanted = true;
     },
     ""},
    {"limited_erase",
     [](Settings& s) {
         want_nothing(s);
         s.erase_range_wanted = true;
     },
     ""},
    {"version_request_of_a_version_that_is_given",
     [](Settings& s) {
         want_nothing(s);
         s.version_request_wanted = true;
     },
     ""},
};

class ConflictCheck : public testing::TestWithParam<CheckCase>
{
};

class RequestCheck : public testing::TestWithParam<CheckCase>
{
};

} // namespace

TEST_P(ConflictCheck, ReportsTheFirstConflictWithoutTheUsageText)
{
    const std::optional<Failure> outcome = command_line::check_conflicts(changed(GetParam()));
    EXPECT_EQ(message_of(outcome), GetParam().message);
    EXPECT_FALSE(outcome && outcome->with_usage);
}

INSTANTIATE_TEST_SUITE_P(Settings, ConflictCheck, testing::ValuesIn(conflicts), row_name);

TEST_P(RequestCheck, ReportsTheFirstFaultWithTheUsageText)
{
    const std::optional<Failure> outcome = command_line::check_request(changed(GetParam()));
    EXPECT_EQ(message_of(outcome), GetParam().message);
    EXPECT_TRUE(!outcome || outcome->with_usage);
}

INSTANTIATE_TEST_SUITE_P(Settings, RequestCheck, testing::ValuesIn(requests), row_name);
