"""Files as documents: long ones cut, JSON lines taken apart, all in bounded memory."""

import json
import os
import subprocess
import sys
from pathlib import Path

import pytest
from invented_text import prose

from src.data import PreparationError, documents, files, pipeline


def test_sections_joined_are_the_text_however_it_arrives():
    text = prose(50_000) + "\n\n" + prose(40_000, 1, "\n") + "x" * 30_000
    whole = list(documents.sections([text], 4096))
    assert "".join(whole) == text
    assert max(map(len, whole)) <= 4096 * 3 // 2
    assert min(map(len, whole)) >= 2048
    for step in (1000, 4097, 65_536):
        pieces = [text[at : at + step] for at in range(0, len(text), step)]
        assert list(documents.sections(pieces, 4096)) == whole


@pytest.mark.parametrize("separator", ["\n\n", "\n", ". ", " "])
def test_sections_end_at_sensible_boundaries(separator):
    text = prose(20_000, separator=separator)
    assert all(section.endswith(separator) for section in list(documents.sections([text], 4096))[:-1])


def test_bad_json_lines_are_named_counted_and_skipped(write, prepare):
    good = [json.dumps({"text": prose(400, n)}) for n in range(20)]
    bad = ["{", "[1]", '{"text": 5}', '{"content": "x"}', "null", "[" * 100_000, "\ufeff{}", '{"text": "\0"}']
    write("c/lines.jsonl", "\r\n".join([*good[:10], "", *bad, *good[10:]]))
    prepared = prepare()
    assert prepared.result.documents == 20
    assert prepared.warnings == [
        "Skipped line 12 of c/lines.jsonl: it is not valid JSON",
        "8 lines of c/lines.jsonl could not be used",
    ]
    again = prepare()
    assert again.warnings == ["8 lines of c/lines.jsonl could not be used"]


def test_bad_lines_are_counted_once_when_the_sample_falls_on_no_document(write, prepare, monkeypatch):
    monkeypatch.setattr(pipeline, "TOKENIZER_SAMPLE_BYTES", 0)
    write("c/lines.jsonl", "{\n" * 3 + json.dumps({"text": prose(4000)}))
    said = "3 lines of c/lines.jsonl could not be used"
    assert prepare().warnings[-1] == said
    assert prepare().warnings == [said]


def test_only_bad_json_lines_are_too_little(write, prepare):
    write("c/lines.jsonl", "{}\n" * 10)
    with pytest.raises(PreparationError, match="too little"):
        prepare()


def test_surrogates_and_control_characters_in_json(write, prepare):
    write("x.jsonl", '{"text": "a\\ud83d\\ude00b\\ud800c\\u0000d\\r\\ne"}\n' + json.dumps({"text": prose(5000)}))
    assert "a😀b\ufffdc\0d\ne" in prepare().text()


def test_a_json_line_too_long_to_hold_is_skipped(monkeypatch):
    monkeypatch.setattr(documents, "LONGEST_JSON_LINE", 100)
    chunks = ["a" * 60, "b" * 60, "c" * 60 + "\nshort", "er\n" + "d" * 100, "\n" + "e" * 101]
    assert list(documents.lines(chunks)) == [None, "shorter", "d" * 100, None]


def test_copies_are_counted_once_and_never_on_both_sides(write, prepare):
    originals = [prose(500, n) for n in range(40)]
    for copy in range(3):
        for n, text in enumerate(originals):
            write(f"{copy}/{n}.txt", text + "\n" * copy)
    prepared = prepare(validation_fraction=0.3)
    assert prepared.result.documents == 40
    train = prepared.tokenizer().decode(list(prepared.tokens("train")))
    validation = prepared.tokenizer().decode(list(prepared.tokens("validation")))
    assert sum(text in train for text in originals) + sum(text in validation for text in originals) == 40
    assert sum(text in validation for text in originals) == pytest.approx(12, abs=2)


def test_windows_line_ends_become_line_feeds(write, prepare):
    write("dos.txt", prose(5000, separator="\r\n"))
    assert "\r" not in prepare().text()


def test_a_file_that_changes_during_the_preparation_is_an_error(write, prepare, monkeypatch):
    path = write("growing.txt", prose(5000))
    inspect = files.inspect

    def grow(*arguments):
        inspection = inspect(*arguments)
        with open(path, "a") as stream:
            stream.write("more")
        return inspection

    monkeypatch.setattr("src.data.pipeline.inspect", grow)
    with pytest.raises(PreparationError, match=r"growing\.txt changed while it was being read"):
        prepare()


MEMORY_SCRIPT = """
import resource, sys
from src.data import pipeline
pipeline.TOKENIZER_SAMPLE_BYTES = 1_000_000
def peak():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * (1 if sys.platform == "darwin" else 1024)
before = peak()
data, cache = sys.argv[1:]
request = pipeline.Request(data, cache, cache + "/temporary/x", 300, 0.1, 1)
result = pipeline.Preparation(request, lambda *step: None, print).run()
print(result.documents, peak() - before)
"""


def test_a_huge_single_line_takes_bounded_memory(data_root, cache_root):
    length = documents.LONGEST_SECTION
    block = "".join(prose(length - 2, n) + ". " for n in range(32))
    with open(data_root / "line.txt", "w") as stream:
        for _ in range(200_000_000 // len(block)):
            stream.write(block)
    finished = subprocess.run(
        [sys.executable, "-c", MEMORY_SCRIPT, data_root, cache_root],
        cwd=Path(documents.__file__).parents[2],
        capture_output=True,
        check=True,
        text=True,
    )
    os.unlink(data_root / "line.txt")
    count, growth = map(int, finished.stdout.split())
    assert count == 32
    assert growth < 120_000_000
