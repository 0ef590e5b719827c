"""Reading one line into a command, and cutting bytes into lines."""

from __future__ import annotations

import json
from pathlib import Path

import pytest

from src.wire.commands import (
    CommandError,
    Quit,
    SetMaxSteps,
    SetModelIdentity,
    SetPaths,
    SetTrainingProfile,
    Start,
    Stop,
    TogglePause,
    TrainingProfile,
    parse_command,
)
from src.wire.inbox import BadLine, LineSplitter

PATHS = {
    "cmd": "set_paths",
    "training_data": "/a",
    "finished_models": "/b",
    "model_root": "/c",
}


def parse(**values):
    return parse_command(json.dumps(values).encode())


def test_every_command_is_read():
    assert parse(**PATHS) == SetPaths(Path("/a"), Path("/b"), Path("/c"))
    assert parse(cmd="set_model_identity", identity={"name": "n"}) == SetModelIdentity({"name": "n"})
    assert parse(
        cmd="set_training_profile",
        profile={"model_family": "multimodal", "training_capability": "lora"},
    ) == SetTrainingProfile(TrainingProfile("multimodal", "lora"))
    assert parse(cmd="set_max_steps", n=5) == SetMaxSteps(5)
    assert parse(cmd="toggle_pause") == TogglePause()
    assert parse(cmd="stop") == Stop()
    assert parse(cmd="quit") == Quit()
    assert parse(
        cmd="start",
        max_steps=200,
        resume=True,
        model_identity={},
        model_family="text_language",
        training_capability="pretrain",
    ) == Start(200, True, {}, "text_language", "pretrain")


def test_start_needs_no_key_and_an_unknown_key_is_ignored():
    assert parse(cmd="start", colour="blue") == Start(None, False, None, None, None)


def test_a_whole_number_may_be_written_as_a_float():
    assert parse_command(b'{"cmd":"set_max_steps","n":5.0}') == SetMaxSteps(5)


@pytest.mark.parametrize(
    ("line", "hint"),
    [
        (b"", "not valid JSON"),
        (b"not json", "not json"),
        (b"[1]", "must be a JSON object"),
        (b"{}", "“cmd”"),
        (b'{"cmd":5}', "“cmd”"),
        (b'{"cmd":"dance"}', "Unknown command “dance”"),
        (b'{"cmd":"set_max_steps"}', "it is missing"),
        (b'{"cmd":"set_max_steps","n":0}', "from 1 to 10000000"),
        (b'{"cmd":"set_max_steps","n":10000001}', "from 1 to 10000000"),
        (b'{"cmd":"set_max_steps","n":5.5}', "5.5"),
        (b'{"cmd":"set_max_steps","n":true}', "true"),
        (b'{"cmd":"set_max_steps","n":"5"}', "an integer"),
        (b'{"cmd":"set_max_steps","n":NaN}', "not valid JSON"),
        (b'{"cmd":"set_max_steps","n":1e999}', "an integer"),
        (b'{"cmd":"start","resume":"yes"}', "true or false"),
        (b'{"cmd":"start","max_steps":-1}', "an integer"),
        (b'{"cmd":"start","model_family":"vision"}', "text_language"),
        (b'{"cmd":"start","training_capability":[]}', "pretrain"),
        (b'{"cmd":"start","model_identity":[]}', "an object"),
        (b'{"cmd":"set_model_identity"}', "“identity”"),
        (b'{"cmd":"set_model_identity","identity":{"name":5}}', "“name”"),
        (b'{"cmd":"set_model_identity","identity":{"name":"\\ud800"}}', "“name”"),
        (b'{"cmd":"set_training_profile","profile":{}}', "“model_family”"),
        (b'{"cmd":"set_paths"}', "“training_data”"),
        (
            b'{"cmd":"set_paths","training_data":"a","finished_models":"/b","model_root":"/c"}',
            "absolute",
        ),
        (
            b'{"cmd":"set_paths","training_data":"/\\u0000","finished_models":"/b","model_root":"/c"}',
            "absolute",
        ),
        (b'\xff\xfe{"cmd":"stop"}', "UTF-8"),
        (b'\xef\xbb\xbf{"cmd":"stop"}', "not valid JSON"),
        (b'{"cmd":' + b"[" * 100_000, "not valid JSON"),
    ],
)
def test_a_bad_line_gets_a_sentence_that_says_what_is_wrong(line, hint):
    with pytest.raises(CommandError) as caught:
        parse_command(line)
    message = str(caught.value)
    assert hint in message
    assert len(message) < 600
    message.encode("utf-8")


def test_lines_come_out_whole_however_the_bytes_are_cut():
    data = b'{"cmd":"stop"}\n\n\xc3\xa9\r\n last'
    for cut in range(len(data)):
        splitter = LineSplitter()
        assert splitter.feed(data[:cut]) + splitter.feed(data[cut:]) == [
            b'{"cmd":"stop"}',
            b"",
            b"\xc3\xa9\r",
        ]


def test_a_line_that_is_too_long_is_one_bad_line_and_reading_resumes_after_it():
    splitter = LineSplitter(maximum=10)
    lines = [line for _ in range(5) for line in splitter.feed(b"xxxxxxxx")] + splitter.feed(b"x\n0123456789\nok\n")
    assert [line for line in lines if isinstance(line, bytes)] == [b"0123456789", b"ok"]
    assert [type(line) for line in lines] == [BadLine, bytes, bytes]
