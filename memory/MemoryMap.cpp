#include "memory/MemoryMap.h"

#include <QDebug>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>

namespace
{

/// One past the blob's last address. A blob that reaches the end of the address space ends at or
/// below its beginning and so holds no address.
unsigned int end_address(const AddressedBLOB& blob)
{
    return blob.address + blob.size();
}

bool lies_before(const AddressedBLOB& blob, const AddressedBLOB& next)
{
    return blob.address <= next.address && end_address(blob) <= next.address;
}

bool copy_overlap(const AddressedBLOB& blob, unsigned int address, unsigned int end, char* dst)
{
    const unsigned int first = std::max(address, blob.address);
    const unsigned int last = std::min(end, end_address(blob));
    return first < last &&
           blob.read(first - blob.address, last - first, dst + (first - address)) > 0;
}

void report_overlap(const AddressedBLOB& blob, const AddressedBLOB& next)
{
    qDebug() << QStringLiteral("Overlap at %1 with size %2 with %3 size %4")
                    .arg(QString::number(blob.address, 16), QString::number(blob.size()),
                         QString::number(next.address, 16), QString::number(next.size()));
}

} // namespace

MemoryMap::MemoryMap(unsigned int chunk_size) : m_chunk_size(chunk_size) {}

const MemoryMap::Blobs& MemoryMap::blobs() const
{
    return m_blobs;
}

AddressedBLOB& MemoryMap::append_blob(unsigned int address)
{
    auto blob = std::make_unique<AddressedBLOB>(m_chunk_size);
    blob->address = address;
    m_in_order = m_in_order && (m_blobs.empty() || lies_before(*m_blobs.back(), *blob));
    AddressedBLOB& appended = *blob;
    m_blobs.push_back(std::move(blob));
    m_addresses.push_back(address);
    return appended;
}

std::pair<MemoryMap::Blobs::const_iterator, MemoryMap::Blobs::const_iterator>
MemoryMap::candidates(unsigned int first_address, unsigned int last_address) const
{
    if (!m_in_order) {
        return {m_blobs.begin(), m_blobs.end()};
    }
    const auto addresses = m_addresses.begin();
    auto begin = std::upper_bound(addresses, m_addresses.end(), first_address);
    const auto end = std::upper_bound(begin, m_addresses.end(), last_address);
    // The blob before may reach into the range; those before that one end where it begins.
    if (begin != addresses) {
        --begin;
    }
    return {m_blobs.begin() + (begin - addresses), m_blobs.begin() + (end - addresses)};
}

int MemoryMap::get_blob_index(unsigned int address) const
{
    const auto [begin, end] = candidates(address, address);
    const auto found = std::find_if(begin, end, [address](const Blobs::value_type& blob) {
        return address >= blob->address && address < end_address(*blob);
    });
    return found == end ? -1 : static_cast<int>(found - m_blobs.begin());
}

bool MemoryMap::read(unsigned int address, unsigned int count, char* dst) const
{
    const unsigned int range_end = address + count;
    if (range_end <= address) { // nothing asked for, or a range that leaves the address space
        return false;
    }
    bool any_copied = false;
    const auto [begin, end] = candidates(address, range_end - 1);
    for (auto blob = begin; blob != end; ++blob) {
        any_copied = copy_overlap(**blob, address, range_end, dst) || any_copied;
    }
    return any_copied;
}

bool MemoryMap::read(unsigned int address, unsigned int count, QByteArray& dst) const
{
    if (count > static_cast<unsigned int>(std::numeric_limits<int>::max())) {
        throw std::bad_alloc(); // as for any other array too long for memory
    }
    dst.resize(static_cast<int>(count));
    return read(address, count, dst.data());
}

void MemoryMap::write(unsigned int address, unsigned int count, const char* src)
{
    while (count > 0) {
        const unsigned int piece = std::min(count, m_chunk_size);
        append_blob(address).write(0, piece, src);
        address += piece;
        src += piece;
        count -= piece;
    }
}

void MemoryMap::write(unsigned int address, QByteArray data)
{
    write(address, static_cast<unsigned int>(data.size()), data.constData());
}

unsigned int MemoryMap::size() const
{
    unsigned int sum = 0;
    for (const auto& blob : m_blobs) {
        sum += blob->size();
    }
    return sum;
}

void MemoryMap::clear()
{
    m_blobs.clear();
    m_addresses.clear();
    m_in_order = true;
}

/// Sorts addresses that lie side by side, and then fetches each blob once.
void MemoryMap::sort_blobs()
{
    std::vector<std::pair<unsigned int, std::size_t>> order;
    order.reserve(m_addresses.size());
    for (const unsigned int address : m_addresses) {
        order.emplace_back(address, order.size());
    }
    // Of blobs at one address the later one stays the later one: its number is the higher one.
    std::sort(order.begin(), order.end());
    Blobs sorted;
    sorted.reserve(order.size());
    for (const auto& [address, number] : order) {
        m_addresses[sorted.size()] = address;
        sorted.push_back(std::move(m_blobs[number]));
    }
    m_blobs = std::move(sorted);
}

bool MemoryMap::has_overlaps()
{
    if (m_in_order) {
        return false;
    }
    sort_blobs();
    const auto overlap =
        std::adjacent_find(m_blobs.begin(), m_blobs.end(), [](const auto& blob, const auto& next) {
            return end_address(*blob) > next->address;
        });
    m_in_order = overlap == m_blobs.end();
    if (!m_in_order) {
        report_overlap(**overlap, **(overlap + 1));
    }
    return !m_in_order;
}
