// FMDatabaseRecord.h: what a font database is made of.
#pragma once

#include <CoreFoundation/CFData.h>
#include <FontManager/FMDatabase.h>

#include "Core/Object/RuntimeObject.h"
#include "Font/Locks.h"
#include "RecordKey.h"
#include "RecordMap.h"

#include <ConstantDatabase/ConstantDatabase.h>

#include <mutex>
#include <optional>

struct FMDatabase {
    CFRuntimeBase base;
    // Set when a database is opened, and not changed since.
    std::optional<constantdatabase::Reader> reader;
    cf::Ref<CFDataRef> contents; // What the reader reads if it is no file.

    fm::RecursiveMutex mutex; // Guards all that follows. No other lock is taken under it.
    fm::RecordMap records;    // Of one in memory.
    bool isInMemory = false;
    bool isPersisted = false;
    bool isIncomplete = false; // A record was lost for want of memory.
    int64_t nextFontId = 0;    // 0 until it has been read.

    // Held while records are read. Those of a file never change, and threads read them at once.
    std::unique_lock<fm::RecursiveMutex> holdForReading() {
        return reader ? std::unique_lock<fm::RecursiveMutex>() : std::unique_lock(mutex);
    }
    // In place, while they are held for reading and nothing is stored.
    std::optional<fm::Bytes> find(const fm::RecordKey& key) const {
        if (!key.isValid())
            return std::nullopt;
        return reader ? reader->find(key.bytes()) : records.find(key.bytes());
    }
};

namespace fm {

// Reads of whole records; absent where there is none or it has another size.
std::optional<std::uint64_t> readNumber(FMDatabaseRef database, const RecordKey& key);
cf::Ref<CFStringRef> readString(FMDatabaseRef database, const RecordKey& key);

// Stores a record; ends the process, in the name of `function`, where that is not allowed.
bool store(FMDatabaseRef database, const char* function, const RecordKey& key, Bytes value);
// The same of a number, as FMDatabaseStoreUInt64 does it.
bool storeNumber(FMDatabaseRef database, const RecordKey& key, std::uint64_t number);

} // namespace fm
