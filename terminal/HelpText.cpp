#include "terminal/HelpText.h"

namespace zorel::terminal {

QString helpText()
{
    return QStringLiteral(R"(Usage: zorel-train [OPTIONS]
       zorel-train list [TEXT]
       zorel-train show RUN
       zorel-train compare BASELINE CANDIDATE

Trains a language model on your own texts, in this terminal. Put text files
(.txt, .md, .jsonl) into a folder, then for example:

  zorel-train --training-data ~/my-texts --steps 500

It prepares the texts, trains, shows how far it is, and at the end says where
the finished model lies. Ctrl-C stops and saves a checkpoint; --resume goes on
from it. A second Ctrl-C stops at once.

The run
  --steps N               train N steps, 1 to 10000000 (default: the training
                          scripts' own)
  --resume                go on from the latest checkpoint
  --family TYPE           text, image or multimodal
  --capability MODE       pretrain (from scratch), finetune or lora; text allows
                          all three, image the first two, multimodal pretrain.
                          The scripts that come with the program train text
                          from scratch; for the rest bring your own

Folders
  --training-data DIR     your texts or images; must exist
  --finished-models DIR   finished models are put here
  --model-root DIR        checkpoints, tokenizer and prepared data

Finished models
  list [TEXT]             list the finished runs, the newest first; with TEXT
                          those that have it in name, version or folder
  show RUN                a run's figures, loss curve and neuron snapshot
  compare BASELINE CANDIDATE
                          what differs between two runs

  A run is named by its folder, by the beginning of the folder's name, by a path
  or as “latest”. --finished-models says where to look, and --json prints one
  JSON object a line, for other programs.

What the model is called
  --model-name NAME       (default: MyModel)
  --model-version TEXT    (default: 1.0.0)
  --author TEXT
  --license TEXT          (default: MIT)
  --description TEXT

  These options, the folders, --family and --capability hold for this run only;
  without them the settings of Talvex LLM Trainer apply.
  --save                  keep the given ones in those settings

Output
  --log                   show the activity log as well
  --json                  print the training scripts' events and nothing else on
                          standard output, one JSON object a line
  --help, -h              show this text
  --version               show the version

  On a terminal the progress is drawn in place; elsewhere it is written as a
  line now and then. Errors go to standard error. When nobody reads the output
  any more (as with “| head -1”), the run stops as with Ctrl-C.

Exit status
  0  the model is archived, or you stopped the run
  1  the training failed, there is no such run, or the output cannot be written
  2  wrong usage
  3  no training scripts, no Python, or no MLX

Where things are, unless you say otherwise
  ~/Documents/Zorel/Training Data             your texts; subfolders are welcome
  ~/Documents/Zorel/Finished models           one folder for each finished run
  ~/Library/Application Support/Zorel/Model   checkpoints and prepared data

Environment
  ZOREL_SCRIPTS_ROOT   folder of the training scripts (with src/app_backend.py)
  NO_COLOR             set: no colours
  COLUMNS              width, where the terminal does not tell

Python with MLX is looked for in ~/Library/Python/3.12 (down to 3.9), /usr/bin,
/usr/local/bin and /opt/homebrew/bin. “./run” in the source folder sets one
up.
)");
}

QString versionText()
{
    return QStringLiteral("zorel-train %1 (Talvex LLM Trainer)\n").arg(QStringLiteral(ZOREL_VERSION));
}

} // namespace zorel::terminal
