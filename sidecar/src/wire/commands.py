"""Commands as typed records, and the strict reading of one line into one of them."""

from __future__ import annotations

import json
from dataclasses import dataclass
from pathlib import Path

MODEL_FAMILIES = ("text_language", "image_generation", "multimodal")
TRAINING_CAPABILITIES = ("pretrain", "finetune", "lora")
IDENTITY_KEYS = ("name", "version", "author", "description", "license")
MAXIMUM_STEPS = 10_000_000
SHOWN_CHARACTERS = 120


class CommandError(ValueError):
    """A line that is no valid command; the text is a whole sentence for the user."""


@dataclass(frozen=True)
class TrainingProfile:
    model_family: str = "text_language"
    training_capability: str = "pretrain"


@dataclass(frozen=True)
class SetPaths:
    training_data: Path
    finished_models: Path
    model_root: Path


@dataclass(frozen=True)
class SetModelIdentity:
    identity: dict[str, str]


@dataclass(frozen=True)
class SetTrainingProfile:
    profile: TrainingProfile


@dataclass(frozen=True)
class Start:
    """Fields that the line did not carry are None; the session fills in what it knows."""

    max_steps: int | None
    resume: bool
    identity: dict[str, str] | None
    model_family: str | None
    training_capability: str | None


@dataclass(frozen=True)
class SetMaxSteps:
    steps: int


@dataclass(frozen=True)
class TogglePause:
    pass


@dataclass(frozen=True)
class Stop:
    pass


@dataclass(frozen=True)
class Quit:
    pass


Command = SetPaths | SetModelIdentity | SetTrainingProfile | Start | SetMaxSteps | TogglePause | Stop | Quit


def parse_command(line: bytes) -> Command:
    """Reads one line without its line feed; raises CommandError with a sentence that says what is wrong."""
    try:
        text = line.decode("utf-8")
    except UnicodeDecodeError:
        raise CommandError("A command line is not valid UTF-8 and was ignored.") from None
    try:
        value = json.loads(text, parse_constant=_refuse_constant)
    except (ValueError, RecursionError):
        raise CommandError(f"A command line is not valid JSON and was ignored: {_shown(text)}") from None
    if not isinstance(value, dict):
        raise CommandError(f"A command must be a JSON object: {_shown(text)}")
    fields = _Fields(value)
    name = fields.text("cmd", of="A command")
    reader = _READERS.get(name)
    if reader is None:
        raise CommandError(f"Unknown command “{_shown(name)}”. Known commands: {', '.join(sorted(_READERS))}.")
    return reader(_Fields(value, name))


class _Fields:
    """Typed access to a command's keys, with errors that name the command and the key."""

    def __init__(self, values: dict, command: str = "") -> None:
        self._values = values
        self._command = command

    def has(self, key: str) -> bool:
        return self._values.get(key) is not None

    def _fail(self, key: str, expected: str, of: str | None = None) -> CommandError:
        owner = of or f"The command “{self._command}”"
        found = "is missing" if key not in self._values else f"is {_shown(json.dumps(self._values[key]))}"
        return CommandError(f"{owner} needs “{key}” to be {expected}; it {found}.")

    def text(self, key: str, of: str | None = None) -> str:
        value = self._values.get(key)
        if not isinstance(value, str) or not _is_clean(value):
            raise self._fail(key, "a string", of)
        return value

    def flag(self, key: str, default: bool) -> bool:
        if not self.has(key):
            return default
        if not isinstance(self._values[key], bool):
            raise self._fail(key, "true or false")
        return self._values[key]

    def steps(self, key: str) -> int:
        value = self._values.get(key)
        if isinstance(value, float) and value.is_integer():
            value = int(value)
        if isinstance(value, bool) or not isinstance(value, int) or not 1 <= value <= MAXIMUM_STEPS:
            raise self._fail(key, f"an integer from 1 to {MAXIMUM_STEPS}")
        return value

    def choice(self, key: str, choices: tuple[str, ...]) -> str:
        value = self._values.get(key)
        if value not in choices or not isinstance(value, str):
            raise self._fail(key, f"one of {', '.join(choices)}")
        return value

    def section(self, key: str) -> dict:
        value = self._values.get(key)
        if not isinstance(value, dict):
            raise self._fail(key, "an object")
        return value

    def path(self, key: str) -> Path:
        value = self.text(key)
        if "\0" in value:
            raise self._fail(key, "an absolute folder path")
        try:
            path = Path(value).expanduser()
        except RuntimeError:
            path = Path(value)
        if not path.is_absolute():
            raise self._fail(key, "an absolute folder path")
        return path

    def identity(self, key: str) -> dict[str, str]:
        fields = _Fields(self.section(key), self._command)
        return {name: fields.text(name) for name in IDENTITY_KEYS if fields.has(name)}


def _refuse_constant(name: str) -> None:
    raise ValueError(f"{name} is no JSON")


def _is_clean(text: str) -> bool:
    """False for half a surrogate pair, which no file and no event line could carry."""
    try:
        text.encode("utf-8")
    except UnicodeEncodeError:
        return False
    return True


def _shown(text: str) -> str:
    short = text if len(text) <= SHOWN_CHARACTERS else text[:SHOWN_CHARACTERS] + "…"
    return short.encode("utf-8", "replace").decode("utf-8")


def _profile(fields: _Fields) -> SetTrainingProfile:
    profile = _Fields(fields.section("profile"), "set_training_profile")
    return SetTrainingProfile(
        TrainingProfile(
            profile.choice("model_family", MODEL_FAMILIES),
            profile.choice("training_capability", TRAINING_CAPABILITIES),
        )
    )


def _start(fields: _Fields) -> Start:
    return Start(
        max_steps=fields.steps("max_steps") if fields.has("max_steps") else None,
        resume=fields.flag("resume", default=False),
        identity=fields.identity("model_identity") if fields.has("model_identity") else None,
        model_family=fields.choice("model_family", MODEL_FAMILIES) if fields.has("model_family") else None,
        training_capability=fields.choice("training_capability", TRAINING_CAPABILITIES)
        if fields.has("training_capability")
        else None,
    )


_READERS = {
    "set_paths": lambda f: SetPaths(f.path("training_data"), f.path("finished_models"), f.path("model_root")),
    "set_model_identity": lambda f: SetModelIdentity(f.identity("identity")),
    "set_training_profile": _profile,
    "start": _start,
    "set_max_steps": lambda f: SetMaxSteps(f.steps("n")),
    "toggle_pause": lambda f: TogglePause(),
    "stop": lambda f: Stop(),
    "quit": lambda f: Quit(),
}
