#pragma once

#include <QString>

#include <vector>

namespace inspect
{

enum class Severity {
    Error,   ///< the uploader refuses it, or does not do what was asked
    Warning, ///< the uploader accepts it, and it is probably not what was meant
};

/// "error" or "warning".
QString name_of(Severity severity);

/// Everything that can be found wrong. docs/inspect.md has an entry for each.
enum class Code {
    TableUnreadable,
    RowWithBlanks,
    RowColumns,
    RowVersion,
    FieldIsNoNumber,
    WordsPerAddressZero,
    DuplicateVersion,
    NoDevice,
    WordSizeRange,
    WordsPerAddressRange,
    RowSizeRange,
    BlockSizeRange,
    PageSizeRange,
    MemoryEmpty,
    MemoryWithoutWords,
    RateUnusable,
    EepromInsideBlock,
    AddressesWrap,
    CommandWords,
    PageNotRows,
    RowNotWords,
    BlockNotWords,
    RowNotBlock,
    LimitOffPage,
    LimitOffRow,
    LimitOffBlock,
    AreaOutsideFlash,
    AreaOffPage,
    MemoriesOverlap,
    NoBootloader,
    FillerNotErased,
    MemoryBeyondHex,
    DivisorNotOne,
    DivisorRounded,
    RateNotStandard,
    VersionLowByte,
    FlashEndsDisagree,
    EepromSizesDisagree,
    FillerSizeDisagrees,
    RowTooSlow,
    WordAddressTooLong,
    AnswerTooLong,
    DiffersFromOther,
    MissingInOther,

    ImageUnreadable,
    ImageWithoutData,
    RecordCutShort,
    RecordBadDigit,
    RecordChecksum,
    NoFurtherRecord,
    SegmentAddress,
    SegmentStart,
    Overlap,
    LostColon,
    TextBetween,
    RecordsAfterEnd,
    NoEndRecord,
    AddressBit23,
    StartAddressBeforeData,
    AddressRecordLength,
    UnknownType,
    EndOfAddresses,
    OutsideDevice,
    InBootloader,
    AcrossLimit,
    NotOnRow,
    NothingInDevice,

    LogUnreadable,
    LogWithoutFrames,
    LogOtherText,
    LogDamagedLine,
    AnswerWithoutCommand,
    DeviceNotFound,
    NothingAnswered,
    SilentAfterVersion,
    CommandGivenUp,
    EchoAsAnswer,
    SlowErase,
    LateAnswer,
    WrongAcknowledgement,
    AnswerLength,
    StrayBytes,
    RefusedAnswer,
    LostAnswer,
    ReadBackDiffers,
    UnfinishedRun,
    OtherVersion,

    PortsUnknown,
    NoPort,
    NoDeviceFile,
    NoPermission,
    PortInUse,
    LockedPort,
    StaleLock,
    NoLockFolder,
    LatencyTimer,
    ProbingService,
    BrailleService,

    CommandLineRefused,
    IgnoredWord,
    VersionRequestFails,
    VersionRequestIdle,
    VersionInHex,
    VersionZero,
    VersionCut,
    OtherDevice,
    ProfileMissing,
    PortMissing,
    RateIdle,
    EraseRangeUnused,
    RangeNotErased,
    ByteAddresses,
    OctalNumber,
    OptionAsArgument,
    LogWithoutName,
    OperationLeftOut,
    DifferentImages,
    OneFileTwice,
    ImageMissing,
    ImageUnforeseen,
    StepFails,
    BitsNotErased,
    AnswerTooLate,
    ContentOutside,
    ContentLost,
    NothingSelected,
};

/// One row of the table of codes.
struct ProblemKind {
    Code code;
    const char* name; ///< stable, such as "T012"
    Severity severity;
    const char* title;
    const char* uploader; ///< what the uploader will do about it
    const char* remedy;   ///< what to do instead
};

/// The row of a code.
const ProblemKind& kind_of(Code code);

/// All rows, in the order of the codes.
const std::vector<ProblemKind>& problem_kinds();

} // namespace inspect
