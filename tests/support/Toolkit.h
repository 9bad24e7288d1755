// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QFileInfo>
#include <QMetaType>
#include <QString>

/** What a test asks the toolkit itself, and Qt 5 and Qt 6 answer by different functions. */
namespace Toolkit
{
#if QT_VERSION_MAJOR < 6
/** The toolkit's own date of creation, which only its older generation has. */
inline QDateTime created(const QFileInfo &info)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return info.created();
    QT_WARNING_POP
}

inline bool knowsType(const char *name)
{
    return QMetaType::type(name) != QMetaType::UnknownType;
}
#else
inline QDateTime created(const QFileInfo &info)
{
    const QDateTime birth = info.birthTime();
    return birth.isValid() ? birth : info.metadataChangeTime();
}

inline bool knowsType(const char *name)
{
    return QMetaType::fromName(name).isRegistered();
}
#endif

/** Whether the test runs in a locale of ISO-8859-1; otherwise it is one of UTF-8. */
inline bool isInLatin1()
{
    return qgetenv("LC_ALL").endsWith(".ISO-8859-1");
}
} // namespace Toolkit
