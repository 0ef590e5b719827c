#pragma once

#include <QWidget>

class QVBoxLayout;

namespace zorel::app::shell {

/// What the application is, for whom and from whom.
class AboutView : public QWidget
{
    Q_OBJECT

public:
    enum class Mode {
        sheet,    ///< with a button that closes it
        embedded, ///< part of another window
    };

    /// `updates` stands between the credits and the copyright, and becomes a child.
    AboutView(Mode mode, const QString &displayName, const QString &version, QWidget *updates,
              QWidget *parent = nullptr);

Q_SIGNALS:
    void closeRequested();

private:
    void addCloseButton(QVBoxLayout &column);
    void addTitle(QVBoxLayout &column, const QString &displayName, const QString &version);
    void addFeatures(QVBoxLayout &column);
    void addCredits(QVBoxLayout &column);
};

} // namespace zorel::app::shell
