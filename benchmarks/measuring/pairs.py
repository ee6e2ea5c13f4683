"""Runs of several programs in turn, so that all of them see the same machine."""

import statistics
from dataclasses import dataclass

# Work of less than so many seconds is measured more often: there is more chance in it.
BRIEF = 0.1
TIMES_FOR_BRIEF = 5


@dataclass
class Runs:
    """How many rounds there are, and in how many of them those take part that are slow."""

    pairs: int
    slow: int


def measure(contenders, slow, runs, run):
    """The seconds of each run, by the contender's name.

    Every round has one run of each contender: in the given order first, the other way round next.
    Those of `slow` take part in the first rounds only. `run(contender)` makes its own ground ready
    and returns the seconds of the work alone. What is brief in the first round, but for slow ones,
    has `TIMES_FOR_BRIEF` times as many rounds.
    """
    seconds = {contender.name: [] for contender in contenders}
    rounds = runs.pairs
    number = 0
    while number < rounds:
        for contender in contenders if number % 2 == 0 else reversed(contenders):
            if contender not in slow or number < runs.slow:
                seconds[contender.name].append(run(contender))
        number += 1
        if number == 1 and all(seconds[each.name][0] < BRIEF
                               for each in contenders if each not in slow):
            rounds *= TIMES_FOR_BRIEF
    return seconds


def medians(seconds):
    """The median of each contender that ran."""
    return {name: statistics.median(runs) for name, runs in seconds.items() if runs}
