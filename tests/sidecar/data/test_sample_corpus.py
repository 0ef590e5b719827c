"""The script that gives a newcomer something to train on."""

import subprocess
import sys
from pathlib import Path

import pytest

from src.data import prepare

SCRIPT = prepare.SCRIPTS_ROOT / "sample_corpus"


def run(folder):
    return subprocess.run([sys.executable, SCRIPT, folder], capture_output=True, text=True)


@pytest.fixture(scope="module")
def filled(tmp_path_factory):
    folder = tmp_path_factory.mktemp("sample") / "Training Data"
    finished = run(folder)
    assert finished.returncode == 0
    assert "Added a sample corpus" in finished.stdout
    return folder


def read_all(folder):
    return {path.name: path.read_bytes() for path in sorted(folder.rglob("*")) if path.is_file()}


def test_the_corpus_is_one_subfolder_of_markdown_and_says_where_it_comes_from(filled):
    assert [path.name for path in filled.iterdir()] == ["Python documentation"]
    texts = read_all(filled)
    assert "license" in texts.pop("SOURCE").decode()
    assert all(name.endswith(".md") for name in texts)
    assert 500_000 < sum(map(len, texts.values())) < 3_500_000
    assert b">>>" not in texts["argparse.md"]
    assert texts["argparse.md"].startswith(b"# argparse\n\nCommand-line parsing library\n")


def test_the_corpus_is_the_same_every_time(filled, tmp_path):
    run(tmp_path / "again")
    assert read_all(tmp_path / "again") == read_all(filled)


def test_a_second_run_changes_nothing(filled):
    before = read_all(filled)
    finished = run(filled)
    assert finished.returncode == 0
    assert "nothing added" in finished.stdout
    assert read_all(filled) == before


@pytest.mark.parametrize("name", ["mine.txt", "a/b/c.JSONL"])
def test_existing_training_text_is_left_alone(tmp_path, name):
    path = Path(tmp_path, name)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("mine")
    assert run(tmp_path).returncode == 0
    assert list(read_all(tmp_path)) == [path.name]


def test_the_corpus_can_be_prepared_without_a_warning(filled, prepare):
    prepared = prepare(data_root=filled)
    assert prepared.warnings == []
    assert prepared.result.documents > 100


def test_unusable_folder_and_wrong_usage(tmp_path):
    (tmp_path / "file").write_text("")
    assert run(tmp_path / "file").returncode == 1
    assert subprocess.run([sys.executable, SCRIPT], capture_output=True).returncode == 2
