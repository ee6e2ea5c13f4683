"""Runs of several programs in turn, so that all of them see the same machine."""

import statistics

# Work of less than so many seconds is measured more often: there is more chance in it.
BRIEF = 0.1
TIMES_FOR_BRIEF = 5

def measure(contenders, pairs, slow_runs, run):
    """The seconds of each run, by the contender's name.

    Every round has one run of each contender: in the given order first, the other way round next.
    Those that are slow take part in the first `slow_runs` rounds only. `run(contender)` makes its
    own ground ready and returns the seconds of the work alone. What is brief in the first round,
    but for slow ones, is measured `TIMES_FOR_BRIEF` times as often.
    """
    seconds = {contender.name: [] for contender in contenders}
    number = 0
    while number < pairs:
        for contender in contenders if number % 2 == 0 else reversed(contenders):
            if not contender.is_slow or number < slow_runs:
                seconds[contender.name].append(run(contender))
        number += 1
        if number == 1 and all(seconds[each.name][0] < BRIEF for each in contenders
                               if not each.is_slow):
            pairs *= TIMES_FOR_BRIEF
    return seconds


def medians(seconds):
    """The median of each contender that ran."""
    return {name: statistics.median(runs) for name, runs in seconds.items() if runs}
