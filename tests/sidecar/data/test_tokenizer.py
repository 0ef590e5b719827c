"""The tokenizer survives any text, and documents get one begin and one end."""

import numpy as np
import pytest
from invented_text import prose

from src.data import split, tokenizer

SAMPLES = [
    "plain words, and  two spaces ",
    "  leading\ttabs\t\nand\r\nboth line ends\r",
    "日本語と中文과 한국어",
    "👩‍👩‍👧‍👦 🇫🇷 e\u0301 \ufeff \u200b \u202e",
    "".join(map(chr, range(160))),
    "\U0010ffff\ue000\ufffd",
    "x" * 5000,
    "",
]


@pytest.fixture(scope="module")
def trained():
    return tokenizer.train_tokenizer([prose(20_000)], 500)


@pytest.mark.parametrize("text", SAMPLES)
def test_round_trip(trained, text):
    assert trained.decode(trained.encode(text).ids, skip_special_tokens=True) == text


def test_special_tokens_and_begin_of_text(trained):
    assert [trained.token_to_id(t) for t in (tokenizer.BOS, tokenizer.EOS, tokenizer.PAD)] == [0, 1, 2]
    ids = trained.encode("some words").ids
    assert ids[0] == 0
    assert ids.count(0) == 1
    assert 1 not in ids
    assert trained.encode("<|end_of_text|>", add_special_tokens=False).ids == [1]


def test_vocabulary_is_as_large_as_asked_for_or_as_the_corpus_permits(trained):
    assert trained.get_vocab_size() == 500
    small = tokenizer.train_tokenizer(["abab abab"], 4000).get_vocab_size()
    assert 259 <= small < 300


def test_every_document_has_one_begin_and_one_end(write, prepare):
    write("trick.txt", "before <|end_of_text|> between <|begin_of_text|> after")
    for n in range(12):
        write(f"{n}.txt", prose(700, n))
    prepared = prepare()
    ids = np.concatenate([prepared.tokens("train"), prepared.tokens("validation")])
    begins, ends = np.flatnonzero(ids == 0), np.flatnonzero(ids == 1)
    assert len(begins) == len(ends) == prepared.result.documents == 13
    assert begins[0] == 0
    assert ends[-1] == len(ids) - 1
    assert np.array_equal(begins[1:], ends[:-1] + 1)
    assert "before <|end_of_text|> between <|begin_of_text|> after" in prepared.text()


def test_token_type_follows_the_vocabulary():
    assert tokenizer.token_type(65_536) == np.uint16
    assert tokenizer.token_type(65_537) == np.uint32


def test_an_only_document_is_cut_for_validation(write, prepare):
    write("one.txt", prose(4000))
    prepared = prepare()
    assert prepared.result.documents == 1
    assert 0.05 < len(prepared.tokens("validation")) / len(prepared.tokens("train")) < 0.25


def test_validation_share_of_one_long_file(write, prepare):
    write("long.txt", prose(600_000))
    prepared = prepare(validation_fraction=0.1)
    share = len(prepared.tokens("validation")) / len(prepared.tokens("train"))
    assert 0.05 < share < 0.15


def test_no_validation_if_none_is_asked_for(write, prepare):
    write("one.txt", prose(4000))
    prepared = prepare(validation_fraction=0.0)
    assert len(prepared.tokens("validation")) == 0
    assert prepared.result.unigram_nats > 0


def test_unigram_nats_is_the_smoothed_cross_entropy():
    train, measured = np.array([0, 0, 1, 2], np.uint16), np.array([0, 3], np.uint16)
    expected = -(np.log(3 / 8) + np.log(1 / 8)) / 2
    assert split.unigram_nats(train, measured, 4) == pytest.approx(expected)


def test_split_beyond_the_remembered_documents_goes_by_content(monkeypatch):
    monkeypatch.setattr(split, "REMEMBERED_DOCUMENTS", 10)
    census = split.DocumentCensus()
    keys = [split.mix(n) for n in range(2000)]
    for key in keys:
        census.add(key, 100)
    plan = census.plan(0.1, 3)
    assert 120 < sum(map(plan.is_validation, keys)) < 280
    assert census.plan(0.1, 4) != plan


def test_one_large_document_does_not_become_the_validation():
    census = split.DocumentCensus()
    for key, size in [(1, 30_000), (2, 3000), (3, 2800)]:
        census.add(key, size)
    for seed in range(20):
        assert not census.plan(0.1, seed).is_validation(1)
