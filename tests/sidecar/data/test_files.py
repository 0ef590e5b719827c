"""Which files are read, and what is said about those that are not."""

import errno
import os
import socket

import pytest
from invented_text import prose

from src.data import PreparationError, files

TEXT = prose(8000)


def test_finds_all_kinds_in_all_folders(write, prepare):
    write("loose.txt", prose(3000, 1))
    write("books/one.text", prose(3000, 2))
    write("books/deep/er/two.MD", prose(3000, 3))
    write("web/three.markdown", prose(3000, 4))
    write("web/four.jsonl", '{"text": "' + prose(3000, 5) + '"}\n')
    write("web/five.ndjson", '{"text": "' + prose(3000, 6) + '"}')
    prepared = prepare()
    assert prepared.result.corpora == ["Training Data", "books", "web"]
    assert prepared.result.documents == 6
    assert prepared.warnings == []


@pytest.mark.parametrize(
    ("name", "content", "reason"),
    [
        ("empty.txt", b"", "it is empty"),
        ("blank.md", b" \n\t\r\n", "it holds only white space"),
        ("mark.txt", b"\xef\xbb\xbf", "it holds only white space"),
        ("binary.txt", b"abc\0def" * 1000, "it is not text (it contains NUL bytes)"),
        ("late.txt", b"a" * 3_000_000 + b"\0", "it is not text (it contains NUL bytes)"),
        ("binary.jsonl", b"\0\1\2\3", "it is not text (it contains NUL bytes)"),
        ("wide.txt", "no mark".encode("utf-16-le"), "it is not text (it contains NUL bytes)"),
        ("photo.jpg", b"\xff\xd8\xff", "it is not a .txt, .md or .jsonl file"),
    ],
)
def test_unusable_file_is_named_and_skipped(write, prepare, name, content, reason):
    write("good.txt", TEXT)
    write(f"corpus/{name}", content)
    prepared = prepare()
    assert prepared.warnings == [f"Skipped corpus/{name}: {reason}"]
    assert prepared.result.documents == len(list(documents_of(TEXT)))


def documents_of(text):
    from src.data.documents import section_length, sections

    return sections([text], section_length(len(text)))


def test_hidden_files_and_the_provenance_file_are_passed_over_silently(write, prepare):
    write("a/good.txt", TEXT)
    write("a/SOURCE", "where it comes from")
    write(".talvex-access-probe", "x")
    write(".git/notes.txt", TEXT + "hidden")
    prepared = prepare()
    assert prepared.warnings == []
    assert "hidden" not in prepared.text()


def test_fifo_socket_and_device_do_not_block(write, data_root, prepare):
    write("good.txt", TEXT)
    os.mkfifo(data_root / "pipe.txt")
    os.symlink("/dev/zero", data_root / "zero.txt")
    here = os.getcwd()
    with socket.socket(socket.AF_UNIX) as listener:
        os.chdir(data_root)
        try:
            listener.bind("socket.txt")
        finally:
            os.chdir(here)
    prepared = prepare()
    assert prepared.warnings == [
        f"Skipped {name}.txt: it is not an ordinary file" for name in ("pipe", "socket", "zero")
    ]


def test_file_replaced_by_a_fifo_after_listing_does_not_block(write):
    path = write("was.txt", TEXT)
    path.unlink()
    os.mkfifo(path)
    with pytest.raises(OSError, match="no longer an ordinary file"):
        files.open_regular(str(path))


def test_link_loops_end_and_dangling_links_are_named(write, data_root, prepare):
    write("a/good.txt", TEXT)
    os.symlink("..", data_root / "a" / "up")
    os.symlink("self", data_root / "self")
    os.symlink("gone", data_root / "dangling.txt")
    prepared = prepare()
    assert [line.split(":")[0] for line in prepared.warnings] == ["Skipped dangling.txt", "Skipped self"]
    assert prepared.text().count(TEXT[:200]) == 1


def test_linked_folder_is_read(tmp_path, data_root, prepare):
    (tmp_path / "elsewhere").mkdir()
    (tmp_path / "elsewhere" / "text.txt").write_text(TEXT)
    os.symlink(tmp_path / "elsewhere", data_root / "linked")
    assert prepare().result.corpora == ["linked"]


def test_the_guess_of_the_size_counts_what_will_be_read(tmp_path, write, data_root):
    (tmp_path / "elsewhere").mkdir()
    (tmp_path / "elsewhere" / "text.txt").write_text("x" * 1000)
    os.symlink(tmp_path / "elsewhere", data_root / "linked")
    os.symlink("..", data_root / "linked" / "loop")
    write("a/one.md", "x" * 100)
    write("a/.hidden.txt", "x" * 10)
    write("a/photo.jpg", "x")
    os.mkfifo(data_root / "pipe.txt")
    assert files.corpus_bytes(data_root) == 1100
    assert files.corpus_bytes(data_root / "gone") == 0


def test_unreadable_file_and_folder_are_named(write, prepare, monkeypatch):
    write("good.txt", TEXT)
    write("locked.txt", TEXT + "locked")
    write("closed/inside.txt", TEXT + "closed")
    real_open, real_listdir = os.open, os.listdir

    def open_or_refuse(path, *rest, **named):
        if str(path).endswith("locked.txt"):
            raise PermissionError(errno.EACCES, "Permission denied")
        return real_open(path, *rest, **named)

    def list_or_refuse(path):
        if str(path).endswith("closed"):
            raise PermissionError(errno.EACCES, "Permission denied")
        return real_listdir(path)

    monkeypatch.setattr(os, "open", open_or_refuse)
    monkeypatch.setattr(os, "listdir", list_or_refuse)
    prepared = prepare()
    assert prepared.warnings == [
        "Skipped closed: it could not be read: Permission denied",
        "Skipped locked.txt: it could not be read: Permission denied",
    ]


@pytest.mark.parametrize(
    ("encoding", "warning"),
    [
        ("utf-8", None),
        ("utf-8-sig", None),
        ("utf-16", None),
        ("utf-32", None),
        ("cp1252", "letter.txt is not UTF-8; it is read as Windows-1252"),
    ],
)
def test_encodings(write, prepare, encoding, warning):
    text = "Où est la crème brûlée ? “Là” — 5 € " + TEXT
    write("letter.txt", text.encode(encoding))
    prepared = prepare()
    assert prepared.text() == text
    assert prepared.warnings == ([warning] if warning else [])


def test_bytes_undefined_in_windows_1252_do_not_stop_it(write, prepare):
    write("odd.txt", b"\x81\x8d\xe9 " + TEXT.encode())
    assert prepare().text().startswith("\x81\x8dé ")


def test_a_damaged_byte_does_not_turn_utf8_into_windows_1252(write, prepare):
    write("mostly.txt", ("日本語のテキスト" * 50).encode() + b"\xff" + TEXT.encode())
    prepared = prepare()
    assert prepared.warnings == ["mostly.txt contains bytes that are not UTF-8; they are replaced"]
    assert "日本語" in prepared.text()
    assert "\ufffd" in prepared.text()


def test_many_odd_files_give_few_lines_and_a_summary(write, prepare):
    write("good.txt", TEXT)
    for number in range(60):
        write(f"pictures/{number:02}.png", b"x")
    warnings = prepare().warnings
    assert warnings[0] == "Skipped pictures/00.png: it is not a .txt, .md or .jsonl file"
    assert warnings[5:] == ["55 more files are not .txt, .md or .jsonl files"]


def test_strange_names_stay_on_one_line_of_valid_text(data_root, prepare):
    (data_root / "good.txt").write_text(TEXT)
    with open(os.fsencode(data_root) + b"/bad\xff\nname.txt", "wb"):
        pass
    warnings = prepare().warnings
    assert warnings == ["Skipped bad\ufffd\ufffdname.txt: it is empty"]


@pytest.mark.parametrize("content", [None, "", "x", "a few words only"])
def test_no_or_too_little_training_text_says_what_to_put_where(write, prepare, data_root, content):
    if content is not None:
        write("a.txt", content)
    with pytest.raises(PreparationError) as failure:
        prepare()
    assert str(data_root) in str(failure.value)
    assert ".txt, .md or .jsonl" in str(failure.value)


def test_missing_folder_is_named(prepare, data_root):
    with pytest.raises(PreparationError, match=r"gone does not exist"):
        prepare(data_root=data_root / "gone")


def test_file_in_place_of_the_folder_is_named(prepare, write):
    path = write("file.txt", TEXT)
    with pytest.raises(PreparationError, match=r"file\.txt does not exist"):
        prepare(data_root=path)
