// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/** A file as it was when a scan read it. */
struct ScannedFile {
    QString path; // absolute, as it stands in the groups
    qint64 size = 0; // bytes
    qint64 modified = 0; // nanoseconds since 1970 (UTC)
    /** See RegularFile::changed(). */
    qint64 changed = 0;
};

/** A file or folder that was to be looked at and could not be. */
struct SkippedPath {
    QByteArray path; // absolute, byte for byte as the file system has it
    QString reason; // as the system words it
};

/**
 * What the last scan knows beside the groups that it emits, one object for the process: which files
 * have the same content, whatever group they stand in.
 *
 * The engine's thread writes it before it emits findDuplicatedFilesFinished(), other threads read it
 * after they have received that signal. There is no lock: nobody may read while a scan runs.
 */
struct ScanFindings {
    /** Made on first use and never destroyed. */
    static ScanFindings *instance();

    /** The groups as emitted. Rows made of any other list are none of this scan's. */
    QList<QStringList> groups;
    /**
     * Every set of two or more files of one content, complete, also after a stop as far as the scan
     * came. Sets stand in the order in which their first files were found, files in the order in
     * which they were found. A file in a group but in none of these has no copy that is known.
     */
    QVector<QVector<ScannedFile>> exactGroups;
    /**
     * False where a checksum of 32 bits stands for the content: files of one set then agree in it
     * and in their size, and may still differ.
     */
    bool areContentsProven = true;
    /** In the order in which they were met; empty unless Configuration asks for it. */
    QVector<SkippedPath> skipped;
};
