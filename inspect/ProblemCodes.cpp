#include "inspect/ProblemCodes.h"

namespace inspect
{

namespace
{

constexpr Severity error = Severity::Error;
constexpr Severity warning = Severity::Warning;

const char* const ends_abnormally =
    "Ends abnormally (status 134) as soon as a version is known, whichever device is asked for.";
const char* const skips_row =
    "Skips the line silently. A device of this version is refused, because there is no profile for "
    "it, or gets another row of the same version.";
const char* const refuses_memory =
    "Takes the row. Every operation that needs the figure fails before it sends anything, with "
    "\"unusable geometry in device profile ...\".";
const char* const refuses_file =
    "Refuses the file. -w, -W, -v and -wv send nothing of it and end with status 1; an -e on the "
    "same line has erased the flash by then.";
const char* const cannot_be_opened = "Ends with \"Port ... cannot be opened. Aborting...\".";
const char* const make_again = "Create or copy the file again.";

} // namespace

QString name_of(Severity severity)
{
    return severity == error ? QStringLiteral("error") : QStringLiteral("warning");
}

const ProblemKind& kind_of(Code code)
{
    return problem_kinds().at(static_cast<std::size_t>(code));
}

const std::vector<ProblemKind>& problem_kinds()
{
    static const std::vector<ProblemKind> kinds = {
        {Code::TableUnreadable, "T001", error, "The table cannot be read", ends_abnormally,
         "Name a readable table; the uploader itself reads ./device.txt."},
        {Code::RowWithBlanks, "T002", error, "Spaces where tabs should separate columns", skips_row,
         "Separate the columns by tabs."},
        {Code::RowColumns, "T003", error, "A device row without 25 columns", skips_row,
         "Give the row 25 columns. Empty columns do not count: several tabs are one. Write 0."},
        {Code::RowVersion, "T004", error, "A row of 25 columns that begins with no version",
         ends_abnormally, "Begin the row with v, four hexadecimal digits and a colon: v0110:"},
        {Code::FieldIsNoNumber, "T005", error, "A field that is not a number", ends_abnormally,
         "Write a decimal number, or digits after 0x, 0o or 0b, below 4294967296."},
        {Code::WordsPerAddressZero, "T006", error, "Words per address is 0", ends_abnormally,
         "Write how many addresses one word takes: the word size divided by the bytes from one "
         "address to the next."},
        {Code::DuplicateVersion, "T007", warning, "Two rows for one version",
         "Takes the last row of a version; earlier ones have no effect.",
         "Remove the row that is wrong."},
        {Code::NoDevice, "T008", error, "No device in the table",
         "Finds no profile for any version and ends with status 1.",
         "Give the table rows of 25 columns, separated by tabs, in UTF-8."},
        {Code::WordSizeRange, "T009", error, "A word size that cannot work", refuses_memory,
         "Write the number of bytes in a word, or 0 if the device has no such memory."},
        {Code::WordsPerAddressRange, "T010", error, "More words per address than bytes in a word",
         refuses_memory,
         "Correct the word size or the words per address: a word address must stand for a whole "
         "number of bytes."},
        {Code::RowSizeRange, "T011", error, "A row size that cannot work", refuses_memory,
         "Write the number of bytes that one write command takes."},
        {Code::BlockSizeRange, "T012", error, "A block size that cannot work",
         "Takes the row. -r, -l, -v and -wv fail before they send anything, with \"unusable "
         "geometry in device profile ...\" (EEPROM: -r, -l and -v).",
         "Write the row size, unless the device's documents say otherwise."},
        {Code::PageSizeRange, "T013", error, "A page size that cannot work",
         "Takes the row. -e and -wv fail before they send anything, with \"unusable geometry in "
         "device profile ...\".",
         "Write the number of bytes in a page of the erase command."},
        {Code::MemoryEmpty, "T014", error, "A memory with words and without addresses",
         "Finds no address in this memory: leaves out what an image holds for it, erases and reads "
         "nothing of it, and succeeds. -l of addresses in it fails.",
         "Correct the start or the end, or write a word size of 0 if the device has no such "
         "memory."},
        {Code::MemoryWithoutWords, "T015", error, "A memory with addresses and without words",
         refuses_memory, "Write the word size, or 0 for start and end."},
        {Code::RateUnusable, "T016", error, "A rate that no port can be set to",
         "Fails with \"cannot open port ... (Invalid baud rate value)\" before the first "
         "operation, after the device has been found.",
         "Write the rate that the device is served at, in baud."},
        {Code::EepromInsideBlock, "T017", error, "EEPROM begins inside a block",
         "Fails with \"unusable geometry in device profile ...\" where -r, -l or -v would read the "
         "EEPROM's first block.",
         "Start EEPROM on a multiple of its block size, or correct the block size."},
        {Code::AddressesWrap, "T018", error, "An address beyond 32 bits",
         "Drops the upper bits of the scaled address and works with the rest.",
         "Correct the address, or the divisor that scales it."},
        {Code::CommandWords, "T019", warning, "More than 255 words in one command",
         "Sends the count in one byte, which drops its upper bits. A count of 0 fails; another one "
         "makes reads go in pieces, of which the last can reach past the memory and fail, and "
         "EEPROM writes announce too few words.",
         "Make row and block at most 255 words."},
        {Code::PageNotRows, "T020", warning, "A page that is not a multiple of the row",
         "Steps through each page in rows: the last row of a page reaches into the next one, and "
         "-wv fails on a page that does not begin on a row.",
         "Correct the page or the row size."},
        {Code::RowNotWords, "T021", warning, "A row that is not a multiple of the word",
         "Counts whole words in its commands: a read brings less than the row and another one "
         "follows; an EEPROM write announces fewer bytes than it sends.",
         "Correct the row or the word size."},
        {Code::BlockNotWords, "T022", warning, "A block that is not a multiple of the word",
         "Counts whole words: a read of a block brings less than the block and another one "
         "follows. Where a block does not begin on a word address, the address sent is rounded "
         "down.",
         "Correct the block or the word size."},
        {Code::RowNotBlock, "T023", warning, "Row and block differ",
         "Reads one row at the start of each block: -r leaves out the rest of a larger block.",
         "Make the two equal, unless the device's documents say otherwise."},
        {Code::LimitOffPage, "T024", warning, "Flash begins or ends inside a page",
         "Fails on that page in -e (at the start) or -wv (at either end); if flash ends inside a "
         "page, -e asks the device to erase that page, too.",
         "Correct the limit or the page size."},
        {Code::LimitOffRow, "T025", warning, "A memory begins or ends inside a row",
         "Fails on the row that does not lie wholly in the memory. Where flash begins inside a "
         "row, every row of -w does so, and fails.",
         "Correct the limit or the row size."},
        {Code::LimitOffBlock, "T026", warning, "A memory begins or ends inside a block",
         "Reads whole blocks and drops what lies outside of the memory. -l and -W refuse a start "
         "of flash that is not a multiple of the block.",
         "Correct the limit or the block size."},
        {Code::AreaOutsideFlash, "T027", warning, "The unencrypted area is not inside flash",
         "Takes only flash addresses from the start up to the end of the area as unencrypted, and "
         "all other flash as encrypted.",
         "Correct the area's limits; for a device without one, make both the end of flash."},
        {Code::AreaOffPage, "T028", warning, "The unencrypted area begins or ends inside a page",
         "Decides by the first address of a page: with -xe or -xu, -e erases the whole page or "
         "none of it.",
         "Correct the limit, or leave -xe and -xu alone with -e."},
        {Code::MemoriesOverlap, "T029", warning, "Memories overlap",
         "Takes an address in flash and EEPROM as flash, and one in EEPROM and bootloader as "
         "EEPROM.",
         "Correct the limits."},
        {Code::NoBootloader, "T030", warning, "No room for a bootloader",
         "Takes everything from the bootloader's end on as user flash: -e asks the device to erase "
         "it, -wv where the image has data there.",
         "Write the bootloader's start and end as word addresses."},
        {Code::FillerNotErased, "T031", warning, "A filler that is not the erased state",
         "Programs these bytes into the parts of a row that an image leaves open.",
         "Write the filler from its top byte on."},
        {Code::MemoryBeyondHex, "T032", warning, "A memory that no HEX file can address",
         "Reads it, but cannot write it from a file: an address record for it leads to 0xFF800000 "
         "and above.",
         "Place EEPROM below 0x800000; the line counts EEPROM addresses from 0 anyway."},
        {Code::DivisorNotOne, "T033", warning, "A divisor other than 1",
         "Steps -e by the page size times the divisor and counts one page per step, from the "
         "lowest page on: the upper part of flash stays as it was on a device that counts pages in "
         "bytes.",
         "Use -e -wv in place of -e -w: -wv takes the page size in bytes. To check -e on a device, "
         "write an image that has only the last row of flash with -wv, erase, and verify that "
         "image: \"Verified!\" means that -e has not reached the row. docs/device-table.md has "
         "more "
         "about the divisor."},
        {Code::DivisorRounded, "T034", warning,
         "A word that is not a multiple of words per address", "Rounds the divisor down.",
         "Correct the word size or the words per address."},
        {Code::RateNotStandard, "T035", warning, "A rate that is not a standard one",
         "Asks the port for exactly this rate; many adapters cannot set it, and then no device "
         "answers.",
         "Check the rate. If it is right, check that the adapter can set it."},
        {Code::VersionLowByte, "T036", warning, "A version that no device can report",
         "Takes a second byte of 0x80 or more as a negative number, which turns the first one into "
         "0xFF. The row is found with -B only.",
         "Begin the row with the version that the uploader sees."},
        {Code::FlashEndsDisagree, "T037", warning, "The two ends of flash disagree",
         "Uses the end in bytes and never looks at the one in words.",
         "Correct the wrong one of the two, or the divisor."},
        {Code::EepromSizesDisagree, "T038", warning, "EEPROM limits and size disagree",
         "Uses start and end and never looks at the size.",
         "Correct the wrong one of the three, or the divisor that scales the end."},
        {Code::FillerSizeDisagrees, "T039", warning, "Filler size and word size disagree",
         "Uses the word size and never looks at the filler's.",
         "Correct the wrong one of the two."},
        {Code::RowTooSlow, "T040", error, "A row that takes longer than an answer may",
         "Waits 300 ms for an answer, asks 40 times and fails.",
         "Make row and block smaller, or the rate higher, if the device supports it."},
        {Code::WordAddressTooLong, "T041", error, "Addresses beyond 24 bits",
         "Sends 24 bits of a word address: what lies beyond is read, written and erased at the "
         "address that is left.",
         "Correct the end of the memory."},
        {Code::AnswerTooLong, "T042", warning, "An answer of more than 65535 bytes",
         "Compares the length of an answer in 16 bits, so one that is 65536 bytes too short is "
         "noticed only at the end, and is not requested again.",
         "Make word, row and block smaller."},
        {Code::DiffersFromOther, "T043", warning, "A value differs from the other table",
         "Works with this table's value.", "Find out which of the two is right."},
        {Code::MissingInOther, "T044", warning, "A device that is in only one of the tables",
         "Knows the devices of its own table only.", "Find out which of the two is right."},

        {Code::ImageUnreadable, "I001", error, "The image cannot be read",
         "Creates a missing file, empty, when it reads its command line, and then writes nothing "
         "of it and succeeds; refuses one that cannot be opened for reading and writing.",
         "Name a readable file."},
        {Code::ImageWithoutData, "I002", error, "An image without data",
         "Takes it as a good image: -w and -wv write nothing and succeed, -v fails.",
         "Check that this is the right file and that it was created without an error."},
        {Code::RecordCutShort, "I003", error, "A record that is cut short", refuses_file,
         make_again},
        {Code::RecordBadDigit, "I004", error, "A character that is not a hexadecimal digit",
         refuses_file, make_again},
        {Code::RecordChecksum, "I005", error, "A checksum that does not match", refuses_file,
         "Create or copy the file again. Do not correct the checksum: the record is damaged."},
        {Code::NoFurtherRecord, "I006", error, "Text without a \":\" where a record should be",
         refuses_file, make_again},
        {Code::SegmentAddress, "I007", error, "A segment address record", refuses_file,
         "Create the file with 32-bit linear addresses, or convert it."},
        {Code::SegmentStart, "I008", error, "A segment start record", refuses_file,
         "Create the file with 32-bit linear addresses, or convert it."},
        {Code::Overlap, "I009", error, "The same address twice", refuses_file,
         "Find out which of the two is right; equal bytes are refused, too."},
        {Code::LostColon, "I010", error, "A record that has lost its \":\"",
         "Skips the line silently. Its data are missing, and if it is an address record, the data "
         "after it go to the wrong addresses. -v and -wv do not notice.",
         make_again},
        {Code::TextBetween, "I011", warning, "Text between records", "Skips it.",
         "Check that nothing is missing there."},
        {Code::RecordsAfterEnd, "I012", warning, "Records after the end record",
         "Stops at the end record. What follows is not written, and -v does not notice.",
         "Load the files one by one, or join them with a tool that knows HEX files."},
        {Code::NoEndRecord, "I013", warning, "No end record",
         "Loads the file. If its end is missing, so are the data there, and -v does not notice.",
         "Check that the file is complete."},
        {Code::AddressBit23, "I014", error, "An address with bit 23 set",
         "Widens the second byte of the address as a signed number: the data that follow go to "
         "0xFF800000 and above, where no device has memory. -w and -v skip them.",
         "Link the data to addresses with bit 23 clear."},
        {Code::StartAddressBeforeData, "I015", error, "A start address before data",
         "Takes a start address (type 5) as the upper address of the data that follow, which end "
         "up elsewhere.",
         "Move the record to the end of the file, or remove it."},
        {Code::AddressRecordLength, "I016", warning, "An address record of unusual length",
         "Takes missing bytes as 0 and ignores extra ones.",
         "Create the file again: type 4 records have two bytes, type 5 records four."},
        {Code::UnknownType, "I017", warning, "A record of an unknown type", "Skips it.",
         "Find out what the record is for."},
        {Code::EndOfAddresses, "I018", error, "Data up to the end of the address space",
         "Writes no byte of a piece that reaches 0xFFFFFFFF or beyond.", "Correct the addresses."},
        {Code::OutsideDevice, "I019", error, "Bytes outside the device",
         "Skips them: -w, -wv and -v do their work without them and succeed.",
         "Check that image and device belong together."},
        {Code::InBootloader, "I020", warning, "Bytes in the bootloader",
         "Never writes the bootloader: skips them and succeeds.",
         "Leave the bootloader out of the image, or know that it stays as it is."},
        {Code::AcrossLimit, "I021", error, "A record that runs across a limit",
         "Treats the whole piece as part of the memory in which it begins: -w leaves out what lies "
         "after the end of that memory and succeeds, -v and -wv fail there.",
         "Split the record at the limit."},
        {Code::NotOnRow, "I022", warning, "Data that begin inside a row",
         "-w fails with \"address must be a multiple of row_size\". -wv rounds down to whole rows "
         "and works, but fills the rest of these rows with the filler.",
         "Let the data start on a row. Use -wv if the rest of the row may be lost."},
        {Code::NothingInDevice, "I023", error, "Nothing of the image lies in the device",
         "-w and -wv write nothing and succeed, -v fails.",
         "Check that image and device belong together."},

        {Code::LogUnreadable, "L001", error, "The log cannot be read",
         "Never reads a log; -x appends to it.", "Name a readable log."},
        {Code::LogWithoutFrames, "L002", warning, "A log without frames",
         "Logs nothing when it ends before its first command, or when a probe finds the device and "
         "nothing else is asked for.",
         "Check that this is the file of -x, and how far the run got."},
        {Code::LogOtherText, "L003", warning, "Lines that are no frames",
         "Never writes them; -x appends to whatever the file has held.",
         "Check what else writes to the file."},
        {Code::LogDamagedLine, "L004", warning, "A line that is damaged or cut",
         "Writes whole lines, unless it is killed or the disk is full. It adds what fits.",
         "Do not rely on what is reported about the lines next to it."},
        {Code::AnswerWithoutCommand, "L005", warning, "An answer that no command goes before",
         "Logs the command before its answer, and one answer at most: lines are missing, or two "
         "runs have written at once.",
         "Give each port a log of its own, and keep the whole of it."},
        {Code::DeviceNotFound, "L006", error, "No device answers the version command",
         "Asks 15 times, between its probes, and ends with \"Did not succeed in QV entry "
         "procedure, aborting...\".",
         "Check port, wiring and power; switch the device on while the run looks for it. Use -h "
         "where the line echoes."},
        {Code::NothingAnswered, "L007", error, "Nothing is answered in a run",
         "Sends a command 40 times, 300 ms apart, and ends with \"giving up after having made 40 "
         "attempts ...\".",
         "Check that the device runs its bootloader, at the rate in its row of the table; that "
         "the adapter can do this rate; that the version of -B is right; that -h is used only "
         "where the line echoes; wiring and power."},
        {Code::SilentAfterVersion, "L008", error, "Nothing is answered after the version",
         "Asks for the version at 460800 baud and goes on at the rate of the table; sends the "
         "command 40 times and ends with \"giving up after having made 40 attempts ...\".",
         "Correct the rate in the table: the device hears one rate and not the other. If it is "
         "right, check that the adapter can do it."},
        {Code::CommandGivenUp, "L009", error, "A command that is given up",
         "Ends with \"giving up after having made 40 attempts ...\"; -wv takes a row that it "
         "cannot read for one that differs and goes on.",
         "Look at what else is reported about this log. If the answers stop from one command to "
         "the next, the device has lost its power or its line, or does not serve this command."},
        {Code::EchoAsAnswer, "L010", error, "The line echoes",
         "Takes the echo for the answer, refuses it and sends the command again.",
         "Use -h: the line is half duplex."},
        {Code::SlowErase, "L011", error, "Erasing takes longer than 300 ms",
         "Sends the erase again, and the device then acknowledges it twice. If the "
         "second acknowledgement is taken for that of the next command, the run fails there.",
         "Use -e -wv, which erases one page at a time. If one page takes longer than 300 ms, the "
         "device cannot be served."},
        {Code::LateAnswer, "L012", error, "Answers that come late or twice",
         "Refuses such an answer to a read and fails at such an acknowledgement. That of another "
         "row is taken for the right one, because acknowledgements have no address.",
         "Find out why answers take longer than 300 ms or come twice: a slow device, a long row "
         "at a low rate, an adapter that holds bytes back. Verify with -v."},
        {Code::WrongAcknowledgement, "L013", error, "A wrong acknowledgement",
         "Fails at once; a wrong acknowledgement is not asked for again.",
         "Check that the table's row is that of the device: it refuses the command, or means "
         "something else by it."},
        {Code::AnswerLength, "L014", error, "Answers of another length",
         "Refuses the answer and sends the command again.",
         "After a read, correct the word size in the table, or the version of -B: the device has "
         "other words. After another command, check what is connected to the port."},
        {Code::StrayBytes, "L015", warning, "Bytes before an answer",
         "Refuses the answer and sends the command again.",
         "Look for noise on the line, for another program on the port, and for a device that "
         "sends text of its own."},
        {Code::RefusedAnswer, "L016", warning, "Damaged answers",
         "Refuses the answer and sends the command again.",
         "Look for noise: cable, ground, supply, a rate that device and adapter do not quite "
         "agree on. If all answers to reads lack their beginning, and only they are in the log, "
         "remove -h: the line does not echo."},
        {Code::LostAnswer, "L017", warning, "Commands that were not answered in time",
         "Waits 300 ms and sends the command again.",
         "Look for noise that swallows commands or answers, and for rows that take too long at "
         "their rate. Use -v after -w."},
        {Code::ReadBackDiffers, "L018", error, "A row that reads back differently",
         "-wv ends with \"Row verify failure ...\"; -v reads the row up to three more times.",
         "Check that the flash was erased and is not worn or protected, and that the filler in "
         "the table is the erased state."},
        {Code::UnfinishedRun, "L019", warning, "A run that breaks off",
         "Was ended from outside, has lost its port, could not write its log, or is still at "
         "work: by itself it goes on until an answer is accepted or the attempts are used up.",
         "Look at the console and the exit status of the run."},
        {Code::OtherVersion, "L020", warning, "The log is that of another device",
         "Uses the row of the version that the device reports.",
         "Name that version, for the byte addresses to be right."},

        {Code::PortsUnknown, "S001", error, "The system does not list its ports",
         "Opens the port that -s names; it needs no list.",
         "On Linux, mount /sys. Elsewhere, look for the ports with the system's own tools."},
        {Code::NoPort, "S002", warning, "There is no serial port", cannot_be_opened,
         "Plug the adapter in and look at what the kernel reports (dmesg). In a virtual machine or "
         "a container, pass the adapter on to it."},
        {Code::NoDeviceFile, "S003", error, "A port without a device file", cannot_be_opened,
         "In a container, pass the device file on to it. Elsewhere, look whether udev runs."},
        {Code::NoPermission, "S004", error, "The user may not open the port", cannot_be_opened,
         "Have the user added to the group of the port, and log in again."},
        {Code::PortInUse, "S005", error, "Another program has the port open",
         "Ends with \"Port ... cannot be opened. Aborting...\" where that program has locked the "
         "port. Elsewhere it opens the port, and each of the two gets some of the bytes.",
         "End the other program."},
        {Code::LockedPort, "S006", error, "A lock file on the port", cannot_be_opened,
         "Wait for the program that has locked the port, or end it."},
        {Code::StaleLock, "S007", warning, "A lock file of a program that has ended",
         "Removes the file and opens the port if its user may remove it; if not, ends with "
         "\"Port ... cannot be opened. Aborting...\".",
         "Remove the file."},
        {Code::NoLockFolder, "S008", error, "No folder for lock files", cannot_be_opened,
         "Give the user a folder to write to, such as /run/lock; in a container, mount one there."},
        {Code::LatencyTimer, "S009", warning, "An adapter that holds answers back",
         "Waits up to that long in addition for every answer.",
         "Set the adapter's latency timer to 1 ms, as root; a rule of udev does it for good."},
        {Code::ProbingService, "S010", warning, "A service that probes new ports",
         "Cannot open the port while the service probes it, or meets bytes that it has not sent: "
         "for up to half a minute after the adapter is plugged in.",
         "Have the service leave the adapter alone: a rule of udev with ENV{ID_MM_DEVICE_IGNORE}="
         "\"1\" for its vendor and product; or stop the service."},
        {Code::BrailleService, "S011", warning,
         "A service that takes adapters for braille displays",
         "Finds no port, or loses it shortly after the adapter is plugged in.",
         "Stop and disable brltty where no braille display is used."},

        {Code::CommandLineRefused, "P001", error, "The command line is refused",
         "Prints the message and ends with status 1 before anything is sent. Files that it has met "
         "by then have been created when they were missing.",
         "Correct the command line."},
        {Code::IgnoredWord, "P002", warning, "A word that is no option", "Passes over it.",
         "Correct or remove it. Options are whole words, and case matters."},
        {Code::VersionRequestFails, "P003", error, "-V without -B",
         "Fails with \"Version request failed, aborting...\": -V shows the version of a profile "
         "that "
         "has been selected, and none has been.",
         "Leave out -V. To see a device's version, run with -s alone."},
        {Code::VersionRequestIdle, "P004", warning, "-V beside -B",
         "Uses the version of -B and asks for none.", "Leave out -V."},
        {Code::VersionInHex, "P005", warning, "A version that looks like a decimal number",
         "Reads the version as hexadecimal, although its own message offers decimal.",
         "If hexadecimal is meant, write 0x before it, or four digits."},
        {Code::VersionZero, "P006", warning, "A version of 0",
         "Takes no version to be given, and runs the entry procedure.",
         "Name a version, or leave out -B."},
        {Code::VersionCut, "P007", warning, "A version of more than 16 bits",
         "Uses the low 16 bits.", "Write up to four hexadecimal digits."},
        {Code::OtherDevice, "P008", error, "-B and --device name different devices",
         "Believes -B, and talks to the device on the line as if it were that one.",
         "Correct one of the two, or leave out -B and let the device answer."},
        {Code::ProfileMissing, "P009", error, "No row for the version",
         "Finds no profile and ends with status 1 before the first operation.",
         "Give the table a row for this version."},
        {Code::PortMissing, "P010", error, "No port is named",
         "Fails with \"Port  cannot be opened. Aborting...\".", "Name the port after -s."},
        {Code::RateIdle, "P011", warning, "-M has no effect",
         "Uses the rates of the entry procedure, and then that of the table.",
         "Leave out -M. The rate is a column of the table."},
        {Code::EraseRangeUnused, "P012", error, "-E does not erase its range",
         "Looks only at whether the two addresses are 0: the first includes encrypted flash, the "
         "second unencrypted flash. What it erases is the page that holds address 1, which belongs "
         "to the bootloader of most devices; then it fails.",
         "Use -e, or -wv, which erases the pages that it writes."},
        {Code::RangeNotErased, "P013", warning, "-W does not erase",
         "Writes the range over what is there, although its usage text says that it erases.",
         "Use -wv, or add -e if all of flash may be lost."},
        {Code::ByteAddresses, "P014", warning, "-W and -l count in bytes",
         "Takes the addresses for byte addresses, although its usage text says words.",
         "Write byte addresses."},
        {Code::OctalNumber, "P015", warning, "A number with a leading 0",
         "Reads the number as octal.", "Leave out the 0, or write 0x for hexadecimal."},
        {Code::OptionAsArgument, "P016", warning, "An option in the place of an argument",
         "Takes the word for what the option before it needs, such as a file name.",
         "Write what is missing before the second option."},
        {Code::LogWithoutName, "P017", warning, "-x without a file", "Writes no log.",
         "Name a file after -x, or leave it out."},
        {Code::OperationLeftOut, "P018", error, "Operations that -wv leaves out",
         "Carries out -wv alone. -e beside it means that no page is compared first.",
         "Leave them out, or run them on their own."},
        {Code::DifferentImages, "P019", warning, "One image is written and another verified",
         "Does so.", "Name the same file twice, unless it is meant."},
        {Code::OneFileTwice, "P020", error, "One file for two purposes",
         "Does with it what both options say, one after the other: what -r and -l read replaces "
         "what was in it, and -x appends to it.",
         "Name different files."},
        {Code::ImageMissing, "P021", error, "An image that does not exist",
         "Creates it, empty. -w and -wv write nothing and succeed, -v fails.", "Correct the name."},
        {Code::ImageUnforeseen, "P022", error, "An image that cannot be foreseen",
         "Opens and closes it while it takes the command line, and later reads it.",
         "Name a regular file."},
        {Code::StepFails, "P023", error, "A step fails",
         "Ends with status 1. Nothing is undone that was done before.",
         "Correct what the message is about."},
        {Code::BitsNotErased, "P024", error, "Bits would have to go from 0 to 1",
         "Writes all the same, and succeeds. Writing only clears bits: bytes that have not been "
         "erased end up with other values, which -v finds and -w does not.",
         "Erase first with -e, or use -wv."},
        {Code::AnswerTooLate, "P025", error, "An answer that comes too late",
         "Waits 300 ms for each answer, asks 40 times and fails.",
         "Make row and block smaller, or the rate higher, if the device can do it."},
        {Code::ContentOutside, "P026", warning, "Present content outside the device",
         "Never sees it; the plan passes over it.",
         "Check that --before and --device belong together."},
        {Code::ContentLost, "P027", warning, "Content that the image does not name is lost",
         "Erases whole pages with -wv, writes whole rows, and fills what the image does not name "
         "there with the filler. It succeeds, and -v does not look at these bytes.",
         "To change a few bytes, put the change into a file that -r has read from the device, and "
         "write that file with -wv. Where the rest is to go, this is no problem."},
        {Code::NothingSelected, "P028", error, "A step that does nothing with its image",
         "Sends no command. -w, -W and -wv succeed all the same, even after -e; -v fails.",
         "Correct the range of -W, or leave out -xe or -xu."},
    };
    return kinds;
}

} // namespace inspect
