#include "inspect/ImageFile.h"

#include "inspect/Figures.h"
#include "inspect/FileHash.h"
#include "inspect/ImageWatch.h"
#include "inspect/InputFile.h"
#include "inspect/SilentLibrary.h"

#include <algorithm>
#include <zlib.h>

namespace inspect
{

namespace
{

constexpr quint64 end_of_addresses = quint64{1} << 32;

quint64 end_of(const AddressedBLOB& blob)
{
    return quint64{blob.address} + blob.size();
}

/// Joins pieces that touch. The image must be in the order of its addresses.
std::vector<Segment> segments_of(const MemoryMap& image)
{
    std::vector<Segment> segments;
    for (const auto& blob : image.blobs()) {
        if (blob->size() == 0) {
            continue;
        }
        if (!segments.empty() && segments.back().end == blob->address) {
            segments.back().end = end_of(*blob);
        } else {
            segments.push_back({blob->address, end_of(*blob)});
        }
    }
    segments.shrink_to_fit();
    return segments;
}

quint32 crc32_of(const MemoryMap& image)
{
    constexpr unsigned int block_size = 64 * 1024;
    QByteArray block;
    uLong sum = ::crc32(0, nullptr, 0);
    for (const auto& blob : image.blobs()) {
        for (quint64 offset = 0; offset < blob->size(); offset += block_size) {
            const unsigned int count =
                blob->read(static_cast<unsigned int>(offset), block_size, block);
            sum = ::crc32(sum, reinterpret_cast<const Bytef*>(block.constData()), count);
        }
    }
    return static_cast<quint32>(sum);
}

/// The line of the first data record of which `is_wanted(start, data)` is true; 0 when there is
/// none.
template <typename Predicate>
qint64 line_where(const QString& path, const Predicate& is_wanted)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return 0;
    }
    intel_hex::RecordReader reader(file);
    intel_hex::Record record;
    unsigned int upper = 0;
    while (reader.next(record).outcome == intel_hex::RecordOutcome::Complete &&
           record.type != IntelHexFileRecordType::EndOfFile) {
        if (record.type == IntelHexFileRecordType::Data &&
            is_wanted(upper + record.address, record.data)) {
            return reader.record_position().line;
        }
        upper = intel_hex::upper_address_after(record, upper);
    }
    return 0;
}

qint64 line_of_empty_record(const QString& path, unsigned int address)
{
    return line_where(path, [address](unsigned int start, const QByteArray& data) {
        return start == address && data.isEmpty();
    });
}

class ImageReader
{
public:
    explicit ImageReader(const QString& path) : m_watch(path) { m_result.path = path; }

    ImageFile read(const QSet<unsigned int>& boundaries);

private:
    void load(QFile& file, const QSet<unsigned int>& boundaries);
    void explain_overlap();
    void check_loaded(const intel_hex::TextPosition& end);
    void check_end_of_addresses();
    void add(Code code, const QString& message, const intel_hex::TextPosition& position = {0, 0});

    ImageFile m_result;
    ImageWatch m_watch;
};

ImageFile ImageReader::read(const QSet<unsigned int>& boundaries)
{
    QFile file(m_result.path);
    InputFile input(m_result.path);
    if (!input.is_open()) {
        add(Code::ImageUnreadable, input.reason());
        return std::move(m_result);
    }
    m_result.file_size = static_cast<quint64>(input.file().size());
    auto hash = sha256_of(m_result.path);
    if (file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        load(file, boundaries);
    }
    m_result.sha256 = hash.get();
    m_result.is_readable = !m_result.sha256.isEmpty();
    if (!m_result.is_readable) {
        add(Code::ImageUnreadable, QStringLiteral("reading it fails"));
    }
    std::stable_sort(
        m_result.problems.begin(), m_result.problems.end(),
        [](const Problem& a, const Problem& b) { return a.place.line < b.place.line; });
    return std::move(m_result);
}

void ImageReader::load(QFile& file, const QSet<unsigned int>& boundaries)
{
    intel_hex::RecordReader reader(file);
    {
        const SilentLibrary silent; // the watch reports it with line and column
        m_result.loads = m_result.image.load_from_hex_records(
            reader, boundaries, [this](const auto& at, const auto& parsed, const auto& record) {
                m_watch.take(at, parsed, record);
            });
    }
    const intel_hex::TextPosition end = reader.position();
    if (m_watch.has_ended()) {
        m_watch.take_rest(reader);
    }
    m_result.records = m_watch.counts();
    m_result.start_address = m_watch.start_address();
    m_result.problems = m_watch.problems(m_result.path);
    if (!m_result.loads && m_watch.has_refused()) {
        m_result.image.clear();
    } else if (!m_result.loads) {
        explain_overlap();
        m_result.image.clear();
    } else {
        check_loaded(end);
    }
}

/// The loader leaves the pieces sorted by address.
void ImageReader::explain_overlap()
{
    const auto& blobs = m_result.image.blobs();
    const auto overlap =
        std::adjacent_find(blobs.begin(), blobs.end(), [](const auto& blob, const auto& next) {
            return end_of(*blob) > next->address;
        });
    if (overlap == blobs.end()) {
        return;
    }
    const AddressedBLOB& next = **(overlap + 1);
    const quint64 address = next.address;
    if (next.size() == 0) {
        add(Code::Overlap,
            QStringLiteral("A record without data stands at %1, amid other data.")
                .arg(address_text(address)),
            {line_of_empty_record(m_result.path, next.address), 1});
        m_result.problems.back().remedy = QStringLiteral("Remove the record without data.");
        return;
    }
    const qint64 first = line_of(m_result.path, address);
    const qint64 second = line_of(m_result.path, address, 1);
    add(Code::Overlap,
        QStringLiteral("Lines %1 and %2 both have data for 0x%3.")
            .arg(first)
            .arg(second)
            .arg(address, 8, 16, QLatin1Char('0')),
        {second, 1});
}

void ImageReader::check_loaded(const intel_hex::TextPosition& end)
{
    m_result.segments = segments_of(m_result.image);
    m_result.crc32 = crc32_of(m_result.image);
    if (m_result.segments.empty()) {
        add(Code::ImageWithoutData, m_result.file_size == 0
                                        ? QStringLiteral("The file is empty.")
                                        : QStringLiteral("No record of the file has data."));
    }
    if (!m_watch.has_ended() && m_result.file_size != 0) {
        add(Code::NoEndRecord, QStringLiteral("The file ends without one."), end);
    }
    check_end_of_addresses();
}

void ImageReader::check_end_of_addresses()
{
    const auto reaches_end = [](const auto& blob) {
        return blob->size() != 0 && end_of(*blob) >= end_of_addresses;
    };
    const auto& blobs = m_result.image.blobs();
    const auto first = std::find_if(blobs.begin(), blobs.end(), reaches_end);
    if (first == blobs.end()) {
        return;
    }
    const auto times = std::count_if(first, blobs.end(), reaches_end);
    QString message =
        QStringLiteral("A piece of %1 begins at %2.")
            .arg(count_text((*first)->size(), "byte"), address_text((*first)->address));
    if (times > 1) {
        message += QStringLiteral(" %1 places in all.").arg(times);
    }
    add(Code::EndOfAddresses, message, {line_of(m_result.path, (*first)->address), 1});
}

void ImageReader::add(Code code, const QString& message, const intel_hex::TextPosition& position)
{
    m_result.problems.push_back(
        {code, message, {m_result.path, position.line, position.column}, {}, {}});
}

} // namespace

quint64 ImageFile::bytes() const
{
    quint64 sum = 0;
    for (const Segment& segment : segments) {
        sum += segment.end - segment.start;
    }
    return sum;
}

ImageFile read_image(const QString& path, const QSet<unsigned int>& boundaries)
{
    return ImageReader(path).read(boundaries);
}

qint64 line_of(const QString& path, quint64 address, int records_before)
{
    return line_where(path, [&](unsigned int start, const QByteArray& data) {
        return start <= address && address - start < static_cast<quint64>(data.size()) &&
               records_before-- == 0;
    });
}

} // namespace inspect
