#include "ui/kit/ChoicePicker.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/ChoiceCard.h"
#include "ui/kit/TileLayout.h"

#include <QButtonGroup>
#include <QKeyEvent>

#include <algorithm>

namespace zorel::ui::kit {

namespace {

constexpr int narrowestCard = 200;

} // namespace

ChoicePicker::ChoicePicker(const QString &accessibleName, QWidget *parent)
    : QWidget(parent)
    , m_layout(new TileLayout(narrowestCard, this))
    , m_group(new QButtonGroup(this))
{
    setAccessibleRole(this, QAccessible::Grouping);
    setSpokenName(this, accessibleName);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(m_group, &QButtonGroup::idClicked, this, [this](int index) {
        m_current = m_choices[static_cast<std::size_t>(index)].id;
        Q_EMIT chosen(m_current);
    });
}

void ChoicePicker::setChoices(const std::vector<Choice> &choices)
{
    if (m_choices == choices) {
        return;
    }
    for (ChoiceCard *card : m_cards) {
        m_group->removeButton(card);
        card->hide();
        card->deleteLater();
    }
    m_cards.clear();
    m_choices = choices;
    for (const Choice &choice : m_choices) {
        auto *card = new ChoiceCard(choice, this);
        m_group->addButton(card, static_cast<int>(m_cards.size()));
        m_cards.push_back(card);
        m_layout->addWidget(card);
        card->installEventFilter(this);
        card->show();
    }
    placeInTabOrder();
    showCurrent();
}

/// Cards that are made late would otherwise come after everything that the window already has.
void ChoicePicker::placeInTabOrder()
{
    // Only what takes the focus can be put in order.
    setFocusPolicy(Qt::TabFocus);
    QWidget *before = this;
    for (ChoiceCard *card : m_cards) {
        card->setFocusPolicy(Qt::StrongFocus);
        QWidget::setTabOrder(before, card);
        before = card;
    }
    setFocusPolicy(Qt::NoFocus);
}

void ChoicePicker::setCurrent(const QString &id)
{
    m_current = id;
    showCurrent();
}

void ChoicePicker::showCurrent()
{
    // Without exclusiveness for a moment, for only then can all of them be off.
    m_group->setExclusive(false);
    for (std::size_t index = 0; index < m_cards.size(); ++index) {
        m_cards[index]->setChecked(m_choices[index].id == m_current);
    }
    m_group->setExclusive(true);
    keepOneTabStop();
}

bool ChoicePicker::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && takeKey(watched, static_cast<QKeyEvent *>(event)->key())) {
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

/// All four arrow keys walk through the choices, whether these stand side by side or one below the other.
bool ChoicePicker::takeKey(const QObject *card, int key)
{
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const bool isNext = key == Qt::Key_Down || key == (isMirrored ? Qt::Key_Left : Qt::Key_Right);
    const bool isPrevious = key == Qt::Key_Up || key == (isMirrored ? Qt::Key_Right : Qt::Key_Left);
    const auto found = std::ranges::find(m_cards, card);
    if ((!isNext && !isPrevious) || found == m_cards.end()) {
        return false;
    }
    const auto count = static_cast<std::ptrdiff_t>(m_cards.size());
    const std::ptrdiff_t index = found - m_cards.begin() + (isNext ? 1 : count - 1);
    ChoiceCard *target = m_cards[static_cast<std::size_t>(index % count)];
    if (target != card) {
        target->setFocus(isNext ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        target->click();
    }
    return true;
}

/// The Tab key stops at the current choice, or at the first; the arrow keys go on from there.
void ChoicePicker::keepOneTabStop()
{
    const auto current = std::find_if(m_cards.begin(), m_cards.end(),
                                      [](const ChoiceCard *card) { return card->isChecked(); });
    const ChoiceCard *stop = current != m_cards.end() ? *current
                             : m_cards.empty()        ? nullptr
                                                      : m_cards.front();
    for (ChoiceCard *card : m_cards) {
        card->setFocusPolicy(card == stop ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

} // namespace zorel::ui::kit
