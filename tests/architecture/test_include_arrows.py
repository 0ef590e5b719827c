"""The check itself, on made-up trees, and then on the real one."""

from pathlib import Path

import pytest
from include_arrows import allowed_arrows, circles, main, violations

ARCHITECTURE = """
<!-- arrows -->
| folder | may include |
|---|---|
| `upper/part` | `lower` |
| `lower` | |
<!-- end of arrows -->
"""


@pytest.fixture
def tree(tmp_path: Path):
    def write(**files: str) -> Path:
        for name, text in files.items():
            path = tmp_path / name.replace("__", "/").replace("_h", ".h").replace("_cpp", ".cpp")
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        return tmp_path

    return write


def problems(root: Path) -> list[str]:
    return violations(root, allowed_arrows(ARCHITECTURE))


def test_an_arrow_of_the_table_is_fine(tree):
    assert problems(tree(upper__part__A_h='#include "lower/B.h"\n#include <QString>\n', lower__B_h="")) == []


def test_an_arrow_upwards_is_found(tree):
    assert problems(tree(lower__B_cpp='#  include "upper/part/A.h"\n')) == [
        "lower/B.cpp: lower -> upper/part is no allowed arrow"
    ]


def test_an_include_from_nowhere_is_found(tree):
    assert problems(tree(lower__B_cpp='#include "B.h"\n')) == ['lower/B.cpp: "B.h" is in no folder of the table']


def test_a_folder_outside_the_table_is_found(tree):
    assert problems(tree(stray__C_cpp="")) == ["stray/C.cpp: its folder is not in the table"]


def test_tests_may_include_everything(tree):
    assert problems(tree(tests__T_cpp='#include "upper/part/A.h"\n')) == []


def test_a_circle_in_the_table_is_found():
    assert circles({"a": {"b"}, "b": {"c"}, "c": {"b"}}) == ["b", "c"]


def test_every_include_of_this_project_follows_an_arrow(capsys):
    assert main() == 0, capsys.readouterr().out
