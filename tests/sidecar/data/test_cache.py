"""The cache is whole or absent, found again, and never trusted blindly."""

import errno
import json
import os
import resource
import signal
import subprocess
import sys
from pathlib import Path

import pytest
from invented_text import prose

from src.data import PreparationError, cache, pipeline


@pytest.fixture(autouse=True)
def corpus(write):
    for n in range(12):
        write(f"books/{n}.txt", prose(2000, n))


def steps_of(prepared):
    return {detail.split()[0] for _, detail in prepared.progress}


def contents(folder):
    return {p.relative_to(folder): p.read_bytes() for p in Path(folder).rglob("*") if p.is_file()}


def make_settled(data_root):
    """Files whose times lie far enough back to be trusted."""
    for path in data_root.rglob("*"):
        os.utime(path, ns=(10**18, 10**18))


def test_an_unchanged_corpus_is_taken_from_the_cache(prepare):
    first, second = prepare(), prepare()
    assert second.result == first.result
    assert steps_of(first) == {"Reading", "Looking", "Training", "Tokenizing"}
    assert steps_of(second) == {"Reading"}


def test_unchanged_files_are_not_read_again(prepare, data_root, monkeypatch):
    make_settled(data_root)
    monkeypatch.setattr(cache, "SETTLED_NS", 0)
    first = prepare()
    monkeypatch.setattr(pipeline, "inspect", None)
    assert prepare().result == first.result


def test_files_just_written_are_not_remembered(prepare, cache_root):
    prepare()
    assert not (cache_root / cache.HASHES).exists()


def test_an_edit_of_the_same_size_is_noticed(prepare, data_root, monkeypatch):
    monkeypatch.setattr(cache, "SETTLED_NS", 0)
    first = prepare()
    path = data_root / "books" / "3.txt"
    path.write_text(path.read_text().upper())
    assert prepare().result.fingerprint != first.result.fingerprint


def test_same_content_gives_the_same_tokens_whatever_the_listing_and_times(prepare, data_root, cache_root, monkeypatch):
    first = prepare()
    before = contents(first.result.tokens_folder)
    make_settled(data_root)
    listdir = os.listdir
    monkeypatch.setattr(os, "listdir", lambda path: listdir(path)[::-1])
    assert prepare().result.fingerprint == first.result.fingerprint
    os.rename(cache_root, f"{cache_root} aside")
    again = prepare()
    assert again.result == first.result
    assert contents(again.result.tokens_folder) == before


def test_settings_are_part_of_the_key(prepare):
    base = prepare().result
    assert prepare(seed=8).result.tokenizer_folder == base.tokenizer_folder
    others = [prepare(seed=8), prepare(validation_fraction=0.2), prepare(vocab_size=300)]
    assert list(others[0].tokens("validation")) != list(prepare().tokens("validation"))
    assert len({base.fingerprint, *(other.result.fingerprint for other in others)}) == 4


def damage(path, how):
    if how == "removed":
        path.unlink()
    elif how == "truncated":
        os.truncate(path, path.stat().st_size // 2)
    elif how == "grown":
        path.write_bytes(path.read_bytes() + b"\0\0")
    elif how == "zeroed":
        path.write_bytes(bytes(path.stat().st_size))
    else:
        path.write_bytes(b'{"files": [[[')


@pytest.mark.parametrize("how", ["removed", "truncated", "grown", "zeroed", "garbage"])
@pytest.mark.parametrize(
    "name",
    [
        "tokens/train.bin",
        "tokens/validation.bin",
        "tokens/meta.json",
        "tokenizers/tokenizer.json",
        "tokenizers/meta.json",
    ],
)
def test_a_damaged_entry_is_rebuilt(prepare, name, how):
    first = prepare()
    kind, name = name.split("/")
    folder = first.result.tokens_folder if kind == "tokens" else first.result.tokenizer_folder
    before = contents(folder)
    damage(Path(folder) / name, how)
    assert prepare().result == first.result
    assert contents(folder) == before


@pytest.mark.parametrize("stored", ["", "{", "[]", '{"version": 1, "files": {"x": 5}}', '{"version": 0, "files": {}}'])
def test_damaged_file_hashes_are_ignored(prepare, cache_root, stored):
    first = prepare()
    (cache_root / cache.HASHES).write_text(stored)
    assert prepare().result == first.result


def test_damaged_values_in_file_hashes_are_ignored(prepare, cache_root, data_root, monkeypatch):
    monkeypatch.setattr(cache, "SETTLED_NS", 0)
    first = prepare()
    path = cache_root / cache.HASHES
    stored = json.loads(path.read_text())
    for known in stored["files"].values():
        known[2] = 5
    path.write_text(json.dumps(stored))
    assert prepare().result == first.result


def test_a_large_file_is_checked_at_both_ends(tmp_path, monkeypatch):
    monkeypatch.setattr(cache, "SAMPLE_BLOCK", 16)
    path = tmp_path / "tokens"
    content = bytearray(os.urandom(100_000))
    path.write_bytes(content)
    prints = [cache.file_print(path)]
    for position in (0, -1):
        content[position] ^= 1
        path.write_bytes(content)
        prints.append(cache.file_print(path))
    assert len({entry["sha256"] for entry in prints}) == 3


def test_the_oldest_entries_go(prepare, cache_root):
    folders = [Path(prepare(seed=seed).result.tokens_folder) for seed in range(cache.ENTRIES_KEPT)]
    for age, folder in enumerate(folders):
        os.utime(folder, ns=(10**18 + age, 10**18 + age))
    prepare(seed=0)
    prepare(seed=99)
    assert [folder.exists() for folder in folders] == [True, False, True, True]
    assert len(list((cache_root / "tokens").iterdir())) == cache.ENTRIES_KEPT


def test_a_full_disk_leaves_nothing_half_made(prepare, cache_root, monkeypatch):
    def full(path):
        raise OSError(errno.ENOSPC, "No space left on device")

    with monkeypatch.context() as patch:
        patch.setattr(cache, "sync", full)
        with pytest.raises(PreparationError, match="not enough free space"):
            prepare()
    assert not (cache_root / "tokenizers").exists()
    assert list((cache_root / cache.TEMPORARY).iterdir()) == []
    prepare()


LIMITED = """
import sys
from pathlib import Path
from src.data import PreparationError, prepare_corpus
try:
    prepare_corpus(Path(sys.argv[1]), Path(sys.argv[2]), vocab_size=300, validation_fraction=0.1, seed=1,
                   report=lambda p: None, warn=print, cancelled=lambda: False)
except PreparationError as error:
    print(error)
"""


def run_limited(data_root, cache_root, file_size):
    return subprocess.run(
        [sys.executable, "-B", "-c", LIMITED, data_root, cache_root],
        cwd=Path(pipeline.__file__).parents[2],
        preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (file_size, file_size)),
        capture_output=True,
        text=True,
        check=True,
    ).stdout


@pytest.mark.parametrize("file_size", [100, 12_000])
def test_a_write_cut_short_is_a_clear_error(data_root, cache_root, file_size):
    said = run_limited(data_root, cache_root, file_size)
    assert said == f"The prepared training data could not be written to {cache_root}: File too large.\n"
    assert not list(cache_root.glob("tokens/*"))
    assert not list(cache_root.glob(f"{cache.TEMPORARY}/*"))


def test_a_cache_folder_that_cannot_be_made_is_named(prepare, cache_root):
    cache_root.parent.mkdir()
    cache_root.write_text("in the way")
    with pytest.raises(PreparationError, match=f"could not be written to {cache_root}"):
        prepare()


def test_a_lock_that_cannot_be_opened_is_a_clear_error(prepare, cache_root):
    (cache_root / "lock").mkdir(parents=True)
    with pytest.raises(PreparationError, match=f"could not be written to {cache_root}: Is a directory"):
        prepare()


@pytest.mark.parametrize("kind", ["tokens", "tokenizers"])
def test_an_entry_that_says_too_little_of_itself_is_rebuilt(prepare, cache_root, kind):
    first = prepare()
    (meta,) = cache_root.glob(f"{kind}/*/meta.json")
    meta.write_text('{"files": {}}')
    assert prepare().result == first.result


def test_leftovers_of_a_killed_preparation_go(prepare, cache_root):
    leftover = cache_root / cache.TEMPORARY / "killed" / "tokens"
    leftover.mkdir(parents=True)
    (leftover / "train.bin").write_bytes(b"half")
    prepare()
    assert list((cache_root / cache.TEMPORARY).iterdir()) == []


HOLD_LOCK = """
import fcntl, sys
lock = open(sys.argv[1], "ab")
fcntl.flock(lock, fcntl.LOCK_EX)
print(flush=True)
sys.stdin.read()
"""


def test_a_second_preparation_waits_for_the_first(cache_root):
    cache_root.mkdir(parents=True)
    holder = subprocess.Popen(
        [sys.executable, "-c", HOLD_LOCK, cache_root / "lock"],
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
    )
    holder.stdout.readline()
    waited = []

    def waiting():
        waited.append(True)
        holder.send_signal(signal.SIGKILL)
        holder.wait()

    with holder, cache.exclusive(cache_root, waiting):
        assert waited == [True]
