// CFMutableArray.cpp: changing arrays.
//
// Release callbacks may run any code, also code that changes the array: each change drops its
// values last, when the array is whole again.

#include "CFArray.h"
#include "CFArrayInternal.h"

#include <algorithm>

namespace {

using Values = cf::Buffer<const void*>;

bool mayChange(CFArrayRef array, const char* function) {
    return cf::mayChange(array, cf::kArrayClass, function);
}

// Whether the array may be changed and has the range.
bool mayChangeRange(CFArrayRef array, CFRange range, const char* function) {
    return mayChange(array, function) && cf::hasRange(array, range, function);
}

bool insert(CFMutableArrayRef array, CFIndex index, const void* value) {
    if (!array->values.open(index, 1))
        return false;
    array->values[index] = array->retained(value);
    return true;
}

// Puts `count` values in the place of those in `range`.
bool replace(CFMutableArrayRef array, CFRange range, const void* const* newValues, CFIndex count) {
    Values dropped(CFGetAllocator(array));
    if (!dropped.append(array->values.data() + range.location, range.length) ||
        !array->values.open(range.location + range.length, count))
        return false;
    for (CFIndex i = 0; i < count; ++i)
        array->values[range.location + range.length + i] = array->retained(newValues[i]);
    array->values.close(range.location, range.length);
    array->releaseAll(dropped);
    return true;
}

// Merges the sorted runs [0, middle) and [middle, count) of `source` into `target`. Equal values
// keep their order. Every read is checked against its run's end, so that a comparator without sense
// cannot lead outside.
template <typename IsLess>
void merge(const void* const* source, CFIndex middle, CFIndex count, const void** target,
           IsLess isLess) {
    CFIndex left = 0;
    CFIndex right = middle;
    for (CFIndex i = 0; i < count; ++i) {
        const bool takeRight =
            right < count && (left == middle || isLess(source[right], source[left]));
        target[i] = source[takeRight ? right++ : left++];
    }
}

// Sorts `count` values from run to run, in passes between the two lists; answers which of them
// holds the result.
template <typename IsLess>
const void** mergeSort(const void** values, const void** scratch, CFIndex count, IsLess isLess) {
    for (CFIndex run = 1; run<count; run = run> count / 2 ? count : run * 2) {
        for (CFIndex first = 0; first < count;) {
            const CFIndex rest = count - first;
            const CFIndex middle = std::min(run, rest);
            const CFIndex length = middle + std::min(run, rest - middle);
            merge(values + first, middle, length, scratch + first, isLess);
            first += length;
        }
        std::swap(values, scratch);
    }
    return values;
}

} // namespace

void CFArrayAppendValue(CFMutableArrayRef array, const void* value) {
    if (mayChange(array, __func__))
        cf::logUnlessDone(insert(array, array->values.size(), value), __func__);
}

void CFArrayInsertValueAtIndex(CFMutableArrayRef array, CFIndex index, const void* value) {
    if (mayChangeRange(array, {index, 0}, __func__))
        cf::logUnlessDone(insert(array, index, value), __func__);
}

void CFArraySetValueAtIndex(CFMutableArrayRef array, CFIndex index, const void* value) {
    if (!mayChangeRange(array, {index, 0}, __func__))
        return;
    if (index == array->values.size()) {
        cf::logUnlessDone(insert(array, index, value), __func__);
        return;
    }
    const void* const dropped = std::exchange(array->values[index], array->retained(value));
    array->release(dropped);
}

void CFArrayRemoveValueAtIndex(CFMutableArrayRef array, CFIndex index) {
    if (!mayChangeRange(array, {index, 1}, __func__))
        return;
    const void* const dropped = array->values[index];
    array->values.close(index, 1);
    array->release(dropped);
}

void CFArrayRemoveAllValues(CFMutableArrayRef array) {
    if (!mayChange(array, __func__))
        return;
    Values dropped(CFGetAllocator(array));
    array->values.swap(dropped);
    array->releaseAll(dropped);
}

void CFArrayReplaceValues(CFMutableArrayRef array, CFRange range, const void** newValues,
                          CFIndex newCount) {
    if (newCount < 0 || (newCount > 0 && !newValues) || !mayChangeRange(array, range, __func__))
        return;
    cf::logUnlessDone(replace(array, range, newValues, newCount), __func__);
}

void CFArrayExchangeValuesAtIndices(CFMutableArrayRef array, CFIndex index1, CFIndex index2) {
    if (mayChangeRange(array, {index1, 1}, __func__) && cf::hasRange(array, {index2, 1}, __func__))
        std::swap(array->values[index1], array->values[index2]);
}

void CFArraySortValues(CFMutableArrayRef array, CFRange range, CFComparatorFunction comparator,
                       void* context) {
    if (!comparator || !mayChangeRange(array, range, __func__))
        return;
    // Sorted aside, so that a comparator that looks at the array sees it in one piece.
    Values values(CFGetAllocator(array));
    Values scratch(CFGetAllocator(array));
    if (!values.append(array->values.data() + range.location, range.length) ||
        !scratch.open(0, range.length)) {
        cf::logUnlessDone(false, __func__);
        return;
    }
    const auto isLess = [=](const void* a, const void* b) {
        return comparator(a, b, context) == kCFCompareLessThan;
    };
    const void** const sorted = mergeSort(values.data(), scratch.data(), range.length, isLess);
    if (cf::hasRange(array, range, __func__))
        array->values.copyIn(range.location, sorted, range.length);
}

void CFArrayAppendArray(CFMutableArrayRef array, CFArrayRef otherArray, CFRange otherRange) {
    if (!mayChange(array, __func__) || !cf::isA(otherArray, cf::kArrayClass) ||
        !cf::hasRange(otherArray, otherRange, __func__))
        return;
    // Room first: the other array may be this one.
    const CFIndex end = array->values.size();
    const bool done = array->values.open(end, otherRange.length);
    for (CFIndex i = 0; done && i < otherRange.length; ++i)
        array->values[end + i] = array->retained(otherArray->values[otherRange.location + i]);
    cf::logUnlessDone(done, __func__);
}
