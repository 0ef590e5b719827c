#pragma once

class QPalette;
class QString;
class QTextDocument;

namespace zorel::ui::kit {

/// Replaces what stands in `document`. Without HTML and images; links are shown as their text and lead
/// nowhere.
void setMarkdown(QTextDocument &document, const QString &markdown);

/// Gives Markdown in `document` the fonts and spaces of the kit and the colours of `palette`; anew after
/// either has changed.
void styleMarkdown(QTextDocument &document, const QPalette &palette);

} // namespace zorel::ui::kit
