#include "ui/kit/Repaint.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <utility>
#include <vector>

namespace zorel::ui::kit {

namespace {

constexpr qint64 frameMilliseconds = 17;

} // namespace

/// The frames that all coalescers share. One per application.
class FrameClock : public QObject
{
public:
    static FrameClock &instance()
    {
        static QPointer<FrameClock> clock;
        if (!clock) {
            clock = new FrameClock(QCoreApplication::instance());
        }
        return *clock;
    }

    void add(FrameCoalescer *coalescer)
    {
        m_waiting.push_back(coalescer);
        if (!m_timer.isActive() && !m_isInFrame) {
            startTimer();
        }
    }

    void remove(const FrameCoalescer *coalescer)
    {
        std::erase(m_waiting, coalescer);
        if (m_waiting.empty()) {
            m_timer.stop();
        }
    }

    /// For a function that runs by itself: counts as a frame of its own.
    void beginFrame()
    {
        ++m_frame;
        m_sinceLast.start();
    }

private:
    explicit FrameClock(QObject *parent)
        : QObject(parent)
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, [this] { runFrame(); });
    }

    void startTimer()
    {
        const qint64 passed = m_sinceLast.isValid() ? m_sinceLast.elapsed() : frameMilliseconds;
        m_timer.start(static_cast<int>(std::max<qint64>(frameMilliseconds - passed, 0)));
    }

    void runFrame()
    {
        beginFrame();
        m_isInFrame = true;
        const quint64 frame = m_frame;
        // Functions may make requests, and may end coalescers.
        const auto isDue = [frame](const FrameCoalescer *coalescer) {
            return coalescer->m_lastFrame != frame;
        };
        for (auto next = std::ranges::find_if(m_waiting, isDue); next != m_waiting.end();
             next = std::ranges::find_if(m_waiting, isDue)) {
            FrameCoalescer *coalescer = *next;
            m_waiting.erase(next);
            coalescer->m_lastFrame = frame;
            coalescer->run();
        }
        m_isInFrame = false;
        if (!m_waiting.empty()) {
            startTimer();
        }
    }

    QTimer m_timer{this};
    QElapsedTimer m_sinceLast;
    std::vector<FrameCoalescer *> m_waiting;
    quint64 m_frame = 0;
    bool m_isInFrame = false;
};

FrameCoalescer::FrameCoalescer(QObject *parent, std::function<void()> function)
    : QObject(parent)
    , m_function(std::move(function))
{}

FrameCoalescer::~FrameCoalescer()
{
    if (m_isPending && QCoreApplication::instance() != nullptr) {
        FrameClock::instance().remove(this);
    }
}

void FrameCoalescer::request()
{
    if (!m_isPending) {
        m_isPending = true;
        FrameClock::instance().add(this);
    }
}

void FrameCoalescer::flush()
{
    if (m_isPending) {
        FrameClock::instance().remove(this);
        FrameClock::instance().beginFrame();
        run();
    }
}

void FrameCoalescer::run()
{
    m_isPending = false;
    m_function();
}

} // namespace zorel::ui::kit
