#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace zorel::terminal {

/// A descriptor to write to. Waits for a slow reader; once the reader is gone, everything written is dropped.
class OutputStream
{
public:
    /// Does not own `descriptor`.
    explicit OutputStream(int descriptor);

    void write(const QByteArray &bytes);
    /// True as soon as a write has failed: nobody reads any more, or the disk is full.
    bool isClosed() const { return m_error != 0; }
    /// Why a write has failed; nothing when none has, or when the reader merely had enough.
    std::optional<QString> failure() const;
    bool isTerminal() const;
    /// Width in columns: the terminal's own, else COLUMNS, else 80.
    int columns() const;

private:
    int m_descriptor;
    int m_error = 0; ///< of the write that failed
};

} // namespace zorel::terminal
