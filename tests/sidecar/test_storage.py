"""Folders that appear whole or not at all."""

from __future__ import annotations

import pytest

from src.storage import folder_written_aside, publish, remove_leftovers


def runs_as_the_application_counts_them(library):
    return [entry.name for entry in library.iterdir() if (entry / "manifest.json").is_file()]


def test_a_half_written_run_is_in_no_folder_in_which_a_manifest_is_looked_for(tmp_path):
    with folder_written_aside(tmp_path, "run") as aside:
        (aside / "manifest.json").write_text("{}")
        assert runs_as_the_application_counts_them(tmp_path) == []
        publish(aside, tmp_path / "run")
    assert runs_as_the_application_counts_them(tmp_path) == ["run"]
    assert [entry.name for entry in tmp_path.iterdir()] == ["run"]


def test_what_is_not_published_is_removed(tmp_path):
    with folder_written_aside(tmp_path, "run") as aside:
        (aside / "manifest.json").write_text("{}")
    assert list(tmp_path.iterdir()) == []


@pytest.mark.parametrize("kind", ["folder", "file", "dangling link"])
def test_a_name_that_is_taken_is_left_as_it_is(tmp_path, kind):
    target = tmp_path / "run"
    if kind == "folder":
        target.mkdir()
    elif kind == "file":
        target.write_text("mine")
    else:
        target.symlink_to(tmp_path / "nowhere")
    with folder_written_aside(tmp_path, "run") as aside:
        (aside / "new").write_text("new")
        with pytest.raises(FileExistsError):
            publish(aside, target)
        publish(aside, tmp_path / "run-2")
    assert not (target / "new").exists()
    assert (tmp_path / "run-2" / "new").read_text() == "new"


def test_a_name_taken_at_the_last_moment_by_another_process_counts_as_taken(tmp_path, monkeypatch):
    (tmp_path / "run").mkdir()
    (tmp_path / "run" / "theirs").write_text("theirs")
    monkeypatch.setattr("os.path.lexists", lambda path: False)
    with folder_written_aside(tmp_path, "run") as aside, pytest.raises(FileExistsError):
        publish(aside, tmp_path / "run")


def test_only_what_dead_processes_left_is_removed(tmp_path):
    for name in (".run.999999999.partial", ".run.1.partial", ".run.partial", "run.999999999.partial"):
        (tmp_path / name).mkdir()
    remove_leftovers(tmp_path)
    kept = sorted(entry.name for entry in tmp_path.iterdir())
    assert kept == [".run.1.partial", ".run.partial", "run.999999999.partial"]
