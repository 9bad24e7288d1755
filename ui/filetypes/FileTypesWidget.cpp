// SPDX-License-Identifier: MIT
#include "ui/filetypes/FileTypesWidget.h"

#include "ui/SideWindow.h"
#include "ui/filetypes/FileTypesEditWidget.h"
#include "ui/filetypes/MaskFile.h"

#include <QDebug>
#include <QFile>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace
{
// A window that opens shows at least the default list whole, and leaves room for its frame.
constexpr int maxRowsShownAtFirst = 12;
constexpr QSize frameAllowance(40, 80);

/** Shows an entry in one line; the line break at its end would take a second, empty one. */
class EntryDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant &value, const QLocale &locale) const override
    {
        QString text = QStyledItemDelegate::displayText(value, locale);
        // The toolkit has made a line separator of the line feed.
        while (text.endsWith(QChar::LineSeparator)) {
            text.chop(1);
        }
        return text;
    }
};

bool takesAnyFile(const QListWidgetItem *item)
{
    return item->text().contains(QStringLiteral("*.*"));
}
} // namespace

FileTypesWidget::FileTypesWidget(QWidget *parent)
    : QWidget(parent)
{
    setWindowTitle(QStringLiteral("File Types"));
    createList();
    addButton = createButton(QStringLiteral("Add"));
    editButton = createButton(QStringLiteral("Edit"));
    deleteButton = createButton(QStringLiteral("Delete"));
    closeButton = createButton(QStringLiteral("Close"));
    createLayout();
    const QString path = MaskFile::readingPath();
    qDebug() << "SEE" << path;
    if (!QFile::exists(path)) {
        MaskFile::createDefault(path);
    }
    setTypesFilename(path);
    updateList();
    resizeToEntries();
}

void FileTypesWidget::setTypesFilename(const QString &path)
{
    const std::optional<QStringList> entries = MaskFile::read(path);
    if (!entries) {
        qDebug("Cannot open dat file");
        return;
    }
    maskEntries.append(*entries);
}

void FileTypesWidget::updateList()
{
    listWidget->clear();
    for (const QString &entry : std::as_const(maskEntries)) {
        auto *const item = new QListWidgetItem(entry);
        item->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        item->setCheckState(Qt::Unchecked);
        listWidget->addItem(item);
    }
    // The list forgets its current row without a word when it is cleared.
    onListSelectionChanged();
}

void FileTypesWidget::saveList()
{
    if (!MaskFile::save(maskEntries)) {
        qDebug("Cannot open dat file");
    }
}

QStringList FileTypesWidget::selectedTypes() const
{
    QStringList types;
    for (int row = 0; row < listWidget->count(); ++row) {
        const QListWidgetItem *const item = listWidget->item(row);
        if (item->checkState() == Qt::Checked) {
            types.append(item->text());
        }
    }
    return types;
}

void FileTypesWidget::setCurrentMaskList(const QStringList &list)
{
    QStringList chosen = list;
    std::sort(chosen.begin(), chosen.end());
    for (int row = 0; row < listWidget->count(); ++row) {
        QListWidgetItem *const item = listWidget->item(row);
        if (std::binary_search(chosen.cbegin(), chosen.cend(), item->text())) {
            item->setCheckState(Qt::Checked);
        }
    }
}

void FileTypesWidget::onListSelectionChanged()
{
    // The first row is the one that takes every file; it is there for good.
    const bool changeable = listWidget->currentRow() > 0;
    editButton->setEnabled(changeable);
    deleteButton->setEnabled(changeable);
}

void FileTypesWidget::onItemClicked(QListWidgetItem *item)
{
    const bool all = takesAnyFile(item);
    for (int row = 0; row < listWidget->count(); ++row) {
        QListWidgetItem *const other = listWidget->item(row);
        if (other != item && (all || takesAnyFile(other))) {
            other->setCheckState(Qt::Unchecked);
        }
    }
}

void FileTypesWidget::onButtonClicked()
{
    if (sender() == addButton) {
        addEntry();
    } else if (sender() == editButton) {
        editEntry();
    } else if (sender() == deleteButton) {
        deleteEntry();
    } else if (sender() == closeButton) {
        closeWindow();
    }
}

// The strings are taken by value, as the editor's signals have them.
void FileTypesWidget::onAddNewMask(QString mask) // NOLINT(performance-unnecessary-value-param)
{
    maskEntries.append(mask);
    updateList();
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
void FileTypesWidget::onEditMask(QString oldMask, QString newMask)
{
    maskEntries.removeAll(oldMask);
    maskEntries.append(newMask);
    updateList();
}

void FileTypesWidget::createList()
{
    listWidget = new QListWidget(this);
    listWidget->setItemDelegate(new EntryDelegate(listWidget));
    listWidget->setAccessibleName(QStringLiteral("File Types"));
    connect(listWidget, SIGNAL(itemSelectionChanged()), this, SLOT(onListSelectionChanged()));
    // clang-format off
    connect(listWidget, SIGNAL(itemClicked(QListWidgetItem*)),
            this, SLOT(onItemClicked(QListWidgetItem*)));
    // clang-format on
}

QPushButton *FileTypesWidget::createButton(const QString &text)
{
    auto *const button = new QPushButton(text, this);
    connect(button, SIGNAL(clicked(bool)), this, SLOT(onButtonClicked()));
    return button;
}

void FileTypesWidget::createLayout()
{
    auto *const layout = new QVBoxLayout(this);
    auto *const listRow = new QHBoxLayout;
    auto *const buttonColumn = new QVBoxLayout;
    buttonColumn->addWidget(addButton);
    buttonColumn->addWidget(editButton);
    buttonColumn->addWidget(deleteButton);
    buttonColumn->addStretch();
    listRow->addWidget(listWidget);
    listRow->addLayout(buttonColumn);
    auto *const closeRow = new QHBoxLayout;
    closeRow->addStretch();
    closeRow->addWidget(closeButton);
    layout->addLayout(listRow);
    layout->addLayout(closeRow);
}

void FileTypesWidget::resizeToEntries()
{
    QSize rows;
    for (int row = 0; row < qMin(listWidget->count(), maxRowsShownAtFirst); ++row) {
        const QSize hint = listWidget->sizeHintForIndex(listWidget->model()->index(row, 0));
        rows = QSize(qMax(rows.width(), hint.width()), qMax(rows.height(), 0) + hint.height());
    }
    // Room for both scroll bars, so that neither covers a row that was counted in.
    const int border =
        2 * listWidget->frameWidth() + listWidget->verticalScrollBar()->sizeHint().width();
    const QSize list = (rows + QSize(border, border)).expandedTo(listWidget->sizeHint());
    const QSize wanted = sizeHint() - listWidget->sizeHint() + list;
    // There is none while the only screen is unplugged.
    const QScreen *const screen = QGuiApplication::primaryScreen();
    resize(screen != nullptr ? wanted.boundedTo(screen->availableSize() - frameAllowance) : wanted);
}

// A window of its own, which may outlive this one.
FileTypesEditWidget *FileTypesWidget::createEditor() const
{
    auto *const editor = new FileTypesEditWidget;
    SideWindow::endWithProgram(editor);
    editor->setAllFilesMask(maskEntries);
    return editor;
}

void FileTypesWidget::addEntry()
{
    FileTypesEditWidget *const editor = createEditor();
    connect(editor, SIGNAL(addNewMask(QString)), this, SLOT(onAddNewMask(QString)));
    editor->show();
}

void FileTypesWidget::editEntry()
{
    if (!hasEntryOfCurrentRow()) {
        return;
    }
    FileTypesEditWidget *const editor = createEditor();
    // clang-format off
    connect(editor, SIGNAL(editMask(QString,QString)), this, SLOT(onEditMask(QString,QString)));
    // clang-format on
    editor->setCurrentMask(maskEntries.at(listWidget->currentRow()));
    editor->show();
}

void FileTypesWidget::deleteEntry()
{
    const QMessageBox::StandardButton answer =
        QMessageBox::question(nullptr,
                              QStringLiteral("Question"),
                              QStringLiteral("Are you sure?"),
                              QMessageBox::Yes | QMessageBox::No);
    // The rows are not made anew: the deleted one stays until the window is opened again, and the
    // rows below it stand for the entry after their own.
    if (answer == QMessageBox::Yes && hasEntryOfCurrentRow()) {
        maskEntries.removeAt(listWidget->currentRow());
    }
}

void FileTypesWidget::closeWindow()
{
    saveList();
    emit selectedTypesSignal(selectedTypes());
    deleteLater();
}

bool FileTypesWidget::hasEntryOfCurrentRow() const
{
    // After a deletion there are more rows than entries.
    const int row = listWidget->currentRow();
    return row >= 0 && row < maskEntries.size();
}
