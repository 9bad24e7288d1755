// SPDX-License-Identifier: MIT
#include "ui/results/DuplicatedFilesTableModel.h"

#include "ui/results/PictureFile.h"
#include "ui/results/PictureTip.h"

#include <QColor>
#include <QFont>
#include <QIcon>

#include <utility>

namespace
{
constexpr int columns = 4;
constexpr int bytesPerKilobyte = 1024;

bool isEven(qint32 group)
{
    return group % 2 == 0;
}

QFont boldFont()
{
    QFont font;
    font.setWeight(QFont::Bold);
    return font;
}

qint64 pixelBytes(const QPixmap &pixmap)
{
    return qint64(pixmap.width()) * pixmap.height() * pixmap.depth() / 8;
}
} // namespace

DuplicatedFilesTableModel::DuplicatedFilesTableModel() = default;

void DuplicatedFilesTableModel::setDuplicatedFilesInList(const QList<QStringList> &groups)
{
    beginResetModel();
    rows.clear();
    filesByGroup.clear();
    checkedRows.clear();
    qint32 group = 0;
    for (const QStringList &paths : groups) {
        ++group;
        for (int i = 0; i < paths.size(); ++i) {
            if (i != 0) {
                checkedRows.append(static_cast<qint32>(filesByGroup.size()));
            }
            filesByGroup.insert(group, QFileInfo(paths.at(i)));
        }
    }
    isChecked.fill(false, filesByGroup.size());
    for (const qint32 row : std::as_const(checkedRows)) {
        isChecked.setBit(row);
    }
    rows.reserve(filesByGroup.size());
    for (auto file = filesByGroup.constBegin(); file != filesByGroup.constEnd(); ++file) {
        rows.append(file);
    }
    endResetModel();
}

void DuplicatedFilesTableModel::updateSortingList()
{
    beginResetModel();
    endResetModel();
}

void DuplicatedFilesTableModel::setCheckState(const QModelIndex &index)
{
    const int row = index.row();
    if (!isRow(row)) {
        return;
    }
    beginResetModel();
    if (isChecked.toggleBit(row)) {
        checkedRows.removeAll(row);
    } else {
        checkedRows.append(row);
    }
    endResetModel();
}

void DuplicatedFilesTableModel::setCheckStateAll(bool checked)
{
    beginResetModel();
    checkedRows.clear();
    for (qint32 row = 0; checked && row < rows.size(); ++row) {
        checkedRows.append(row);
    }
    isChecked.fill(checked);
    endResetModel();
}

QStringList DuplicatedFilesTableModel::selectedFiles() const
{
    QStringList paths;
    paths.reserve(checkedRows.size());
    for (const qint32 row : checkedRows) {
        paths.append(rows.at(row)->absoluteFilePath());
    }
    return paths;
}

QSize DuplicatedFilesTableModel::decorationSize(const QModelIndex &index) const
{
    const QSize fileIcon(iconPixels, iconPixels);
    if (!isRow(index.row()) || index.column() != FilepathColumn) {
        return {};
    }
    const QString path = rows.at(index.row())->absoluteFilePath();
    const auto icon = iconCache.constFind(path);
    if (icon != iconCache.constEnd()) {
        return icon->isNull() ? fileIcon : icon->size();
    }
    const QSize size =
        isPicture(path) ? PictureFile::sizeAtHeight(PictureFile(path).size(), iconPixels) : QSize();
    return size.isEmpty() ? fileIcon : size;
}

bool DuplicatedFilesTableModel::lacksIcon(const QString &path) const
{
    return cachedIconBytes < maxCachedIconBytes && isPicture(path) && !iconCache.contains(path)
        && !pixmapCache.contains(path);
}

void DuplicatedFilesTableModel::takeIcon(const QString &path, const QImage &icon)
{
    // A file that has gone may come again before it is asked for.
    if (lacksIcon(path) && (!icon.isNull() || QFileInfo::exists(path))) {
        rememberIcon(path, QPixmap::fromImage(icon));
    }
}

int DuplicatedFilesTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(filesByGroup.size());
}

int DuplicatedFilesTableModel::columnCount(const QModelIndex &parent) const
{
    Q_UNUSED(parent)
    return columns;
}

QVariant DuplicatedFilesTableModel::headerData(int section,
                                               Qt::Orientation orientation,
                                               int role) const
{
    Q_UNUSED(orientation)
    if (role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case GroupColumn:
        return QStringLiteral("Group");
    case FilepathColumn:
        return QStringLiteral("Filepath");
    case SizeColumn:
        return QStringLiteral("Size (kb)");
    default:
        return {};
    }
}

Qt::ItemFlags DuplicatedFilesTableModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags base = QAbstractTableModel::flags(index);
    return index.column() == CheckColumn ? base | Qt::ItemIsUserCheckable : base;
}

QVariant DuplicatedFilesTableModel::data(const QModelIndex &index, int role) const
{
    const int row = index.row();
    const int column = index.column();
    if (!index.isValid() || !isRow(row)) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return textOfCell(row, column);
    case Qt::DecorationRole:
        return column == FilepathColumn ? decoration(row) : QVariant();
    case Qt::ToolTipRole:
        return toolTip(row, column);
    case Qt::FontRole:
        return isEven(rows.at(row).key()) ? QVariant(boldFont()) : QVariant();
    case Qt::TextAlignmentRole:
        return column == FilepathColumn ? QVariant() : QVariant(int(Qt::AlignCenter));
    case Qt::BackgroundRole:
        return background(row);
    case Qt::CheckStateRole:
        return column == CheckColumn
            ? QVariant(isChecked.testBit(row) ? Qt::Checked : Qt::Unchecked)
            : QVariant();
    default:
        return {};
    }
}

QPixmap DuplicatedFilesTableModel::pixmapFromPath(const QString &path) const
{
    if (!QFileInfo::exists(path)) {
        return {};
    }
    const auto cached = pixmapCache.constFind(path);
    if (cached != pixmapCache.constEnd()) {
        return *cached;
    }
    if (!isPicture(path)) {
        return {};
    }
    const QPixmap pixmap = QPixmap::fromImage(PictureFile(path).read());
    remember(path, pixmap);
    return pixmap;
}

QPixmap DuplicatedFilesTableModel::scaledPixmapToIcon(const QString &path) const
{
    const auto cached = iconCache.constFind(path);
    if (cached != iconCache.constEnd()) {
        return *cached;
    }
    const QPixmap icon = makeIcon(path);
    rememberIcon(path, icon);
    return icon;
}

QPixmap DuplicatedFilesTableModel::iconForFile(const QString &path) const
{
    const QIcon icon = iconProvider.icon(QFileInfo(path));
    return icon.pixmap(icon.actualSize(QSize(iconPixels, iconPixels)));
}

QString DuplicatedFilesTableModel::smallImageHtmlOrPath(const QString &path) const
{
    if (pixmapFromPath(path).isNull()) {
        return path;
    }
    // The file's size of now, which need not be that of the picture that was remembered.
    const QSize size = PictureFile::sizeWithin(PictureFile(path).size().expandedTo(QSize(0, 0)),
                                               PictureTip::maxPixels);
    return QStringLiteral("<img src = \"%1\" height=%2 width=%3>")
        .arg(path, QString::number(size.height()), QString::number(size.width()));
}

// A part of an ending counts, so "x.jp" and files without one are tried as pictures.
bool DuplicatedFilesTableModel::isPicture(const QString &path)
{
    static const auto masks = QStringLiteral("*.BMP; *.GIF; *.ICO; *.JNG; *.JPG; *.JPEG; *.PNG");
    return masks.contains(QStringLiteral("*.%1").arg(QFileInfo(path).suffix()),
                          Qt::CaseInsensitive);
}

QVariant DuplicatedFilesTableModel::textOfCell(int row, int column) const
{
    const Files::const_iterator file = rows.at(row);
    switch (column) {
    case GroupColumn:
        return QString::number(file.key());
    case FilepathColumn:
        return file->absoluteFilePath();
    case SizeColumn:
        return QString::number(file->size() / bytesPerKilobyte);
    default:
        return {};
    }
}

QVariant DuplicatedFilesTableModel::decoration(int row) const
{
    const QString path = rows.at(row)->absoluteFilePath();
    const QPixmap icon = scaledPixmapToIcon(path);
    return icon.isNull() ? iconForFile(path) : icon;
}

QVariant DuplicatedFilesTableModel::toolTip(int row, int column) const
{
    return column == FilepathColumn ? smallImageHtmlOrPath(rows.at(row)->absoluteFilePath())
                                    : textOfCell(row, column);
}

QVariant DuplicatedFilesTableModel::background(int row) const
{
    const Files::const_iterator file = rows.at(row);
    // By the path: the file information answers from what it once saw.
    if (!QFileInfo::exists(file->absoluteFilePath())) {
        return QColor(QStringLiteral("#ff6961"));
    }
    return isEven(file.key()) ? QColor(QStringLiteral("#e9e9e4")) : QVariant();
}

// The full-size picture is not made for an icon: a scan's photos together are more than memory holds.
QPixmap DuplicatedFilesTableModel::makeIcon(const QString &path) const
{
    if (!QFileInfo::exists(path)) {
        return {};
    }
    const auto cached = pixmapCache.constFind(path);
    if (cached != pixmapCache.constEnd()) {
        const QSize size = PictureFile::sizeAtHeight(cached->size(), iconPixels);
        return size.isEmpty()
            ? QPixmap()
            : cached->scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    if (!isPicture(path)) {
        return {};
    }
    PictureFile picture(path);
    if (picture.size().isValid()
        && PictureFile::sizeAtHeight(picture.size(), iconPixels).isEmpty()) {
        return {};
    }
    const QPixmap icon = QPixmap::fromImage(picture.readAtHeight(iconPixels));
    if (icon.isNull()) {
        remember(path, icon);
    }
    return icon;
}

void DuplicatedFilesTableModel::remember(const QString &path, const QPixmap &pixmap) const
{
    const qint64 bytes = pixelBytes(pixmap);
    if (cachedPixmapBytes + bytes <= maxCachedPixmapBytes) {
        cachedPixmapBytes += bytes;
        pixmapCache.insert(path, pixmap);
    }
}

void DuplicatedFilesTableModel::rememberIcon(const QString &path, const QPixmap &icon) const
{
    const qint64 bytes = pixelBytes(icon);
    if (cachedIconBytes + bytes <= maxCachedIconBytes) {
        cachedIconBytes += bytes;
        iconCache.insert(path, icon);
    }
}
