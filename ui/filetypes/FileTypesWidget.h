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
 * the list is saved; closed by its frame it is only hidden, and nothing is saved or chosen.
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
    void saveList();
    /** The texts of the ticked rows, from top to bottom. */
    QStringList selectedTypes() const;
    /** Ticks the rows whose whole text is in the list; unticks none. */
    void setCurrentMaskList(const QStringList &list);

signals:
    /** "Close" was pressed and the list has been saved; the window is about to be deleted. */
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
