// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QWidget>

class FileTypesEditWidget;
class QListWidget;
class QListWidgetItem;
class QPushButton;

/**
 * A window that lists the named groups of file masks, lets the user tick some of them, and adds,
 * changes and deletes groups. Entries are handled as whole lines, a line feed at the end included.
 *
 * It is made without a parent for one choice and deletes itself after "Close", which is also when
 * the list is saved. Closed by its frame it saves and tells nothing; it is then hidden, or deleted if
 * whoever made it has set Qt::WA_DeleteOnClose.
 */
class FileTypesWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(FileTypesWidget)

public:
    /** Reads the mask file; makes it with the default entries when there is none. */
    explicit FileTypesWidget(QWidget *parent = nullptr);

    /** Appends the entries of the file; the rows follow with updateList(). */
    void setTypesFilename(const QString &path);
    /** Makes the rows anew, none of them ticked. */
    void updateList();
    /** Into the working folder; a list that cannot be saved leaves a line in the debug log. */
    void saveList();
    /** The texts of the ticked rows, from top to bottom. */
    QStringList selectedTypes() const;
    /** Ticks the rows whose whole text is in the list; unticks none. */
    void setCurrentMaskList(const QStringList &list);

signals:
    /** "Close" was pressed, the list has been saved or cannot be; the window is about to go. */
    void selectedTypesSignal(QStringList listTypes);

public slots:
    void onListSelectionChanged();
    void onItemClicked(QListWidgetItem *item);
    void onButtonClicked();
    void onAddNewMask(QString mask);
    void onEditMask(QString oldMask, QString newMask);

private:
    void createList();
    QPushButton *createButton(const QString &text);
    void createLayout();
    void resizeToEntries();
    FileTypesEditWidget *createEditor() const;
    void addEntry();
    void editEntry();
    void deleteEntry();
    void closeWindow();
    bool hasEntryOfCurrentRow() const;

    QStringList maskEntries;
    QListWidget *listWidget = nullptr;
    QPushButton *addButton = nullptr;
    QPushButton *editButton = nullptr;
    QPushButton *deleteButton = nullptr;
    QPushButton *closeButton = nullptr;
};
