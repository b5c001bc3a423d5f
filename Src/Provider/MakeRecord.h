// The one way in which an operation makes a record for its caller. A record that finds no memory is a failed
// step of the operation, with a line of its own; no exception of the heap leaves it.
#pragma once

#include "Provider/Trace.h"

#include <memory>
#include <new>
#include <utility>

/// Null, and the line, without memory for the record or for what its constructor needs.
template <class Record, class... Arguments>
std::unique_ptr<Record> MakeRecord(const wchar_t* failure, Arguments&&... arguments) {
    std::unique_ptr<Record> record;
    try {
        record.reset(new (std::nothrow) Record(std::forward<Arguments>(arguments)...));
    } catch (const std::bad_alloc&) {
        record.reset(); // a member of the record found none
    }
    if (!record) {
        TraceText(failure);
    }
    return record;
}

/// Puts a record at the end of the caller's collection, which owns it from then on. One that finds no room
/// goes.
template <class Collection, class Record>
HRESULT AddRecord(Collection& collection, std::unique_ptr<Record> record, const wchar_t* failure) {
    try {
        collection.m_vecItems.push_back(record.get());
    } catch (const std::bad_alloc&) {
        TraceText(failure);
        return E_FAIL;
    }
    static_cast<void>(record.release());
    return S_OK;
}

/// Makes a record, has it filled, and adds it. One that cannot be filled goes, with the code of the step.
template <class Record, class Collection, class Fill>
HRESULT AppendRecord(Collection& collection, const wchar_t* failure, Fill fill) {
    std::unique_ptr<Record> record = MakeRecord<Record>(failure);
    if (!record) {
        return E_FAIL;
    }
    const HRESULT result = fill(*record);
    return FAILED(result) ? result : AddRecord(collection, std::move(record), failure);
}
