// CFLocaleInternal.h: locales as ICU knows them.
#pragma once

#include <CoreFoundation/CFLocale.h>

namespace cf {

// ICU's name of `locale`; the current one's for NULL. Lives as long as the locale.
const char* localeIdentifier(CFLocaleRef locale);
// Its language code, likewise; "" when it names none.
const char* localeLanguage(CFLocaleRef locale);

} // namespace cf
