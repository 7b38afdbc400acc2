#pragma once

/// The record types of Intel HEX files. A record read from a file may carry any other byte too.
enum class IntelHexFileRecordType : unsigned char {
    Data = 0,
    EndOfFile = 1,
    ExtendedSegmentAddress = 2,
    StartSegmentAddress = 3,
    ExtendedLinearAddress = 4,
    StartLinearAddress = 5,
};
