#pragma once

#include <QString>
#include <QWidget>

#include <vector>

class QButtonGroup;

namespace zorel::ui::kit {

class ChoiceCard;
class TileLayout;

struct Choice
{
    QString id;
    QString symbol;
    QString title;
    QString summary;

    bool operator==(const Choice &) const = default;
};

/// One of several, each a card with symbol, title and summary: a group of radio buttons for the keyboard and
/// for assistive technology.
class ChoicePicker : public QWidget
{
    Q_OBJECT

public:
    explicit ChoicePicker(const QString &accessibleName, QWidget *parent = nullptr);

    /// Keeps the current choice when it is still there.
    void setChoices(const std::vector<Choice> &choices);
    /// Tells nobody. Nothing is current when there is no such choice.
    void setCurrent(const QString &id);
    QString current() const { return m_current; }

Q_SIGNALS:
    /// The user chose this, by pointer, keyboard or assistive technology; also when it already was the
    /// current one.
    void chosen(const QString &id);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool takeKey(const QObject *card, int key);
    void placeInTabOrder();
    void showCurrent();
    void keepOneTabStop();

    TileLayout *m_layout;
    QButtonGroup *m_group;
    std::vector<Choice> m_choices;
    std::vector<ChoiceCard *> m_cards;
    QString m_current;
};

} // namespace zorel::ui::kit
