// How an operation hands a record over to the caller's collection.
#pragma once

#include <memory>

/// Puts the record at the end of the collection, which owns it from then on. A record that finds no room
/// goes.
template <class Collection, class Record>
void AddRecord(Collection& collection, std::unique_ptr<Record> record) {
    collection.m_vecItems.push_back(record.get());
    static_cast<void>(record.release());
}
