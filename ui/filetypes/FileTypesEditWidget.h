// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QWidget>

class QLineEdit;
class QPushButton;

/**
 * A small window in which the name and the masks of one entry are typed, a new one or a changed
 * one. It tells the outcome by one of two signals and deletes itself after "Ok" or "Cancel"; closed
 * by its frame it is only hidden. The texts are taken as typed.
 */
class FileTypesEditWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(FileTypesEditWidget)

public:
    explicit FileTypesEditWidget(QWidget *parent = nullptr);

    /** The entry to change; a window that never gets one, or an empty one, adds an entry. */
    void setCurrentMask(const QString &mask);
    /** All entries there are. A new name that equals one of them as a whole is refused. */
    void setAllFilesMask(const QStringList &masks);

signals:
    /** "Ok" was pressed in a window that adds. */
    void addNewMask(QString mask);
    /** "Ok" was pressed in a window that changes an entry, be it changed or not. */
    void editMask(QString oldMask, QString newMask);

public slots:
    void onButtonClicked();

private:
    QLineEdit *addField(const QString &name);
    QPushButton *createButton(const QString &text);
    void accept();
    /** Why the fields cannot be taken; empty when they can. */
    QString refusal() const;
    void finish();

    QStringList allMasks;
    QString currentMask;
    QLineEdit *nameLineEdit = nullptr;
    QLineEdit *maskLineEdit = nullptr;
    QPushButton *okButton = nullptr;
    QPushButton *cancelButton = nullptr;
};
