#include "device/RowWriter.h"

#include "device/Rows.h"
#include "device/ZarnSerialDevice.h"
#include "util/Util.h"

RowWriter::RowWriter(ZarnSerialDevice& device, const MemoryMap& image, const bool& abort_requested,
                     unsigned int total, Check check)
    : m_device(device),
      m_image(image),
      m_abort_requested(abort_requested),
      m_total(total),
      m_check(check)
{
}

bool RowWriter::begin()
{
    advance(0);
    return m_device.open_port();
}

bool RowWriter::write_flash_row(unsigned int address)
{
    QByteArray row;
    if (rows::fill(m_device, m_image, MEMORY_FLASH, address, row) &&
        !send_flash_row(address, row)) {
        return false;
    }
    advance(m_device.get_attr(Profile::flash_row_size));
    return true;
}

bool RowWriter::send_flash_row(unsigned int address, const QByteArray& row)
{
    if (!m_device.write_memory(address, row)) {
        return m_device.error(QStringLiteral("unable to write flash row at address 0x%1")
                                  .arg(Util::uint_to_hex(address, -1)));
    }
    return m_check == Check::None || read_back(address, row);
}

bool RowWriter::read_back(unsigned int address, const QByteArray& written)
{
    QByteArray row;
    if (!rows::read(m_device, MEMORY_FLASH, address, row)) {
        return m_device.error(QStringLiteral("unable to verify read flash row at address 0x%1")
                                  .arg(Util::uint_to_hex(address, -1)));
    }
    return row == written || m_device.error(QStringLiteral("Row verify failure at address 0x%1")
                                                .arg(Util::uint_to_hex(address, -1)));
}

bool RowWriter::write_eeprom_rows(AddressRange rows)
{
    return rows::walk(m_device, rows, m_device.get_attr(Profile::eeprom_row_size),
                      m_abort_requested,
                      [&](unsigned int address) { return write_eeprom_row(address); });
}

bool RowWriter::write_eeprom_row(unsigned int address)
{
    QByteArray row;
    rows::fill(m_device, m_image, MEMORY_EEPROM, address, row);
    if (!m_device.write_memory(address, row)) {
        return m_device.error(QStringLiteral("unable to write EEPROM row at address 0x%1")
                                  .arg(Util::uint_to_hex(address, -1)));
    }
    advance(m_device.get_attr(Profile::eeprom_row_size));
    return true;
}

void RowWriter::advance(unsigned int bytes)
{
    m_processed += bytes;
    Q_EMIT m_device.sig_upload_progress(m_processed, m_total);
}

bool RowWriter::complete()
{
    Q_EMIT m_device.sig_operation_complete();
    return true;
}
