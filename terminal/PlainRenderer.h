#pragma once

#include "terminal/MessageWriter.h"
#include "terminal/Renderer.h"

#include <chrono>
#include <functional>

namespace zorel::terminal {

/// Writes lines for a log file: one for each change of state, and between them one every 10 seconds or 5 per
/// cent, whichever comes first.
class PlainRenderer : public Renderer
{
public:
    using Clock = std::function<std::chrono::milliseconds()>;

    static constexpr std::chrono::seconds interval{10};
    static constexpr double share = 0.05;

    /// Both must outlive this object. `clock` only ever moves forward.
    PlainRenderer(MessageWriter &output, MessageWriter &errors, Clock clock);

    void showProgress(const RunProgress &progress) override;
    void showEventLine(const QByteArray &) override {}
    void showNotice(const QString &text) override { m_output.write(text); }
    void showError(const QString &text) override { m_errors.writeError(text); }
    void showLogLine(const QString &line) override { m_output.write(line); }
    void redraw() override {}
    void drawAnew() override {}
    void endProgress() override {}
    bool isClosed() const override { return m_output.isClosed(); }

private:
    MessageWriter &m_output;
    MessageWriter &m_errors;
    Clock m_clock;
    QString m_writtenState;
    double m_writtenFraction = 0;
    std::chrono::milliseconds m_writtenAt{};
};

/// One line that says everything about `progress`.
QString progressLine(const RunProgress &progress);

} // namespace zorel::terminal
