// SPDX-License-Identifier: MIT
#include "ui/progress/WidgetAnalyzeWaiting.h"

#include "app/MainWindow.h"
#include "app/Model.h"
#include "app/ModelEvent.h"
#include "ui/Picture.h"
#include "ui/progress/ClickableLabel.h"
#include "ui/progress/ProgressWidget.h"

#include <QDebug>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QVBoxLayout>

namespace
{
constexpr int buttonIconHeight = 48;
constexpr qint64 bytesPerKilobyte = 1024;
constexpr qint64 bytesPerMegabyte = 1048576;

QString sizeText(qint64 bytes)
{
    return bytes >= bytesPerMegabyte ? QStringLiteral("%1 mb").arg(bytes / bytesPerMegabyte)
                                     : QStringLiteral("%1 kb").arg(bytes / bytesPerKilobyte);
}
} // namespace

WidgetAnalyzeWaiting::WidgetAnalyzeWaiting(Model *eventHub, MainWindow *window)
    : model(eventHub)
    , mainWindow(window)
    // Before this page connects itself: the counters receive an event before the page does.
    , progressWidget(new ProgressWidget(model, nullptr))
    , titleLabel(createLabel(QStringLiteral("titleLabel")))
    , infoLabel(createLabel(QStringLiteral("infoLabel")))
    , progressBar(new QProgressBar(this))
{
    titleLabel->setTextFormat(Qt::RichText);
    infoLabel->setTextFormat(Qt::RichText);
    infoLabel->setFont(QFont());
    progressBar->setRange(0, 0);
    progressBar->setAccessibleName(QStringLiteral("Progress of the scan"));
    buttonScanConfigurations = createButton(QStringLiteral("Scan Confurations"),
                                            QStringLiteral(":/content/arrow_prev.png"));
    buttonScanResults =
        createButton(QStringLiteral("Scan Results"), QStringLiteral(":/content/arrow_next.png"));
    buttonScanResults->setEnabled(false);
    buttonStopSearching =
        createButton(QStringLiteral("Stop Searching"), QStringLiteral(":/content/stop.png"));
    createLayout();
    connect(model,
            SIGNAL(modelEvent(const ModelEvent*)), this, SLOT(onModelEvent(const ModelEvent*)));
}

void WidgetAnalyzeWaiting::toDefaults()
{
    filesCount = 0;
    currentCountFiles = 0;
    countFoundedDuplicated = 0;
    progressWidget->resetToDefaults();
    buttonScanResults->setEnabled(false);
}

void WidgetAnalyzeWaiting::updateAnalyzeCount(int size, const QString &folder)
{
    filesCount = size;
    const QString elided =
        infoLabel->fontMetrics().elidedText(folder, Qt::ElideMiddle, width() / 4 * 3);
    infoLabel->setText(QStringLiteral("<b>%1</b> files in selected folders.<br>"
                                      "Current folder for analysis: %2")
                           .arg(QString::number(size), elided.toHtmlEscaped()));
}

void WidgetAnalyzeWaiting::updateFindDuplicatedFiles(int currentCount,
                                                     int foundCount,
                                                     qint64 summFileSize)
{
    currentCountFiles = currentCount;
    countFoundedDuplicated = foundCount;
    // The bar repaints itself within setValue(), which a scan of many files would wait for.
    progressBar->setUpdatesEnabled(false);
    progressBar->setValue(currentCountFiles);
    progressBar->setUpdatesEnabled(true);
    infoLabel->setText(QStringLiteral("Analyzing <b>%1</b><br>"
                                      "<b>%2</b> files in selected folders<br>"
                                      "Found <b>%3</b> duplicated files (<b>%4</b> on hard drive)")
                           .arg(currentFile.toHtmlEscaped(),
                                QString::number(filesCount),
                                QString::number(countFoundedDuplicated),
                                sizeText(summFileSize)));
}

void WidgetAnalyzeWaiting::setStepWorking(StepWorking step)
{
    switch (step) {
    case StepFindAllFiles:
        buttonStopSearching->show();
        focusOn(buttonStopSearching);
        buttonScanConfigurations->hide();
        buttonScanResults->setEnabled(false);
        titleLabel->setText(QStringLiteral("<h1>Analyzing...<h1>"));
        progressBar->setRange(0, 0);
        break;
    case StepFindDuplicatedFiles:
        titleLabel->setText(QStringLiteral("<h1>Finding duplicated files...<h1>"));
        progressBar->setRange(0, filesCount);
        break;
    default:
        qDebug() << "Never been here";
    }
}

void WidgetAnalyzeWaiting::onModelEvent(const ModelEvent *modelEvent)
{
    switch (modelEvent->type) {
    case TypeCountingFilesInFolderEvent: {
        const auto *const event = static_cast<const CountingFilesInFolderEvent *>(modelEvent);
        updateAnalyzeCount(event->size, event->folder);
        break;
    }
    case TypeCountingFindFilesDuplicatedEvent: {
        const auto *const event = static_cast<const CountingFindFilesDuplicatedEvent *>(modelEvent);
        updateFindDuplicatedFiles(event->currentCountFiles,
                                  event->countFoundedDuplicated,
                                  event->summFileSize);
        break;
    }
    case TypeFindAllFilesStartedEvent:
        setStepWorking(StepFindAllFiles);
        break;
    case TypeFindDuplicatedFilesStartedEvent:
        setStepWorking(StepFindDuplicatedFiles);
        break;
    case TypeAnalyzingCurrentDuplicatedFileEvent:
        // The next count shows it.
        currentFile =
            static_cast<const AnalyzingCurrentDuplicatedFileEvent *>(modelEvent)->currentFile;
        break;
    case TypeFindDuplicatedFilesFinishedEvent:
        onFinished();
        break;
    case TypeFindDuplicatedFilesStoppedEvent:
        onStopped();
        break;
    default:
        break;
    }
}

void WidgetAnalyzeWaiting::onButtonClicked()
{
    if (sender() == buttonScanConfigurations) {
        mainWindow->setCurrentWidget(0);
    } else if (sender() == buttonScanResults) {
        mainWindow->setCurrentWidget(2);
    } else if (sender() == buttonStopSearching) {
        askToStop();
    }
}

QLabel *WidgetAnalyzeWaiting::createLabel(const QString &name)
{
    auto *const label = new QLabel(this);
    label->setObjectName(name);
    label->setAlignment(Qt::AlignCenter);
    return label;
}

ClickableLabel *WidgetAnalyzeWaiting::createButton(const QString &text, const QString &picture)
{
    auto *const button = new ClickableLabel(text, this);
    button->setPixmap(Picture::scaledToHeight(picture, buttonIconHeight, devicePixelRatioF()));
    // The caption stays as it is: it is drawn with the text font.
    QFont bold;
    bold.setWeight(QFont::Bold);
    button->setFont(bold);
    button->textColor = QColor(QStringLiteral("#696969"));
    connect(button, SIGNAL(clicked()), this, SLOT(onButtonClicked()));
    return button;
}

void WidgetAnalyzeWaiting::createLayout()
{
    mainLayout = new QVBoxLayout(this);
    mainLayout->addWidget(progressWidget, 0, Qt::AlignCenter);
    mainLayout->addWidget(titleLabel);
    mainLayout->addWidget(progressBar);
    mainLayout->addWidget(infoLabel);
    auto *const row = new QHBoxLayout;
    row->addWidget(buttonStopSearching);
    row->addWidget(buttonScanConfigurations);
    row->addStretch();
    row->addWidget(buttonScanResults);
    mainLayout->addLayout(row);
}

void WidgetAnalyzeWaiting::onFinished()
{
    titleLabel->setText(QStringLiteral("<h1>Finding duplicated files was completed!<h1>"));
    buttonScanResults->setEnabled(true);
    focusOn(buttonScanResults);
    showEnd();
}

void WidgetAnalyzeWaiting::onStopped()
{
    // Whether there are results to look at is left to the event that brings them.
    buttonScanResults->show();
    showEnd();
    titleLabel->setText(QStringLiteral("<h1>Finding duplicated files was stopped!<h1>"));
}

// A button that goes would hand the focus to the next control, which may be one that opens a browser.
void WidgetAnalyzeWaiting::focusOn(ClickableLabel *button)
{
    if (isVisible()) {
        button->setFocus();
    }
}

void WidgetAnalyzeWaiting::showEnd()
{
    progressBar->setRange(0, 1);
    progressBar->setValue(1);
    buttonScanConfigurations->show();
    buttonStopSearching->hide();
}

void WidgetAnalyzeWaiting::askToStop()
{
    if (titleLabel->text().contains(QLatin1String("completed"), Qt::CaseInsensitive)) {
        return;
    }
    const QMessageBox::StandardButton answer =
        QMessageBox::question(this,
                              QStringLiteral("Question"),
                              QStringLiteral("Do you want to stop the scanning?"),
                              QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes) {
        mainWindow->stopScan();
    }
}
