#pragma once

#include "device/AddressRange.h"

#include <QByteArray>

class MemoryMap;
class ZarnSerialDevice;

/// Sends rows of an image to a device and reports the progress. All of it must outlive the writer.
/// Addresses and sizes are in bytes.
class RowWriter
{
public:
    /// What follows the write of a flash row.
    enum class Check { None, ReadBack };

    /// `total` is what the progress counts up to.
    RowWriter(ZarnSerialDevice& device, const MemoryMap& image, const bool& abort_requested,
              unsigned int total, Check check);

    /// Reports that nothing has been done yet and opens the port.
    bool begin();
    /// A row that the image does not touch counts as done but is not sent, so that the device keeps
    /// what it holds there.
    bool write_flash_row(unsigned int address);
    /// Rows are written whether the image touches them or not, with filler where it does not.
    bool write_eeprom_rows(AddressRange rows);
    /// Counts bytes as done.
    void advance(unsigned int bytes);
    /// Reports the end.
    bool complete();

private:
    bool send_flash_row(unsigned int address, const QByteArray& row);
    bool read_back(unsigned int address, const QByteArray& written);
    bool write_eeprom_row(unsigned int address);

    ZarnSerialDevice& m_device;
    const MemoryMap& m_image;
    const bool& m_abort_requested;
    unsigned int m_processed = 0;
    const unsigned int m_total;
    const Check m_check;
};
