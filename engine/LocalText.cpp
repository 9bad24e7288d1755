// SPDX-License-Identifier: MIT
#include "engine/LocalText.h"

#include <QList>

#include <climits>
#include <cwchar>

#include <langinfo.h>
// NOLINTNEXTLINE(modernize-deprecated-headers): of POSIX, not of C++
#include <locale.h>
#ifdef __APPLE__
#include <xlocale.h>
#endif

namespace
{
// Not the process's: Qt 6 has made that one UTF-8. A name that the system does not know counts as the
// plain one.
locale_t systemLocale()
{
    const locale_t locale = ::newlocale(LC_CTYPE_MASK, "", nullptr);
    return locale != nullptr ? locale : ::newlocale(LC_CTYPE_MASK, "C", nullptr);
}

/** Puts a locale in the place of the thread's own while it lives. */
class ThreadLocale final
{
    Q_DISABLE_COPY(ThreadLocale)

public:
    explicit ThreadLocale(locale_t locale)
        : before(::uselocale(locale))
    {
    }
    ~ThreadLocale() { ::uselocale(before); }

private:
    locale_t before;
};

// The plain one knows ASCII alone: who has no better one wants his names, and no question marks.
bool isUtf8OrPlain(locale_t locale)
{
    const char *const encoding = ::nl_langinfo_l(CODESET, locale);
    return qstricmp(encoding, "UTF-8") == 0 || qstricmp(encoding, "US-ASCII") == 0
        || qstricmp(encoding, "ANSI_X3.4-1968") == 0;
}
} // namespace

QByteArray LocalText::encode(const QString &text)
{
    static const locale_t locale = systemLocale();
    static const bool isUtf8 = isUtf8OrPlain(locale);
    if (isUtf8) {
        return text.toUtf8();
    }
    const ThreadLocale threadLocale(locale);
    QByteArray bytes;
    bytes.reserve(text.size());
    char encoded[MB_LEN_MAX];
    for (const auto character : text.toUcs4()) {
        std::mbstate_t state = {};
        const std::size_t length = std::wcrtomb(encoded, static_cast<wchar_t>(character), &state);
        if (length == static_cast<std::size_t>(-1)) {
            bytes.append('?');
        } else {
            bytes.append(encoded, static_cast<int>(length));
        }
    }
    return bytes;
}
