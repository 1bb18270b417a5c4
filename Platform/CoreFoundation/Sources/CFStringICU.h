// CFStringICU.h: ICU's handles as owners that close themselves.
#pragma once

#include <unicode/ucnv.h>

#include <memory>

namespace cf {

template <auto close>
struct CloseBy {
    template <typename Handle>
    void operator()(Handle* handle) const {
        close(handle);
    }
};

using Converter = std::unique_ptr<UConverter, CloseBy<ucnv_close>>;

// ICU's converter of that name, or nothing.
inline Converter openConverter(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(name ? ucnv_open(name, &status) : nullptr);
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

} // namespace cf
