#include "app/folders/LibraryReadme.h"

#include <QDir>
#include <QFile>

namespace zorel::app::folders {

QString libraryReadmeText()
{
    return QStringLiteral(R"(# Zorel Library

This folder is automatically managed by the **Zorel** app.

## Training Data
Drop pretraining and fine-tuning corpora here. Each corpus should
live in its own subfolder. The app's data-prep stage will index
everything inside this directory automatically.

## Finished models
Every completed training run is archived into its own dated subfolder
here. The folder name is the date and time the run completed, e.g.
`2026-06-01_21-44-12/`. Each archive contains:
- the final weights (`.safetensors`)
- the tokenizer (`tokenizer.json`)
- the run config (`config.json`)
- a `manifest.json` summary (loss, steps, tokens/sec, etc.)

You can move, rename, or copy these archives anywhere — they're
self-contained and not referenced by the trainer once finished.)");
}

void installLibraryReadme(const QString &libraryRoot)
{
    QDir().mkpath(libraryRoot);
    QDir().mkpath(libraryRoot + QLatin1String("/Training Data"));
    QDir().mkpath(libraryRoot + QLatin1String("/Finished models"));

    QFile readme(libraryRoot + QLatin1String("/README.md"));
    if (readme.open(QFile::WriteOnly | QFile::NewOnly)) {
        readme.write(libraryReadmeText().toUtf8());
    }
}

} // namespace zorel::app::folders
