#include "ui/kit/LineChartAccessible.h"

#include "ui/kit/ChartText.h"
#include "ui/kit/LineChart.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <vector>

namespace zorel::ui::kit {

namespace {

/// A text that the chart paints.
class PaintedText : public QAccessibleInterface
{
public:
    PaintedText(LineChart *chart, const QString &text)
        : m_chart(chart)
        , m_text(text)
    {}

    bool isValid() const override { return m_chart; }
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(m_chart); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? m_text : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override { return parent() != nullptr ? parent()->rect() : QRect(); }
    QAccessible::Role role() const override { return QAccessible::StaticText; }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invisible = !m_chart || !m_chart->isVisible();
        state.readOnly = true;
        return state;
    }

private:
    QPointer<LineChart> m_chart;
    QString m_text;
};

class ChartAccessible : public QAccessibleWidget
{
public:
    explicit ChartAccessible(LineChart *chart)
        : QAccessibleWidget(chart, QAccessible::Chart)
    {}

    ~ChartAccessible() override { forget(); }

    QString text(QAccessible::Text kind) const override
    {
        switch (kind) {
        case QAccessible::Description:
            return chart()->spokenDescription();
        case QAccessible::Value: {
            const auto mark = chart()->crosshair();
            return mark ? chartMarkText(chart()->content(), *mark, chart()->locale()) : QString();
        }
        case QAccessible::Help:
            return QStringLiteral(
                "Left and Right move from point to point, Home and End to the ends, plus and minus zoom, "
                "Escape resets.");
        default:
            return QAccessibleWidget::text(kind);
        }
    }

    int childCount() const override
    {
        return QAccessibleWidget::childCount() + static_cast<int>(texts().size());
    }

    QAccessibleInterface *child(int index) const override
    {
        const int widgets = QAccessibleWidget::childCount();
        if (index < widgets) {
            return QAccessibleWidget::child(index);
        }
        const auto &all = texts();
        const auto position = static_cast<std::size_t>(index - widgets);
        return position < all.size() ? QAccessible::accessibleInterface(all[position]) : nullptr;
    }

    int indexOfChild(const QAccessibleInterface *searched) const override
    {
        const auto &all = texts();
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (QAccessible::accessibleInterface(all[i]) == searched) {
                return QAccessibleWidget::childCount() + static_cast<int>(i);
            }
        }
        return QAccessibleWidget::indexOfChild(searched);
    }

private:
    LineChart *chart() const { return static_cast<LineChart *>(widget()); }

    QStringList paintedTexts() const
    {
        const ChartContent &content = chart()->content();
        if (content.isEmpty()) {
            return {};
        }
        QStringList all{content.valueTitle, content.stepTitle};
        if (content.series.size() > 1) {
            if (!content.legendKey.isEmpty()) {
                all += content.legendKey;
            }
            for (std::size_t i = 0; i < content.series.size(); ++i) {
                all += content.nameOf(static_cast<int>(i));
            }
        }
        if (const QString omitted = chartOmissionText(content, chart()->locale()); !omitted.isEmpty()) {
            all += omitted;
        }
        return all;
    }

    /// Made anew only when another text is painted, so that a reader's place in the chart stays.
    const std::vector<QAccessible::Id> &texts() const
    {
        const QStringList wanted = paintedTexts();
        if (wanted != m_painted) {
            forget();
            m_painted = wanted;
            for (const QString &text : wanted) {
                m_texts.push_back(QAccessible::registerAccessibleInterface(new PaintedText(chart(), text)));
            }
        }
        return m_texts;
    }

    void forget() const
    {
        for (const QAccessible::Id id : m_texts) {
            QAccessible::deleteAccessibleInterface(id);
        }
        m_texts.clear();
    }

    mutable QStringList m_painted;
    mutable std::vector<QAccessible::Id> m_texts;
};

QAccessibleInterface *makeAccessible(const QString &, QObject *object)
{
    auto *chart = qobject_cast<LineChart *>(object);
    return chart != nullptr ? new ChartAccessible(chart) : nullptr;
}

} // namespace

void installChartAccessibility()
{
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
}

void tellDescriptionChanged(LineChart *chart)
{
    QAccessibleEvent event(chart, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
}

} // namespace zorel::ui::kit
