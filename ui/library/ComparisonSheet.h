#pragma once

#include "library/ModelRunComparison.h"
#include "ui/kit/Colors.h"
#include "ui/kit/Sheet.h"

namespace zorel::ui::kit {
class TextLabel;
}

namespace zorel::ui::library {

/// What changed between two archived runs. Loads their curves and snapshots once, when it is made. Main
/// thread only.
class ComparisonSheet : public kit::Sheet
{
    Q_OBJECT

public:
    ComparisonSheet(const zorel::library::ModelLibraryStore &store,
                    zorel::library::ModelRunComparison comparison, QWidget *parent);

    const zorel::library::ModelRunComparison &comparison() const { return m_comparison; }

    /// The whole comparison, also what is scrolled away, as a picture.
    QImage image() const;
    /// Every figure, as JSON.
    QByteArray figures() const;
    void copyImage();
    /// Writes a picture or the figures, whole or not at all; says in the sheet when that is not possible.
    void saveImage(const QString &path);
    void saveFigures(const QString &path);

private:
    QWidget *makeHeaderButtons();
    QWidget *makeRuns();
    QWidget *makeRun(const QString &role, const zorel::library::ArchivedModelRecord &run);
    QWidget *makeDifferences();
    QWidget *makeCurves();
    void chooseImageFile();
    void chooseFiguresFile();
    void save(const QString &path, const QByteArray &content);
    void say(const QString &outcome, kit::ColorRole tone);

    zorel::library::ModelRunComparison m_comparison;
    zorel::library::ComparisonData m_data;
    QWidget *m_body;
    kit::TextLabel *m_outcome; ///< of the last copy or save
};

} // namespace zorel::ui::library
