#include "BusyBar.h"

#include "RunnableItem.h"

#include <QEvent>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QThreadPool>

namespace {

constexpr int momentMs = 250;

/// Ends a loop when the work is over, also one that was stopped before it began and tells nothing.
class WorkUntilQuit : public QRunnable
{
public:
    WorkUntilQuit(CQRunnableItem& work, QEventLoop& loop)
        : m_work(work)
        , m_loop(loop)
    {
        setAutoDelete(false);
    }

    void run() override
    {
        m_work.run();
        QMetaObject::invokeMethod(&m_loop, "quit", Qt::QueuedConnection);
    }

private:
    CQRunnableItem& m_work;
    QEventLoop& m_loop;
};

} // namespace

BusyBar::BusyBar(QWidget* parent)
    : QFrame(parent)
    , m_text(new QLabel)
    , m_progress(new QProgressBar)
    , m_stopButton(new QPushButton)
{
    setObjectName(QStringLiteral("busyBar"));
    m_progress->setObjectName(QStringLiteral("progressBar"));
    m_progress->setTextVisible(false);
    m_stopButton->setObjectName(QStringLiteral("stopButton"));
    connect(m_stopButton, &QPushButton::clicked, this, &BusyBar::stop);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(24, 10, 24, 10);
    layout->setSpacing(16);
    layout->addWidget(m_text);
    layout->addWidget(m_progress, 1);
    layout->addWidget(m_stopButton);
    retranslate();
    hide();

    m_moment.setSingleShot(true);
    m_moment.setInterval(momentMs);
    connect(&m_moment, &QTimer::timeout, this, &QWidget::show);
}

BusyBar::Outcome BusyBar::run(CQRunnableItem& work, const std::function<QString()>& describe)
{
    m_work = &work;
    m_describe = describe;
    retranslate();
    m_progress->setRange(0, 0);
    Q_EMIT busyChanged(true);
    if (!isVisible())
        m_moment.start();

    Outcome outcome = Outcome::Stopped;
    const auto finished = connect(
        &work, &CQRunnableItem::finished, this,
        [&outcome](bool ok, bool stopped) {
            if (!stopped)
                outcome = ok ? Outcome::Done : Outcome::Failed;
        },
        Qt::DirectConnection);
    QEventLoop loop;
    WorkUntilQuit runnable(work, loop);
    QThreadPool pool;
    pool.start(&runnable);
    loop.exec();
    // Without effect, unless the application quits while it works.
    work.stop();
    pool.waitForDone();
    disconnect(finished);

    m_work = nullptr;
    m_describe = nullptr;
    m_moment.stop();
    hide();
    Q_EMIT busyChanged(false);
    return outcome;
}

void BusyBar::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QFrame::changeEvent(event);
}

void BusyBar::retranslate()
{
    m_stopButton->setText(tr("Stop"));
    if (m_describe)
        m_text->setText(m_describe());
}

bool BusyBar::isBusy() const
{
    return m_work != nullptr;
}

void BusyBar::stop()
{
    if (m_work)
        m_work->stop();
}

void BusyBar::setProgress(int percent)
{
    m_progress->setRange(0, 100);
    m_progress->setValue(percent);
}
