// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

class ModelEvent;

/**
 * The event hub: hands every event to all pages, in the order in which they connected themselves.
 *
 * Lives on the GUI thread and belongs to the main window. It has no state.
 */
class Model final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Model)

public:
    explicit Model(QObject *parent);

    /**
     * Delivers the event and returns when all receivers have seen it.
     *
     * Does nothing on any other thread than the Model's own: the toolkit would queue the bare
     * pointer for the receivers, and the event is gone by the time that they look at it.
     */
    void emitModelEvent(const ModelEvent &event);
    /** Delivers a CountingFilesInFolderEvent, with the same rule about threads. */
    void countingFilesInFolderChanged(int size, const QString &folder);

signals:
    /** The event is borrowed: it lives as long as this emission. */
    void modelEvent(const ModelEvent *);
};
