"""Text to prepare, without anyone's sentences in the tree."""

import random


def prose(characters: int, seed: int = 0, separator: str = " ") -> str:
    """Text of invented words with something like a natural distribution."""
    generator = random.Random(seed)
    syllables = ["ka", "lo", "mi", "ner", "tu", "sha", "vi", "or", "en", "qua"]
    words = ["".join(generator.choices(syllables, k=generator.randint(1, 4))) for _ in range(3000)]
    weights = [1 / (rank + 1) for rank in range(len(words))]
    pieces = generator.choices(words, weights, k=characters // 4)
    return separator.join(pieces)[:characters]
