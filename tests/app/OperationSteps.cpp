#include "tests/app/OperationSteps.h"

#include "tests/support/Bytes.h"

namespace test
{

namespace
{

// The image by rows.
const QByteArray row_80 = counting(0x20, 0x10);
const QByteArray row_a0 = counting(0x20, 0x60);
const QByteArray row_100 = counting(0x20, 0x80);
const QByteArray eeprom_1000 = counting(0x10, 0xC0);
const QByteArray eeprom_1010 = counting(0x10, 0xE0);

const std::vector<Piece> written_image{
    {0x80, row_80 + row_a0}, {0x100, row_100}, {0x1000, eeprom_1000 + eeprom_1010}};

/// The contents of a device that has been programmed before.
const Piece old_flash{0x40, counting(0x100, 0x01)};
const Piece old_eeprom{0x1000, counting(0x20, 0x31)};

QByteArray digits(unsigned int address)
{
    return QByteArray::number(address, 16).rightJustified(8, '0');
}

QByteArray erase_failure(unsigned int page)
{
    return "unable to erase flash page at address 0x" + digits(page).toUpper() + "\n";
}

Step read_step(const std::string& command, const char* memory, unsigned int address)
{
    return {command, {}, memory + ("read() at " + digits(address)) + " could not be performed\n"};
}

Step erase_step(unsigned int page)
{
    return {erase_page(page), {}, erase_failure(page), {page, QByteArray(0x40, '\xFF')}};
}

Step flash_step(unsigned int address, const QByteArray& row, const QByteArray& printed)
{
    return {write_flash(address, row),
            printed,
            "unable to write flash row at address 0x" + digits(address).toUpper() + "\n",
            {address, row}};
}

Step eeprom_step(unsigned int address, const QByteArray& row, const QByteArray& printed)
{
    return {write_eeprom(address, row),
            printed,
            "unable to write EEPROM row at address 0x" + digits(address).toUpper() + "\n",
            {address, row}};
}

/// A read that compares a row. After a failed one the tool tries to rewrite the page: it sends an
/// erase, which a lost device does not answer either.
Step compare_step(unsigned int page, unsigned int row)
{
    return {
        read_flash(row), {}, given_up_on_silence() + erase_failure(page), {}, {erase_page(page)}};
}

Step read_back_step(unsigned int row, const QByteArray& printed)
{
    return {read_flash(row), printed,
            "unable to verify read flash row at address 0x" + digits(row).toUpper() + "\n"};
}

Operation erase()
{
    return {"erase",
            "-e",
            {old_flash, old_eeprom},
            {{"0304400000",
              {},
              "unable to erase 4 flash pages at address 0x00000040\n",
              {0x40, QByteArray(0x100, '\xFF')}}},
            {},
            {},
            "Erase all flash failed? Aborting...\n",
            "Erased all flash!\n"};
}

Operation write()
{
    return {"write",
            "-w image.hex",
            {old_eeprom},
            {flash_step(0x80, row_80, progress({37})),
             flash_step(0xA0, row_a0, progress({50, 62, 75})),
             flash_step(0x100, row_100, progress({87})),
             eeprom_step(0x1000, eeprom_1000, progress({93})),
             eeprom_step(0x1010, eeprom_1010, progress({100}))},
            "Now writing",
            progress({0, 12, 25}),
            "Failed to write memory, aborting...\n",
            "Memory written!\n"};
}

Operation write_range()
{
    return {"write range",
            "-W 0x80 0x1010 image.hex",
            {old_eeprom},
            {flash_step(0x80, row_80, progress({15})),
             flash_step(0xA0, row_a0, progress({30, 46, 61})),
             flash_step(0x100, row_100, progress({76, 92})),
             eeprom_step(0x1000, eeprom_1000, progress({100}))},
            "Now writing",
            progress({0}),
            "Failed to write memory range, aborting...\n",
            "Memory range written!\n"};
}

Operation read()
{
    std::vector<Step> steps;
    for (unsigned int row = 0x40; row < 0x140; row += 0x20) {
        steps.push_back(read_step(read_flash(row), "", row));
    }
    steps.push_back(read_step(read_eeprom(0x1000), "eeprom ", 0x1000));
    steps.push_back(read_step(read_eeprom(0x1010), "eeprom ", 0x1010));
    return {"read",
            "-r out.hex",
            {old_flash, old_eeprom},
            steps,
            {},
            {},
            "Failed to read memory, aborting...\n",
            "Memory read!\n",
            false,
            {old_flash, old_eeprom}};
}

Operation read_range()
{
    std::vector<Step> steps;
    for (unsigned int row = 0xC0; row < 0x140; row += 0x20) {
        steps.push_back(read_step(read_flash(row), "", row));
    }
    steps.push_back(read_step(read_eeprom(0x1000), "eeprom ", 0x1000));
    return {"read range",
            "-l 0xC0 0x1010 out.hex",
            {old_flash, old_eeprom},
            steps,
            {},
            {},
            "Failed to read memory range, aborting...\n",
            "Memory range read!\n",
            false,
            {{0xC0, old_flash.bytes.mid(0x80)}, {0x1000, old_eeprom.bytes.left(0x10)}}};
}

Operation verify()
{
    return {"verify",
            "-v image.hex",
            written_image,
            {{read_flash(0x80), progress({25}), {}},
             {read_flash(0xA0), progress({50}), {}},
             {read_flash(0x100), progress({75}), {}},
             {read_eeprom(0x1000), progress({87}), {}},
             {read_eeprom(0x1010), progress({100}), {}}},
            "Verifying firmware\n",
            {},
            "Verification failure!\n",
            "Verified!\n",
            true};
}

} // namespace

/// The page at 0x80 differs in its second row only.
Operation write_and_verify()
{
    return {"write and verify",
            "-wv image.hex",
            {old_flash, {0x80, row_80}, old_eeprom},
            {compare_step(0x80, 0x80), compare_step(0x80, 0xA0), erase_step(0x80),
             flash_step(0x80, row_80, {}), read_back_step(0x80, progress({20})),
             flash_step(0xA0, row_a0, {}), read_back_step(0xA0, progress({40})),
             compare_step(0x100, 0x100), erase_step(0x100), flash_step(0x100, row_100, {}),
             read_back_step(0x100, progress({60, 80})),
             eeprom_step(0x1000, eeprom_1000, progress({90})),
             eeprom_step(0x1010, eeprom_1010, progress({100}))},
            "Uploading firmware\n",
            progress({0}),
            "Write-and-verify failure!\n",
            "Uploaded!\n",
            true};
}

std::vector<Operation> other_operations()
{
    return {erase(), write(), write_range(), read(), read_range(), verify()};
}

QByteArray operations_image()
{
    return image_file(written_image);
}

} // namespace test
