// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class Model;
class ModelEvent;
class QLabel;
class QTimer;
class QVBoxLayout;

/**
 * The three large numbers above the progress of a scan, fed by the event hub.
 *
 * Lives on the GUI thread and belongs to the progress page. It carries the phase of an animation
 * whose timer nobody starts.
 */
class ProgressWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(ProgressWidget)

public:
    explicit ProgressWidget(Model *eventHub, QWidget *parent);

    void updateAnalyzeCount(int count, const QString &folder);
    /** The size is in bytes. A count of 0 or less leaves the number of scanned files alone. */
    void updateFindDuplicatedFiles(int currentCountFiles,
                                   int countFoundedDuplicated,
                                   qint64 summFileSize);
    void resetToDefaults();
    /** A point on the circle itself is inside. */
    bool pointInCircle(int x, int y, int cx, int cy, int radius);
    /** 0 to 50 in steps of 5. */
    int animationPhase() const;

    void paintEvent(QPaintEvent *event) override;

public slots:
    /** Moves the animation on by one step. */
    void onTimeout();
    void onModelEvent(const ModelEvent *modelEvent);

private:
    QVBoxLayout *createColumn(QLabel *number, const QString &caption);

    QTimer *timer = nullptr;
    Model *model = nullptr;
    int phase = 0;
    QLabel *labelScannedFiles = nullptr;
    QLabel *labelUsedSpace = nullptr;
    QLabel *labelFoundDuplicates = nullptr;
};
