#pragma once

#include <QAbstractButton>
#include <QString>
#include <QWidget>

class QHBoxLayout;
class QVBoxLayout;

namespace zorel::ui::kit {

/// The line that opens and closes a section: a chevron, a symbol and a title. Checked means open.
class SectionHeader : public QAbstractButton
{
    Q_OBJECT

public:
    SectionHeader(const QString &title, const QString &symbol, QWidget *parent = nullptr);

    void setTitle(const QString &title);
    QString symbol() const { return m_symbol; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    int textLeft() const;

    QString m_title;
    QString m_symbol;
};

/// A card whose content can be put away. Closed at first.
class CollapsibleSection : public QWidget
{
    Q_OBJECT

public:
    CollapsibleSection(const QString &title, const QString &symbol, QWidget *parent = nullptr);

    bool expanded() const;
    void setExpanded(bool expanded);
    void setTitle(const QString &title);
    QVBoxLayout *content() { return m_content; }
    /// At the trailing end of the heading; seen whether the section is open or not.
    void addHeaderWidget(QWidget *widget);
    SectionHeader *header() { return m_header; }

Q_SIGNALS:
    void expandedChanged(bool expanded);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    SectionHeader *m_header;
    QHBoxLayout *m_headerLayout;
    QWidget *m_body;
    QVBoxLayout *m_content;
};

} // namespace zorel::ui::kit
