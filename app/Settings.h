#pragma once

#include <QString>

/// A pair of addresses as typed, passed on unchanged.
struct TypedRange {
    unsigned int lower = 0;
    unsigned int upper = 0;
};

/// What the command line asks for.
struct Settings {
    QString port_name;
    unsigned int baud = 9600;
    bool half_duplex = false;

    bool entry_procedure_wanted = true;
    bool version_request_wanted = false;
    unsigned int bootloader_version = 0; ///< 0: not given

    bool write_wanted = false;
    bool write_range_wanted = false;
    TypedRange write_range;
    QString write_file;

    bool read_wanted = false;
    bool read_range_wanted = false;
    TypedRange read_range;
    QString read_file;

    bool erase_all_wanted = false;
    bool erase_range_wanted = false;
    TypedRange erase_range;

    bool verify_wanted = false;
    QString verify_file;

    bool write_and_verify_wanted = false;
    /// Kept apart from the files of "-w", "-W" and "-v", which may be named again later on the
    /// line.
    QString write_and_verify_file;

    bool reset_wanted = false;
    bool include_encrypted = true;
    bool include_unencrypted = true;

    QString log_file;
};
