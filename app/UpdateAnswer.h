// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/** What the update file says: the newest version, its build and the page to fetch it from. */
struct UpdateAnswer {
    /**
     * Reads the lines of the file, each with its line break. Whatever is malformed (fewer than two
     * lines, no "version" in the first, no " Build " in its value, a line without "=") gives none.
     */
    static std::optional<UpdateAnswer> fromLines(const QList<QByteArray> &lines);

    /** One character each: the first and the second of the first line's value. */
    QString version;
    QString build;
    /** Percent-decoded, without line feeds. */
    QString url;
};
