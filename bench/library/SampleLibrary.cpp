#include "bench/library/SampleLibrary.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>

namespace zorel::bench {

namespace {

/// %1 to %4: name, version, month and day, step.
constexpr const char *manifestFormat = R"({
  "model_identity": {
    "name": "%s",
    "version": "%s",
    "author": "ada@example.org",
    "license": "MIT"
  },
  "archived_at": "2026-%s:12.589Z",
  "step": %d,
  "max_steps": 50000,
  "final_loss": 2.3456789012345,
  "val_loss": 2.5678901234567,
  "elapsed_seconds": 12345.678,
  "tokens_per_sec": 15432.1,
  "model_family": "text_language",
  "training_capability": "pretrain",
  "parameters": 12345678,
  "tokens_seen": 104857600,
  "tokens_per_step": 8192,
  "skipped_steps": 0,
  "model": {
    "vocab_size": 8192,
    "hidden_size": 384,
    "layers": 8,
    "heads": 6,
    "key_value_heads": 6,
    "feed_forward_size": 1024,
    "context": 512,
    "tie_embeddings": true,
    "rope_base": 10000.0,
    "norm_epsilon": 1e-05
  },
  "dataset": {
    "corpora": [
      "poems",
      "letters"
    ],
    "documents": 1234,
    "bytes": 12345678,
    "train_tokens": 3456789,
    "validation_tokens": 34567,
    "unigram_loss": 6.789012345,
    "fingerprint": "0123456789abcdef0123456789abcdef"
  },
  "settings": {
    "batch_size": 16,
    "learning_rate": 0.0003,
    "warmup_steps": 100,
    "weight_decay": 0.1,
    "gradient_clip": 1.0,
    "validation_every": null,
    "checkpoint_every": null,
    "seed": 42
  },
  "scripts_version": "1.0"
}
)";

std::string manifestOf(int run)
{
    char name[32];
    char version[32];
    char moment[32];
    std::snprintf(name, sizeof name, "poet-%d", run % 200);
    std::snprintf(version, sizeof version, "1.%d.0", run % 7);
    std::snprintf(moment, sizeof moment, "%02d-%02dT%02d:%02d", 1 + run % 12, 1 + run % 28, run % 24,
                  run % 60);
    char text[4096];
    const int length = std::snprintf(text, sizeof text, manifestFormat, name, version, moment, run);
    return std::string(text, static_cast<std::size_t>(length));
}

void write(const std::filesystem::path &path, const std::string &text)
{
    std::ofstream file(path, std::ios::binary);
    file << text;
    if (!file.flush()) {
        std::perror(path.c_str());
        std::exit(1);
    }
}

} // namespace

SampleLibrary::SampleLibrary(int runs)
{
    std::string pattern = (std::filesystem::temp_directory_path() / "zorel-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        std::perror(pattern.c_str());
        std::exit(1);
    }
    m_path = pattern;
    for (int run = 0; run < runs; ++run) {
        char name[64];
        std::snprintf(name, sizeof name, "2026-%02d-%02d_%02d-%02d-%06d", 1 + run % 12, 1 + run % 28,
                      run % 24, run % 60, run);
        const std::filesystem::path folder = m_path / name;
        std::filesystem::create_directory(folder);
        write(folder / "manifest.json", manifestOf(run));
        write(folder / "loss_curve.jsonl", "{\"step\": 1, \"loss\": 2.5}\n");
        write(folder / "neuron_snapshot.json", "{}\n");
    }
}

SampleLibrary::~SampleLibrary()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string sampleCurve(int points)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> loss(1, 11);
    std::string text;
    for (int step = 1; step <= points; ++step) {
        char line[80];
        const int length = std::snprintf(line, sizeof line, "{\"step\": %d, \"loss\": %.16g}\n", step,
                                         static_cast<double>(loss(random)));
        text.append(line, static_cast<std::size_t>(length));
    }
    return text;
}

} // namespace zorel::bench
