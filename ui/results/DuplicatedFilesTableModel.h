// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTableModel>
#include <QBitArray>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QHash>
#include <QImage>
#include <QMultiMap>
#include <QPixmap>
#include <QStringList>
#include <QVector>

/**
 * The rows of the results table: one a file, numbered by group, and the ticks of the user.
 *
 * Rows ascend by group number; inside a group the files stand in the reverse of their order in the
 * list, so that all but the last file of the list are ticked: the top row of each group is kept.
 * Lives on the GUI thread and belongs to the results page. What it answers about one row costs the
 * same however many there are.
 */
class DuplicatedFilesTableModel : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY(DuplicatedFilesTableModel)

public:
    enum Column { CheckColumn, GroupColumn, FilepathColumn, SizeColumn };
    static constexpr int iconPixels = 32;

    DuplicatedFilesTableModel();

    /** Replaces all rows and ticks. An empty group makes no row but takes a number. */
    void setDuplicatedFilesInList(const QList<QStringList> &groups);
    /** Has the views read everything again. */
    void updateSortingList();
    /** Toggles the tick of the row. */
    void setCheckState(const QModelIndex &index);
    void setCheckStateAll(bool checked);
    /** Absolute paths of the ticked rows, in the order in which they were ticked. */
    QStringList selectedFiles() const;
    /** Without decoding a picture, so for any number of rows: pixels of what the row shows. */
    QSize decorationSize(const QModelIndex &index) const;
    /** True if the file is a picture by its name, and what its icon is made of must be read first. */
    bool lacksIcon(const QString &path) const;
    /** Remembers an icon that was decoded elsewhere; a null one if the file is there all the same. */
    void takeIcon(const QString &path, const QImage &icon);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant headerData(int section,
                        Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    /** The full-size picture; null where there is none. A null one is remembered, too. */
    QPixmap pixmapFromPath(const QString &path) const;
    /**
     * 32 pixels high; null where there is no picture. Remembered whatever becomes of the file; past
     * a number of bytes it is decoded each time, and none is remembered but a null one.
     */
    QPixmap scaledPixmapToIcon(const QString &path) const;
    /** What the desktop shows for files of that kind, at most 32 pixels. */
    QPixmap iconForFile(const QString &path) const;
    /**
     * For a tool tip: a picture as an image of at most 500 pixels on its longer side, anything else
     * as its bare path. Nothing in the path is escaped.
     */
    QString smallImageHtmlOrPath(const QString &path) const;

protected:
    using Files = QMultiMap<qint32, QFileInfo>;

    /** By group number, from 1. The order of iteration is the order of the rows. */
    Files filesByGroup;
    /** Row numbers in the order of ticking, each once. */
    QVector<qint32> checkedRows;
    /** By path; neither is emptied while the model lives. */
    mutable QHash<QString, QPixmap> iconCache;
    mutable QHash<QString, QPixmap> pixmapCache;
    /** Pictures past this many bytes of pixels are decoded each time that they are asked for. */
    qint64 maxCachedPixmapBytes = qint64(512) * 1024 * 1024;
    /** The same of icons. One of a photo has 5504 or 6144 bytes of pixels, so these are 87,000 photos. */
    qint64 maxCachedIconBytes = qint64(512) * 1024 * 1024;

private:
    static bool isPicture(const QString &path);
    bool isRow(int row) const { return row >= 0 && row < rows.size(); }
    QVariant textOfCell(int row, int column) const;
    QVariant decoration(int row) const;
    QVariant toolTip(int row, int column) const;
    QVariant background(int row) const;
    QPixmap makeIcon(const QString &path) const;
    void remember(const QString &path, const QPixmap &pixmap) const;
    void rememberIcon(const QString &path, const QPixmap &icon) const;

    /** The row's entry in filesByGroup, and whether the row stands in checkedRows. */
    QVector<Files::const_iterator> rows;
    QBitArray isChecked;
    mutable qint64 cachedPixmapBytes = 0;
    mutable qint64 cachedIconBytes = 0;
    QFileIconProvider iconProvider;
};
