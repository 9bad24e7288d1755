// SPDX-License-Identifier: MIT
#include "ui/progress/ProgressWidget.h"

#include "app/Model.h"
#include "app/ModelEvent.h"

#include <QAbstractTextDocumentLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QTextDocument>
#include <QTimer>
#include <QVBoxLayout>

namespace
{
constexpr int numberPixels = 42;
constexpr int columnSpacing = 45;
constexpr qint64 bytesPerMegabyte = 1048576;
constexpr int phaseStep = 5;
constexpr int lastPhaseThatGrows = 45;

/**
 * A number in one line. Where its column is narrower than the number, all digits are drawn smaller
 * instead of some of them not at all.
 */
class NumberLabel final : public QLabel
{
public:
    using QLabel::QLabel;

    // A large number does not push the window's contents over its edge.
    QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        if (sizeHint().width() <= width()) {
            QLabel::paintEvent(event);
            return;
        }
        QTextDocument document;
        document.setDefaultFont(font());
        document.setDocumentMargin(0);
        document.setHtml(text());
        const qreal scale = contentsRect().width() / document.size().width();
        QAbstractTextDocumentLayout::PaintContext context;
        context.palette.setColor(QPalette::Text, palette().color(foregroundRole()));
        QPainter painter(this);
        painter.translate(contentsRect().left(),
                          contentsRect().bottom() + 1 - scale * document.size().height());
        painter.scale(scale, scale);
        document.documentLayout()->draw(&painter, context);
    }
};

QLabel *createNumber(const QString &name, QWidget *parent)
{
    QFont font;
    font.setPixelSize(numberPixels);
    font.setWeight(QFont::Bold);
    auto *const number = new NumberLabel(QStringLiteral("<H1> 0 </H1>"), parent);
    number->setObjectName(name);
    number->setFont(font);
    number->setStyleSheet(QStringLiteral("color: #3199e5"));
    number->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    return number;
}

void showNumber(QLabel *label, qint64 number)
{
    label->setText(QStringLiteral("<H1>%1</H1>").arg(number));
}
} // namespace

ProgressWidget::ProgressWidget(Model *eventHub, QWidget *parent)
    : QWidget(parent)
    , timer(new QTimer(this))
    , model(eventHub)
    , labelScannedFiles(createNumber(QStringLiteral("labelScannedFiles"), this))
    , labelUsedSpace(createNumber(QStringLiteral("labelUsedSpace"), this))
    , labelFoundDuplicates(createNumber(QStringLiteral("labelFoundDuplicates"), this))
{
    connect(timer, SIGNAL(timeout()), this, SLOT(onTimeout()));
    labelUsedSpace->setWordWrap(false);

    auto *const row = new QHBoxLayout;
    row->addStretch();
    row->addLayout(createColumn(labelScannedFiles, QStringLiteral("<h3>Scanned Files</h3>")));
    row->addSpacing(columnSpacing);
    row->addLayout(createColumn(labelUsedSpace, QStringLiteral("<h3>Used Space(Mb)</h3>")));
    row->addSpacing(columnSpacing);
    row->addLayout(createColumn(labelFoundDuplicates, QStringLiteral("<h3>Found Duplicates</h3>")));
    row->addStretch();
    auto *const layout = new QVBoxLayout(this);
    layout->addStretch();
    layout->addLayout(row);
    layout->addStretch();

    connect(model,
            SIGNAL(modelEvent(const ModelEvent*)), this, SLOT(onModelEvent(const ModelEvent*)));
}

void ProgressWidget::updateAnalyzeCount(int count, const QString &folder)
{
    Q_UNUSED(folder)
    showNumber(labelScannedFiles, count);
}

void ProgressWidget::updateFindDuplicatedFiles(int currentCountFiles,
                                               int countFoundedDuplicated,
                                               qint64 summFileSize)
{
    if (currentCountFiles > 0) {
        showNumber(labelScannedFiles, currentCountFiles);
    }
    showNumber(labelUsedSpace, summFileSize / bytesPerMegabyte);
    showNumber(labelFoundDuplicates, countFoundedDuplicated);
}

void ProgressWidget::resetToDefaults()
{
    showNumber(labelScannedFiles, 0);
    showNumber(labelUsedSpace, 0);
    showNumber(labelFoundDuplicates, 0);
}

bool ProgressWidget::pointInCircle(int x, int y, int cx, int cy, int radius)
{
    const qint64 dx = qint64(x) - cx;
    const qint64 dy = qint64(y) - cy;
    return dx * dx + dy * dy <= qint64(radius) * radius;
}

int ProgressWidget::animationPhase() const
{
    return phase;
}

void ProgressWidget::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
}

void ProgressWidget::onTimeout()
{
    phase = phase <= lastPhaseThatGrows ? phase + phaseStep : 0;
    repaint();
}

void ProgressWidget::onModelEvent(const ModelEvent *modelEvent)
{
    if (modelEvent->type == TypeCountingFilesInFolderEvent) {
        const auto *const event = static_cast<const CountingFilesInFolderEvent *>(modelEvent);
        updateAnalyzeCount(event->size, event->folder);
    } else if (modelEvent->type == TypeCountingFindFilesDuplicatedEvent) {
        const auto *const event = static_cast<const CountingFindFilesDuplicatedEvent *>(modelEvent);
        // The scanned files keep the count that the enumeration has reached.
        updateFindDuplicatedFiles(-1, event->countFoundedDuplicated, event->summFileSize);
    }
}

QVBoxLayout *ProgressWidget::createColumn(QLabel *number, const QString &caption)
{
    auto *const label = new QLabel(caption, this);
    label->setStyleSheet(QStringLiteral("color: #4d4d4d"));
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    auto *const column = new QVBoxLayout;
    column->addWidget(number);
    column->addWidget(label);
    return column;
}
