// PropertyListBinaryWriter.cpp: lists in the binary format, equal leaves written once.

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFNumber.h>

#include "PropertyListInternal.h"
#include "StringBytes.h"

#include <bit>

namespace cf::plist {

namespace {

constexpr uint32_t kNone = UINT32_MAX;

// An object in the order of the file; containers have their parts in the list of references.
struct Object {
    CFTypeRef value;
    size_t firstReference;
    uint32_t referenceCount;
};

// Finds leaves that were numbered before, by open addressing.
class LeafTable {
public:
    uint32_t find(const GrowableArray<Object>& objects, CFTypeRef value) const {
        if (slots_.empty())
            return kNone;
        for (size_t i = CFHash(value) & mask();; i = (i + 1) & mask()) {
            if (slots_[i] == kNone || areSame(objects[slots_[i]].value, value))
                return slots_[i];
        }
    }

    bool insert(const GrowableArray<Object>& objects, uint32_t index) {
        if ((count_ + 1) * 2 > slots_.size() && !grow(objects))
            return false;
        place(objects, index);
        ++count_;
        return true;
    }

private:
    size_t mask() const { return slots_.size() - 1; }

    // Stricter than equality: 1 and 1.0 are equal numbers but different bytes.
    static bool areSame(CFTypeRef a, CFTypeRef b) {
        if (CFGetTypeID(a) != CFGetTypeID(b) || !CFEqual(a, b))
            return false;
        if (CFGetTypeID(a) != CFNumberGetTypeID())
            return true;
        return CFNumberGetType(static_cast<CFNumberRef>(a)) ==
               CFNumberGetType(static_cast<CFNumberRef>(b));
    }

    void place(const GrowableArray<Object>& objects, uint32_t index) {
        size_t i = CFHash(objects[index].value) & mask();
        while (slots_[i] != kNone)
            i = (i + 1) & mask();
        slots_[i] = index;
    }

    bool grow(const GrowableArray<Object>& objects) {
        GrowableArray<uint32_t> old = std::move(slots_);
        slots_ = {};
        const size_t size = old.empty() ? 64 : old.size() * 2;
        uint32_t* const room = slots_.extend(size);
        if (!room)
            return false;
        for (size_t i = 0; i < size; ++i)
            room[i] = kNone;
        for (const uint32_t index : old)
            if (index != kNone)
                place(objects, index);
        return true;
    }

    GrowableArray<uint32_t> slots_;
    size_t count_ = 0;
};

size_t widthFor(uint64_t largest) {
    return largest <= 0xFF ? 1 : largest <= 0xFFFF ? 2 : largest <= 0xFFFFFFFF ? 4 : 8;
}

class BinaryWriter {
public:
    BinaryWriter(TextBuffer& result, Problem& problem) : result_(result), problem_(problem) {}

    bool write(CFPropertyListRef list) {
        const uint32_t top = number(list);
        if (top == kNone || objects_.failed() || references_.failed())
            return fail();
        const size_t start = result_.size();
        result_.append(std::string_view("bplist00"));
        referenceWidth_ = widthFor(objects_.size());
        GrowableArray<uint64_t> offsets;
        for (const Object& object : objects_) {
            offsets.append(result_.size() - start);
            if (!writeObject(object))
                return fail();
        }
        const uint64_t table = result_.size() - start;
        const size_t offsetWidth = widthFor(table);
        for (const uint64_t offset : offsets)
            writeNumber(offset, offsetWidth);
        writeTrailer(offsetWidth, top, table);
        return !offsets.failed() && !result_.failed() ? true : fail();
    }

private:
    bool fail() {
        problem_.set(kCFPropertyListWriteStreamError, "no memory for the binary list");
        return false;
    }

    uint32_t append(CFTypeRef value) {
        if (objects_.size() >= kNone)
            return kNone;
        objects_.append({value, 0, 0});
        return objects_.failed() ? kNone : static_cast<uint32_t>(objects_.size() - 1);
    }

    // Gives `value` and what it contains their indices, containers before their parts.
    uint32_t number(CFTypeRef value) {
        const CFTypeID type = CFGetTypeID(value);
        if (type == CFArrayGetTypeID())
            return numberArray(static_cast<CFArrayRef>(value));
        if (type == CFDictionaryGetTypeID())
            return numberDictionary(static_cast<CFDictionaryRef>(value));
        const uint32_t known = leaves_.find(objects_, value);
        if (known != kNone)
            return known;
        const uint32_t index = append(value);
        return index != kNone && leaves_.insert(objects_, index) ? index : kNone;
    }

    // Sets room for a container's references aside; they are filled as its parts are numbered.
    uint32_t open(CFTypeRef value, size_t referenceCount) {
        const uint32_t index = append(value);
        if (index == kNone || referenceCount >= kNone)
            return kNone;
        objects_[index].firstReference = references_.size();
        objects_[index].referenceCount = static_cast<uint32_t>(referenceCount);
        return referenceCount == 0 || references_.extend(referenceCount) ? index : kNone;
    }

    bool setReference(uint32_t container, size_t place, CFTypeRef part) {
        const uint32_t index = number(part);
        if (index == kNone)
            return false;
        references_[objects_[container].firstReference + place] = index;
        return true;
    }

    uint32_t numberArray(CFArrayRef array) {
        const auto count = static_cast<size_t>(CFArrayGetCount(array));
        const uint32_t index = open(array, count);
        for (size_t i = 0; index != kNone && i < count; ++i)
            if (!setReference(index, i, CFArrayGetValueAtIndex(array, static_cast<CFIndex>(i))))
                return kNone;
        return index;
    }

    uint32_t numberDictionary(CFDictionaryRef dictionary) {
        GrowableArray<Entry> entries;
        if (!sortEntries(dictionary, entries))
            return kNone;
        const size_t count = entries.size();
        const uint32_t index = open(dictionary, 2 * count);
        for (size_t i = 0; index != kNone && i < count; ++i)
            if (!setReference(index, i, entries[i].key) ||
                !setReference(index, count + i, entries[i].value))
                return kNone;
        return index;
    }

    void writeNumber(uint64_t value, size_t width) {
        for (size_t i = width; i-- > 0;)
            result_.append(static_cast<char>(value >> (8 * i)));
    }

    void writeInteger(uint64_t value, size_t width) {
        result_.append(static_cast<char>(0x10 | std::countr_zero(width)));
        writeNumber(value, width);
    }

    // The marker of a kind that counts what follows.
    void writeCount(unsigned kind, size_t count) {
        if (count < 15) {
            result_.append(static_cast<char>(kind << 4 | count));
            return;
        }
        result_.append(static_cast<char>(kind << 4 | 15));
        writeInteger(count, widthFor(count));
    }

    bool writeObject(const Object& object) {
        const CFTypeID type = CFGetTypeID(object.value);
        if (type == CFStringGetTypeID())
            return writeString(static_cast<CFStringRef>(object.value));
        if (type == CFNumberGetTypeID())
            writeNumberObject(static_cast<CFNumberRef>(object.value));
        else if (type == CFBooleanGetTypeID())
            result_.append(object.value == kCFBooleanTrue ? '\x09' : '\x08');
        else if (type == CFDateGetTypeID())
            writeReal(0x33, CFDateGetAbsoluteTime(static_cast<CFDateRef>(object.value)));
        else if (type == CFDataGetTypeID())
            writeData(static_cast<CFDataRef>(object.value));
        else
            writeContainer(object, type == CFArrayGetTypeID());
        return true;
    }

    void writeContainer(const Object& object, bool isArray) {
        writeCount(isArray ? 0xA : 0xD,
                   isArray ? object.referenceCount : object.referenceCount / 2);
        for (size_t i = 0; i < object.referenceCount; ++i)
            writeNumber(references_[object.firstReference + i], referenceWidth_);
    }

    void writeReal(int marker, double value) {
        result_.append(static_cast<char>(marker));
        writeNumber(std::bit_cast<uint64_t>(value), 8);
    }

    void writeNumberObject(CFNumberRef number) {
        if (!CFNumberIsFloatType(number)) {
            int64_t value = 0;
            CFNumberGetValue(number, kCFNumberSInt64Type, &value);
            const auto bits = static_cast<uint64_t>(value);
            return writeInteger(bits, widthFor(bits));
        }
        if (CFNumberGetByteSize(number) == sizeof(float)) {
            float value = 0;
            CFNumberGetValue(number, kCFNumberFloat32Type, &value);
            result_.append('\x22');
            return writeNumber(std::bit_cast<uint32_t>(value), 4);
        }
        double value = 0;
        CFNumberGetValue(number, kCFNumberFloat64Type, &value);
        writeReal(0x23, value);
    }

    void writeData(CFDataRef data) {
        const auto count = static_cast<size_t>(CFDataGetLength(data));
        writeCount(0x4, count);
        result_.append(reinterpret_cast<const char*>(CFDataGetBytePtr(data)), count);
    }

    bool writeString(CFStringRef string) {
        const CFRange all = CFRangeMake(0, CFStringGetLength(string));
        TextBuffer letters;
        if (appendBytes(string, all, kCFStringEncodingASCII, letters)) {
            writeCount(0x5, letters.size());
            result_.append(view(letters));
            return true;
        }
        // Units are kept as they are: a lone surrogate is no error in this format.
        writeCount(0x6, static_cast<size_t>(all.length));
        for (CFIndex i = 0; i < all.length; ++i)
            writeNumber(CFStringGetCharacterAtIndex(string, i), 2);
        return true;
    }

    void writeTrailer(size_t offsetWidth, uint32_t top, uint64_t table) {
        for (int i = 0; i < 6; ++i)
            result_.append('\0');
        writeNumber(offsetWidth, 1);
        writeNumber(referenceWidth_, 1);
        writeNumber(objects_.size(), 8);
        writeNumber(top, 8);
        writeNumber(table, 8);
    }

    TextBuffer& result_;
    Problem& problem_;
    GrowableArray<Object> objects_;
    GrowableArray<uint32_t> references_;
    LeafTable leaves_;
    size_t referenceWidth_ = 1;
};

} // namespace

bool writeBinary(CFPropertyListRef list, TextBuffer& result, Problem& problem) {
    return BinaryWriter(result, problem).write(list);
}

} // namespace cf::plist
