#include "memory/AddressedBLOB.h"

AddressedBLOB::AddressedBLOB(unsigned int chunk_size) : zarnBLOB(chunk_size) {}

AddressedBLOB::~AddressedBLOB() = default;

void AddressedBLOB::clear()
{
    zarnBLOB::clear();
    address = 0;
}

bool AddressedBLOB::address_sort_compare(const AddressedBLOB* a, const AddressedBLOB* b)
{
    return a->address < b->address;
}
